// SPDX-License-Identifier: MIT
#pragma once

#include <session/Camera.h>

#include <string>

namespace Iacq
{

/// Opens the camera that the user means; shows progress on a terminal while it takes long.
/// @throws Failure when there is none, or several; Error when it cannot be opened.
ImageAcquisition::Session::Camera openCamera(std::string const& camera);

} // namespace Iacq
