// SPDX-License-Identifier: MIT
#include "CameraModel.h"

#include "CameraBuilder.h"
#include "ModelControls.h"

#include <linux/videodev2.h>

#include <algorithm>

namespace VirtualCamera
{

namespace
{

std::string nodePath(unsigned number)
{
    return "/dev/video" + std::to_string(number);
}

std::string portPath(unsigned place)
{
    return "1-" + std::to_string(place + 1);
}

std::string busInfo(unsigned place)
{
    return "usb-0000:00:14.0-" + std::to_string(place + 1);
}

void addUsualSizes(CameraBuilder& camera)
{
    camera.withSize(640, 480).withInterval(1, 30).withInterval(1, 15);
    camera.withSize(320, 240).withInterval(1, 30).withInterval(1, 15);
    camera.withSize(1280, 720).withInterval(1, 30).withInterval(1, 10);
}

void addUsualFormats(CameraBuilder& camera)
{
    addUsualSizes(camera.withFormat("YUYV", "YUYV 4:2:2"));
    addUsualSizes(camera.withFormat("MJPG", "Motion-JPEG", V4L2_FMT_FLAG_COMPRESSED));
    // What libv4l2 adds to a camera's own formats.
    addUsualSizes(camera.withFormat("RGB3", "RGB3", V4L2_FMT_FLAG_EMULATED));
    addUsualSizes(camera.withFormat("BGR3", "BGR3", V4L2_FMT_FLAG_EMULATED));
    addUsualSizes(camera.withFormat("YU12", "YU12", V4L2_FMT_FLAG_EMULATED));
    addUsualSizes(camera.withFormat("YV12", "YV12", V4L2_FMT_FLAG_EMULATED));
}

/// The node for metadata that uvcvideo makes beside each camera's own.
CameraScript metadataNode(unsigned place, CameraScript const& camera)
{
    constexpr std::uint32_t common =
        V4L2_CAP_READWRITE | V4L2_CAP_STREAMING | V4L2_CAP_EXT_PIX_FORMAT;
    return aCamera(nodePath(2 * place + 1))
        .named(camera.card)
        .withBusInfo(camera.busInfo)
        .withCapabilities(V4L2_CAP_VIDEO_CAPTURE | V4L2_CAP_META_CAPTURE | V4L2_CAP_DEVICE_CAPS |
                              common,
                          V4L2_CAP_META_CAPTURE | common)
        .script();
}

CameraBuilder uvcCamera(unsigned place, std::string card)
{
    CameraBuilder camera = aCamera(nodePath(2 * place));
    camera.named(std::move(card)).withBusInfo(busInfo(place));
    addUsualFormats(camera);
    return camera;
}

UsbDeviceScript usbOf(unsigned place, std::string maker, std::string product)
{
    return aUsbDevice(portPath(place))
        .withManufacturer(std::move(maker))
        .withProduct(std::move(product))
        .withSerial("VC" + std::to_string(1000 + place));
}

HostCamera onUsb(unsigned place, CameraBuilder const& camera, UsbDeviceScript usb)
{
    CameraScript video = camera.script();
    // A device has the capabilities of all its nodes, each of which tells them beside its own.
    video.capabilities = V4L2_CAP_VIDEO_CAPTURE | V4L2_CAP_META_CAPTURE | V4L2_CAP_EXT_PIX_FORMAT |
                         V4L2_CAP_DEVICE_CAPS | (video.readOffered ? V4L2_CAP_READWRITE : 0U) |
                         (video.mmapOffered || video.userPointersOffered ? V4L2_CAP_STREAMING : 0U);
    return {{video, metadataNode(place, video)}, std::move(usb), false};
}

HostCamera webcam(unsigned place)
{
    CameraBuilder camera = uvcCamera(place, "Virtual Webcam");
    addUsualControls(camera);
    camera.withClassHeadings();
    return onUsb(place, camera, usbOf(place, "Virtual Optics", "Virtual Webcam"));
}

UsbDeviceScript vendorUsb(unsigned place, std::string const& firmware)
{
    return usbOf(place, "Virtual Vendor", "Virtual Vendor Camera")
        .withIds(IMAGEACQUISITION_VENDOR_ID, IMAGEACQUISITION_PRODUCT_ID)
        .withFirmware(firmware);
}

HostCamera vendor(unsigned place)
{
    CameraBuilder camera = uvcCamera(place, "Virtual Vendor Camera");
    addUsualControls(camera);
    ExtensionUnitScript const unit = vendorExtensionUnit();
    camera.withClassHeadings().withExtensionUnit(unit.guid, unit.selectors);
    return onUsb(place, camera, vendorUsb(place, "TJ8-1.2.4"));
}

HostCamera serial(unsigned place)
{
    CameraBuilder camera = uvcCamera(place, "Virtual Serial Camera");
    addUsualControls(camera);
    camera.withClassHeadings();
    HostCamera made = onUsb(place, camera, vendorUsb(place, "TJ8-1.3.0"));
    made.serialPort = true;
    return made;
}

HostCamera allControls(unsigned place)
{
    CameraBuilder camera = uvcCamera(place, "Virtual Control Panel");
    addUsualControls(camera);
    addControlOfEveryType(camera);
    camera.withClassHeadings();
    return onUsb(place, camera, usbOf(place, "Virtual Optics", "Virtual Control Panel"));
}

HostCamera userPointers(unsigned place)
{
    CameraBuilder camera = uvcCamera(place, "Virtual User Pointer Camera");
    camera.offeringMmap(false).offeringUserPointers().offeringRead(false);
    return onUsb(place, camera, usbOf(place, "Virtual Optics", "User Pointer Camera"));
}

HostCamera readOnly(unsigned place)
{
    CameraBuilder camera = uvcCamera(place, "Virtual Read Camera");
    camera.offeringMmap(false).offeringRead();
    return onUsb(place, camera, usbOf(place, "Virtual Optics", "Read Camera"));
}

HostCamera platform(unsigned place)
{
    CameraBuilder camera = uvcCamera(place, "Virtual Platform Camera");
    camera.withDriver("vivid").withBusInfo("platform:vivid-000");
    return {{camera.script()}, std::nullopt, false};
}

bool shareANodeOrPort(HostCamera const& one, HostCamera const& other)
{
    if (one.usb && other.usb && one.usb->port == other.usb->port) {
        return true;
    }
    auto const isOfOther = [&other](CameraScript const& script) {
        return std::any_of(other.nodes.begin(), other.nodes.end(),
                           [&](CameraScript const& node) { return node.node == script.node; });
    };
    return std::any_of(one.nodes.begin(), one.nodes.end(), isOfOther);
}

} // namespace

std::vector<CameraModel> const& cameraModels()
{
    static std::vector<CameraModel> const models{
        {"webcam", "an ordinary UVC camera", webcam},
        {"vendor", "one of the vendor's cameras, firmware 1.2.4, with its extension unit", vendor},
        {"serial", "one of the vendor's cameras, firmware 1.3.0, with its serial port", serial},
        {"all-controls", "a UVC camera with a control of every type", allControls},
        {"user-pointers", "a camera that streams into user pointers only", userPointers},
        {"read", "a camera that offers read() only", readOnly},
        {"platform", "a camera without a USB parent", platform},
    };
    return models;
}

CameraModel const* cameraModel(std::string const& name)
{
    for (CameraModel const& model : cameraModels()) {
        if (model.name == name) {
            return &model;
        }
    }
    return nullptr;
}

HostCamera cameraBehind(std::vector<HostCamera> const& others, CameraModel const& model)
{
    for (auto place = static_cast<unsigned>(others.size());; ++place) {
        HostCamera camera = model.make(place);
        auto const inTheWay = [&camera](HostCamera const& other) {
            return shareANodeOrPort(other, camera);
        };
        if (std::none_of(others.begin(), others.end(), inTheWay)) {
            return camera;
        }
    }
}

} // namespace VirtualCamera
