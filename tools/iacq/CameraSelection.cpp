// SPDX-License-Identifier: MIT
#include "CameraSelection.h"

#include "Failure.h"
#include "Parsing.h"
#include "Progress.h"
#include "SerialLinkFault.h"

#include <ICameraFactory.h>

#include <stdlib.h>

#include <stdexcept>
#include <utility>

namespace Iacq
{

using ImageAcquisition::Session::parseCount;
using ImageAcquisition::Session::serialLinkFault;

namespace
{

using ImageAcquisition::ICameraFactory;
using ImageAcquisition::IDevice;

constexpr int lastNodeNumber = 64;
constexpr char devDirectory[] = "/dev/";

/// @throws std::logic_error when no USB device stands behind the node.
DevicePtr describe(std::string const& node)
{
    return DevicePtr(ICameraFactory::getUniqueInstance().createDevice(node.c_str()));
}

/// Resolves the links that udev makes in /dev/v4l.
std::string resolved(std::string const& path)
{
    std::unique_ptr<char, decltype(&free)> const target(realpath(path.c_str(), nullptr), free);
    return target ? target.get() : path;
}

SelectedDevice selectNode(std::string const& node)
{
    try {
        DevicePtr device = describe(node);
        if (!device) {
            throw Failure(NoSuchCamera, devDirectory + node + " is absent or no camera");
        }
        return {std::move(device), 0};
    } catch (std::logic_error const&) {
        throw Failure(CameraFailed, devDirectory + node + " has no USB device behind it");
    }
}

std::string absence(CameraList const& list, std::string const& camera)
{
    std::string leftOut;
    for (std::string const& node : list.leftOut) {
        leftOut += (leftOut.empty() ? " (left out: " : ", ") + node;
    }
    return "no camera '" + camera + "' among the " + std::to_string(list.cameras.size()) +
           " there are" + leftOut + (leftOut.empty() ? "" : ")") +
           "; give an index, a node or a serial number";
}

} // namespace

CameraList listCameras()
{
    // The library makes no list where one node has no USB device behind it, so that each node is
    // asked by itself.
    CameraList list;
    for (int number = 0; number <= lastNodeNumber; ++number) {
        std::string const node = "video" + std::to_string(number);
        try {
            if (DevicePtr device = describe(node)) {
                list.cameras.push_back(std::move(device));
            }
        } catch (std::logic_error const&) {
            list.leftOut.push_back(devDirectory + node + " has no USB device behind it");
        }
    }
    return list;
}

std::string nodeName(std::string const& camera)
{
    bool const isPath = camera.find('/') != std::string::npos;
    std::string const path =
        isPath && camera.compare(0, 10, "/dev/video") != 0 ? resolved(camera) : camera;
    std::string const name = path.compare(0, sizeof devDirectory - 1, devDirectory) == 0
                                 ? path.substr(sizeof devDirectory - 1)
                                 : path;
    bool const isNode = name.compare(0, 5, "video") == 0 && parseCount(name.substr(5));
    return isNode ? name : "";
}

std::optional<std::size_t> chooseCamera(std::vector<DevicePtr> const& cameras,
                                        std::string const& camera)
{
    if (auto const position = parseCount(camera); position && *position < cameras.size()) {
        return *position;
    }
    std::optional<std::size_t> found;
    for (std::size_t position = 0; position < cameras.size(); ++position) {
        if (camera.empty() || camera != cameras[position]->serial()) {
            continue;
        }
        if (found) {
            throw Failure(NoSuchCamera, "several cameras have the serial number '" + camera +
                                            "'; name one by its node");
        }
        found = position;
    }
    return found;
}

SelectedDevice selectDevice(std::string const& camera)
{
    std::string const node = nodeName(camera);
    if (!node.empty()) {
        return selectNode(node);
    }
    if (camera.find('/') != std::string::npos) {
        // Other nodes are not even opened: that may act on them.
        throw Failure(NoSuchCamera, camera + " is no video node");
    }
    CameraList list = listCameras();
    auto const position = chooseCamera(list.cameras, camera);
    if (!position) {
        throw Failure(NoSuchCamera, absence(list, camera));
    }
    return {std::move(list.cameras[*position]), static_cast<int>(*position)};
}

CameraPtr openCamera(IDevice const& device)
{
    Progress const progress("opening " + std::string(device.systemName()));
    CameraPtr opened(ICameraFactory::getUniqueInstance().createBlockingCamera(&device));
    if (!opened) {
        throw Failure(
            CameraFailed,
            std::string(device.systemName()) + " could not be initialised; the camera was reset" +
                (device.isaZorvaneDevice() ? "; " + serialLinkFault(device.busInfo()) : ""));
    }
    return opened;
}

CameraPtr openCamera(std::string const& camera)
{
    return openCamera(*selectDevice(camera).device);
}

} // namespace Iacq
