// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

/// A picture as its bytes of red, green and blue.
struct Picture
{
    unsigned int width = 0;
    unsigned int height = 0;
    std::vector<unsigned char> pixels;

    std::vector<int> at(unsigned int x, unsigned int y) const
    {
        auto const first = pixels.begin() + 3 * (static_cast<long>(y) * width + x);
        return {first[0], first[1], first[2]};
    }
};

/// Reads a PNG file; a picture without pixels when it is none.
Picture readPng(std::string const& bytes);
