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

} // namespace ImageAcquisition
