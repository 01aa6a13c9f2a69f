// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>

namespace ImageAcquisition
{

/// A text out of one of the kernel's fixed-size fields, which need not end in a zero.
template <typename Character, std::size_t size>
std::string kernelText(Character const (&field)[size])
{
    auto const end = std::find(field, field + size, Character(0));
    return std::string(field, end);
}

/// How many entries of one kind a driver may list. Real ones list dozens; the bound ends the
/// enumeration of one that never says that it has no more.
constexpr unsigned int maximumEnumerated = 4096;

} // namespace ImageAcquisition
