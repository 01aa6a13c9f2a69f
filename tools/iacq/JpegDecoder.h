// SPDX-License-Identifier: MIT
#pragma once

#include "PixelConversion.h"

namespace Iacq
{

/// Decodes a JPEG picture, as cameras send them one by one.
/// @throws Failure when the bytes are none.
RgbImage decodeJpeg(unsigned char const* data, std::size_t size);

} // namespace Iacq
