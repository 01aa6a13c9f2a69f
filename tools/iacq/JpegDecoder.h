// SPDX-License-Identifier: MIT
#pragma once

#include "PixelConversion.h"

namespace Iacq
{

/// Decodes a JPEG picture, as cameras send them one by one. Only a frame of the size that is set on
/// the camera is waited for, so a picture that claims more is not decoded; 0 and 0 where that size
/// is not known.
/// @throws Failure when the bytes are none, or would take more than such a picture does.
RgbImage decodeJpeg(unsigned char const* data, std::size_t size, unsigned int mostWidth,
                    unsigned int mostHeight);

} // namespace Iacq
