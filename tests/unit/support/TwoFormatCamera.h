// SPDX-License-Identifier: MIT
#pragma once

#include "VirtualCamera.h"

/// A camera of two formats, of which the first has two sizes.
inline VirtualCamera::CameraBuilder twoFormatCamera()
{
    return VirtualCamera::aCamera()
        .withFormat("YUYV")
        .withSize(640, 480)
        .withInterval(1, 30)
        .withInterval(1, 15)
        .withSize(320, 240)
        .withInterval(1, 60)
        .withFormat("MJPG")
        .withSize(1280, 720)
        .withInterval(1, 30);
}
