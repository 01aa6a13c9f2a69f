// SPDX-License-Identifier: MIT
#include "CameraSelection.h"

#include "Failure.h"
#include "Parsing.h"
#include "Progress.h"

#include <ICameraFactory.h>

#include <stdlib.h>

#include <cstring>
#include <stdexcept>

namespace Iacq
{

namespace
{

using ImageAcquisition::ICameraFactory;
using ImageAcquisition::IDevice;
using ImageAcquisition::IDeviceList;

constexpr int lastNodeNumber = 64;
constexpr char devDirectory[] = "/dev/";

std::unique_ptr<IDevice> describe(std::string const& node)
{
    return std::unique_ptr<IDevice>(ICameraFactory::getUniqueInstance().createDevice(node.c_str()));
}

std::string nodesWithoutUsbDevice()
{
    std::string nodes;
    for (int number = 0; number <= lastNodeNumber; ++number) {
        std::string const node = "video" + std::to_string(number);
        try {
            describe(node);
        } catch (std::logic_error const&) {
            nodes += (nodes.empty() ? "" : ", ") + (devDirectory + node);
        }
    }
    return nodes.empty() ? "a node that is gone by now," : nodes;
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
        std::unique_ptr<IDevice> device = describe(node);
        if (!device) {
            throw Failure(NoSuchCamera, devDirectory + node + " is absent or no camera");
        }
        return SelectedDevice(std::move(device));
    } catch (std::logic_error const&) {
        throw Failure(CameraFailed, devDirectory + node + " has no USB device behind it");
    }
}

} // namespace

DeviceListPtr listDevices()
{
    try {
        return DeviceListPtr(ICameraFactory::getUniqueInstance().createDeviceList());
    } catch (std::logic_error const&) {
        throw Failure(CameraFailed, "no list can be made: " + nodesWithoutUsbDevice() +
                                        " without a USB device behind; name a camera by its node");
    }
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

IDevice const* chooseDevice(IDeviceList const& list, std::string const& camera)
{
    if (auto const position = parseCount(camera)) {
        if (*position < static_cast<unsigned int>(list.size())) {
            return list.at(static_cast<int>(*position));
        }
    }
    IDevice const* found = nullptr;
    for (int position = 0; position < list.size(); ++position) {
        IDevice const* const device = list.at(position);
        if (camera != device->serial()) {
            continue;
        }
        if (found != nullptr) {
            throw Failure(NoSuchCamera, "several cameras have the serial number '" + camera +
                                            "'; name one by its node");
        }
        found = device;
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
    DeviceListPtr list = listDevices();
    IDevice const* const device = camera.empty() ? nullptr : chooseDevice(*list, camera);
    if (device == nullptr) {
        throw Failure(NoSuchCamera, "no camera '" + camera + "' among the " +
                                        std::to_string(list->size()) +
                                        " there are; give an index, a node or a serial number");
    }
    return SelectedDevice(std::move(list), device);
}

CameraPtr openCamera(std::string const& camera)
{
    SelectedDevice const device = selectDevice(camera);
    Progress const progress("opening " + std::string(device->systemName()));
    CameraPtr opened(ICameraFactory::getUniqueInstance().createBlockingCamera(&*device));
    if (!opened) {
        throw Failure(CameraFailed, std::string(device->systemName()) +
                                        " could not be initialised; the camera was reset");
    }
    return opened;
}

} // namespace Iacq
