// SPDX-License-Identifier: MIT
#pragma once

#include "PictureShape.h"

#include <vector>

namespace ImageAcquisition::Session
{

/// Some lines of a picture, each from its first pixel on.
struct PictureArea
{
    unsigned int firstLine; ///< A multiple of PictureShape::sampleLines.
    unsigned int lines;
    unsigned int pixels; ///< Of each line.
};

/**
 * Converts an area of an uncompressed picture, all of whose bytes are there.
 * @param rgb the whole picture's, without gaps.
 * @param scratch kept from call to call, so that it is allocated once.
 * @returns false when the library does not take it.
 */
bool convertWithLibyuv(PictureLayout const& layout, PictureShape const& shape,
                       unsigned char const* data, PictureArea const& area, unsigned char* rgb,
                       std::vector<unsigned char>& scratch);

} // namespace ImageAcquisition::Session
