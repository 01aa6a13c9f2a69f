// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>

namespace VirtualCamera
{

/// Fills a fixed-size text of the kernel's, cut and zero-terminated like the kernel's own.
template <typename Character, std::size_t Size>
void copyFixedText(Character (&target)[Size], std::string const& text)
{
    static_assert(sizeof(Character) == 1);
    std::memset(target, 0, Size);
    std::memcpy(target, text.data(), std::min(text.size(), Size - 1));
}

} // namespace VirtualCamera
