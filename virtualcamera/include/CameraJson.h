// SPDX-License-Identifier: MIT
#pragma once

#include "InstalledCamera.h"

#include <string>
#include <vector>

namespace VirtualCamera
{

/// The cameras that a configuration text describes; `README.md` lists the keys. Throws
/// `std::runtime_error`, with the place in the text, for anything that is not understood.
VIRTUALCAMERA_EXPORT std::vector<CameraScript> camerasFromJson(std::string const& text);

/// The same cameras as text again, for another process to read.
VIRTUALCAMERA_EXPORT std::string camerasToJson(std::vector<CameraScript> const& cameras);

} // namespace VirtualCamera
