// SPDX-License-Identifier: MIT
#pragma once

#include <IBlockingCamera.h>
#include <IDevice.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Iacq
{

using DevicePtr = std::unique_ptr<ImageAcquisition::IDevice>;
using CameraPtr = std::unique_ptr<ImageAcquisition::IBlockingCamera>;

/// The cameras, in the order of their nodes. A camera's index is its position.
struct CameraList
{
    std::vector<DevicePtr> cameras;
    std::vector<std::string> leftOut; ///< Capture nodes that are none, with the reason.
};

CameraList listCameras();

/// A camera's record, and its position in the list; 0 when it was chosen by its node.
struct SelectedDevice
{
    DevicePtr device;
    int index;
};

/// The short name of a node given as video0 or /dev/video0; empty for other texts.
std::string nodeName(std::string const& camera);

/// The position of a camera in a list, chosen by that position or by its serial number; empty when
/// none fits.
/// @throws Failure when a serial number fits several.
std::optional<std::size_t> chooseCamera(std::vector<DevicePtr> const& cameras,
                                        std::string const& camera);

/// The camera that the user means.
/// @throws Failure when there is none, or several.
SelectedDevice selectDevice(std::string const& camera);

/// Opens a camera; shows progress on a terminal while it takes long.
/// @throws Failure when it cannot be opened.
CameraPtr openCamera(ImageAcquisition::IDevice const& device);

/// Opens the camera that the user means.
/// @throws Failure when there is none, or it cannot be opened.
CameraPtr openCamera(std::string const& camera);

} // namespace Iacq
