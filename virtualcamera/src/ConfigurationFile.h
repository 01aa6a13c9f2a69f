// SPDX-License-Identifier: MIT
#pragma once

#include "CameraScript.h"

#include <vector>

namespace VirtualCamera
{

/// The cameras of the file that VIRTUALCAMERA_CONFIG names; none when it isn't set. A file that
/// can't be used is reported on standard error and counts as empty.
std::vector<CameraScript> camerasOfEnvironment();

} // namespace VirtualCamera
