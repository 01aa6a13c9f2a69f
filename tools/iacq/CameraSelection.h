// SPDX-License-Identifier: MIT
#pragma once

#include <session/Camera.h>
#include <session/Found.h>

#include <IBlockingCamera.h>
#include <IDevice.h>

#include <string>
#include <vector>

namespace Iacq
{

/// The cameras, in the order of their nodes. A camera's index is its position.
struct CameraList
{
    std::vector<ImageAcquisition::Session::Found> cameras;
    std::vector<std::string> leftOut; ///< Capture nodes that are none, with the reason.
};

CameraList listCameras();

/// The camera that the user means; its index is 0 when it was chosen by its node.
/// @throws Failure when there is none, or several.
ImageAcquisition::Session::Found selectDevice(std::string const& camera);

/// Opens a camera; shows progress on a terminal while it takes long.
/// @throws Failure when it cannot be opened.
ImageAcquisition::Session::Camera openCamera(ImageAcquisition::Session::Found const& found);

/// Opens the camera that the user means.
/// @throws Failure when there is none, or it cannot be opened.
ImageAcquisition::Session::Camera openCamera(std::string const& camera);

} // namespace Iacq
