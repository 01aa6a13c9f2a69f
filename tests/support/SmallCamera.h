// SPDX-License-Identifier: MIT
#pragma once

#include "VirtualCamera.h"

/// A camera of one small format, which delivers whenever it has a buffer to fill.
inline VirtualCamera::CameraBuilder smallCamera()
{
    return VirtualCamera::aCamera().withFormat("YUYV").withSize(64, 48).withInterval(1, 30).paced(
        VirtualCamera::Pace::Immediate);
}

constexpr unsigned int smallImageSize = 64 * 48 * 2;
