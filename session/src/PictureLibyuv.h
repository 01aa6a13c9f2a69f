// SPDX-License-Identifier: MIT
#pragma once

#include "PictureShape.h"

#include <vector>

namespace ImageAcquisition::Session
{

/**
 * Converts an uncompressed picture, all of whose bytes are there.
 * @param rgb the picture's, without gaps.
 * @param scratch kept from call to call, so that it is allocated once.
 * @returns false when the library does not take it.
 */
bool convertWithLibyuv(PictureLayout const& layout, PictureShape const& shape,
                       unsigned char const* data, unsigned char* rgb,
                       std::vector<unsigned char>& scratch);

} // namespace ImageAcquisition::Session
