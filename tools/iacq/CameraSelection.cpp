// SPDX-License-Identifier: MIT
#include "CameraSelection.h"

#include "Failure.h"
#include "Progress.h"

#include <session/Error.h>

#include <utility>

namespace Iacq
{

using ImageAcquisition::Session::Camera;
using ImageAcquisition::Session::Error;
using ImageAcquisition::Session::ErrorKind;
using ImageAcquisition::Session::Found;
using ImageAcquisition::Session::LeftOut;

CameraList listCameras()
{
    CameraList list;
    auto found = ImageAcquisition::Session::findCameras();
    list.cameras = std::move(found.cameras);
    for (LeftOut const& node : found.leftOut) {
        // Metadata nodes stand beside every camera; they are none that anybody misses.
        if (node.why == LeftOut::Why::NoUsbDevice) {
            list.leftOut.push_back(node.node + " " + node.reason);
        }
    }
    return list;
}

Found selectDevice(std::string const& camera)
{
    try {
        return ImageAcquisition::Session::findCamera(camera);
    } catch (Error const& error) {
        bool const isOther = error.kind() == ErrorKind::Unsupported;
        throw Failure(isOther ? CameraFailed : NoSuchCamera, error.what());
    }
}

Camera openCamera(Found const& found)
{
    Progress const progress("opening " + found.node());
    try {
        return Camera::open(found);
    } catch (Error const& error) {
        throw Failure(CameraFailed, error.what());
    }
}

Camera openCamera(std::string const& camera)
{
    return openCamera(selectDevice(camera));
}

} // namespace Iacq
