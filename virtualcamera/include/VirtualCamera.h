// SPDX-License-Identifier: MIT
#pragma once

#include "CameraBuilder.h"
#include "CameraJson.h"
#include "TestPattern.h"

namespace VirtualCamera
{

/// Unplugs every camera of this process, those of the configuration file included.
VIRTUALCAMERA_EXPORT void reset();

/// What all cameras together account for, those that are unplugged but still held included.
VIRTUALCAMERA_EXPORT Accounting totalAccounting();

} // namespace VirtualCamera
