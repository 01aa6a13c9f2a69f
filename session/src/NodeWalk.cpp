// SPDX-License-Identifier: MIT
#include "NodeWalk.h"

#include "Parsing.h"
#include "SystemFailure.h"
#include "device/Device.h"
#include "session/Error.h"
#include "system/KernelText.h"
#include "system/VideoNode.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <system_error>
#include <utility>

namespace ImageAcquisition::Session
{

namespace
{

constexpr char nodeDirectory[] = "/dev/";

/// Sysfs tells megabits a second; above super speed the library has no word.
UsbSpeed speedOf(std::string const& megabits)
{
    static constexpr std::pair<char const*, UsbSpeed> speeds[] = {
        {"1.5", UsbSpeedLow}, {"12", UsbSpeedFull}, {"480", UsbSpeedHigh}, {"5000", UsbSpeedSuper}};
    auto const* const found = std::find_if(std::begin(speeds), std::end(speeds),
                                           [&](auto const& one) { return megabits == one.first; });
    return found == std::end(speeds) ? UsbSpeedUnknown : found->second;
}

/// " 2.10" becomes 0x0210.
unsigned short revisionOf(std::string const& version)
{
    char* end = nullptr;
    unsigned long const major = std::strtoul(version.c_str(), &end, 16);
    unsigned long const minor = *end == '.' ? std::strtoul(end + 1, nullptr, 16) : 0;
    return static_cast<unsigned short>(((major & 0xff) << 8) | (minor & 0xff));
}

/// The numbers of the nodes video0, video1 and so on, from the lowest.
std::vector<unsigned int> nodeNumbers(udev* context)
{
    UdevEnumerate const enumerate(udev_enumerate_new(context));
    std::vector<unsigned int> numbers;
    if (!enumerate || udev_enumerate_add_match_subsystem(enumerate.get(), "video4linux") < 0 ||
        udev_enumerate_scan_devices(enumerate.get()) < 0) {
        return numbers;
    }
    udev_list_entry* entry = nullptr;
    udev_list_entry_foreach(entry, udev_enumerate_get_list_entry(enumerate.get()))
    {
        char const* const name = std::strrchr(udev_list_entry_get_name(entry), '/');
        bool const isVideo = name != nullptr && std::strncmp(name, "/video", 6) == 0;
        if (auto const number = isVideo ? parseCount(name + 6) : std::nullopt) {
            numbers.push_back(*number);
        }
    }
    std::sort(numbers.begin(), numbers.end());
    return numbers;
}

/// Empty when the node is one to capture from.
LeftOut askDriver(std::string const& path, v4l2_capability& capability)
{
    VideoNode node;
    if (!node.open(path.c_str())) {
        int const error = errno;
        std::string const hint = error == EACCES ? "; " + accessHint(path) : "";
        return {path, "cannot be opened: " + std::generic_category().message(error) + hint,
                LeftOut::Why::NotOpened, error};
    }
    if (node.xioctl(VIDIOC_QUERYCAP, &capability) == -1) {
        int const error = errno;
        return {path, "does not answer: " + std::generic_category().message(error),
                LeftOut::Why::NotOpened, error};
    }
    // What the whole device can do, `capabilities` tells for each of its nodes.
    if ((capability.capabilities & capability.device_caps & V4L2_CAP_VIDEO_CAPTURE) == 0) {
        bool const planes = (capability.device_caps & V4L2_CAP_VIDEO_CAPTURE_MPLANE) != 0;
        return {path, planes ? "captures in several planes only" : "does not capture video",
                LeftOut::Why::NoCapture, 0};
    }
    return {};
}

void setCapability(Device& device, v4l2_capability const& capability)
{
    device.setName(kernelText(capability.card).c_str());
    device.setDriverName(kernelText(capability.driver).c_str());
    device.setBusInfo(kernelText(capability.bus_info).c_str());
    device.setDriverVersion(capability.version);
    device.setSupportsVideoCapture(true);
    device.setSupportsMultiplane((capability.device_caps & V4L2_CAP_VIDEO_CAPTURE_MPLANE) != 0);
    device.setSupportsAsynchIO((capability.capabilities & V4L2_CAP_ASYNCIO) != 0);
    device.setSupportsReadWrite((capability.capabilities & V4L2_CAP_READWRITE) != 0);
    device.setSupportsStreaming((capability.capabilities & V4L2_CAP_STREAMING) != 0);
}

} // namespace

NodeWalk::NodeWalk() : m_udev(udev_new())
{
    if (!m_udev) {
        throw Error({ErrorKind::Refused, "look for cameras", "udev cannot be reached", "", errno});
    }
}

CameraList NodeWalk::all()
{
    CameraList list;
    for (unsigned int const number : nodeNumbers(m_udev.get())) {
        auto described =
            describe("video" + std::to_string(number), static_cast<int>(list.cameras.size()));
        if (auto* const found = std::get_if<Found>(&described)) {
            list.cameras.push_back(std::move(*found));
        } else {
            list.leftOut.push_back(std::move(std::get<LeftOut>(described)));
        }
    }
    return list;
}

std::variant<Found, LeftOut> NodeWalk::describe(std::string const& name, int index)
{
    std::string const path = nodeDirectory + name;
    v4l2_capability capability{};
    LeftOut leftOut = askDriver(path, capability);
    if (!leftOut.reason.empty()) {
        return leftOut;
    }
    UdevDevice const node(
        udev_device_new_from_subsystem_sysname(m_udev.get(), "video4linux", name.c_str()));
    // The parent belongs to its child.
    udev_device* const usb =
        node ? udev_device_get_parent_with_subsystem_devtype(node.get(), "usb", "usb_device")
             : nullptr;
    if (usb == nullptr || attribute(usb, "idVendor").empty() ||
        attribute(usb, "idProduct").empty()) {
        return LeftOut{path,
                       usb == nullptr ? "has no USB device behind it"
                                      : "has a USB device without ids behind it",
                       LeftOut::Why::NoUsbDevice, 0};
    }
    auto device = std::make_shared<Device>(index);
    device->setSystemName(path.c_str());
    setCapability(*device, capability);
    addUsbIdentity(*device, usb);
    return Found(std::move(device), udev_device_get_sysname(usb));
}

void NodeWalk::addUsbIdentity(Device& device, udev_device* usb)
{
    device.setIdVendor(attribute(usb, "idVendor").c_str());
    device.setIdProduct(attribute(usb, "idProduct").c_str());
    device.setManufacturer(attribute(usb, "manufacturer").c_str());
    device.setProduct(attribute(usb, "product").c_str());
    device.setSerial(attribute(usb, "serial").c_str());
    device.setUsbSpeed(speedOf(attribute(usb, "speed")));
    device.setUsbRevision(revisionOf(attribute(usb, "version")));
    if (device.isaZorvaneDevice()) {
        device.setFirmwareVersion(m_usb
                                      .firmwareRevision(std::atoi(attribute(usb, "busnum").c_str()),
                                                        std::atoi(attribute(usb, "devnum").c_str()))
                                      .c_str());
    }
}

} // namespace ImageAcquisition::Session
