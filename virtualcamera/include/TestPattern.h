// SPDX-License-Identifier: MIT
#pragma once

#include "VirtualCameraExport.h"

#include <cstdint>
#include <vector>

namespace VirtualCamera
{

/// The picture that a virtual camera delivers as frame `frameNumber`: colour bars, a moving square
/// and the number in digits, in the lines and planes of a driver's usual layout. MJPG gives one
/// JPEG image. Formats other than YUYV, UYVY, RGB3, BGR3, GREY, NV12, YU12, YV12 and MJPG give a
/// ramp of bytes that starts at the frame number.
VIRTUALCAMERA_EXPORT std::vector<std::uint8_t> testPattern(std::uint32_t pixelFormat,
                                                           std::uint32_t width,
                                                           std::uint32_t height,
                                                           std::uint32_t frameNumber);

} // namespace VirtualCamera
