// SPDX-License-Identifier: MIT
#include "device/DeviceEnumerator.h"

#include "device/Device.h"
#include "device/DeviceList.h"
#include "system/KernelText.h"
#include "system/UdevHandles.h"
#include "system/UsbHandles.h"
#include "system/VideoNode.h"

#include <linux/videodev2.h>
#include <unistd.h>

#include <memory>
#include <string>

namespace ImageAcquisition
{

namespace
{

constexpr int lastNodeNumber = 64;
constexpr char nodeDirectory[] = "/dev/";
constexpr char sysDirectory[] = "/sys/class/video4linux/";
constexpr unsigned char firmwareRevisionRequest = 0xB0;

bool queryCaptureCapability(char const* nodePath, v4l2_capability& capability)
{
    if (access(nodePath, F_OK) != 0) {
        return false;
    }
    VideoNode node;
    if (!node.open(nodePath)) {
        return false;
    }
    capability = {};
    bool const answered = node.xioctl(VIDIOC_QUERYCAP, &capability) != -1;
    // A metadata node of the same camera claims capture in `capabilities`, which speaks for all
    // nodes of the device, but not in `device_caps`.
    return answered && (capability.capabilities & V4L2_CAP_VIDEO_CAPTURE) != 0 &&
           (capability.device_caps & V4L2_CAP_VIDEO_CAPTURE) != 0;
}

void setCapability(Device& device, v4l2_capability const& capability)
{
    device.setName(kernelText(capability.card).c_str());
    device.setDriverName(kernelText(capability.driver).c_str());
    device.setBusInfo(kernelText(capability.bus_info).c_str());
    device.setDriverVersion(capability.version);
    bool const multiplane = (capability.device_caps & V4L2_CAP_VIDEO_CAPTURE_MPLANE) != 0;
    device.setSupportsAsynchIO((capability.capabilities & V4L2_CAP_ASYNCIO) != 0);
    device.setSupportsMultiplane(multiplane);
    device.setSupportsVideoCapture(multiplane ||
                                   (capability.device_caps & V4L2_CAP_VIDEO_CAPTURE) != 0);
    device.setSupportsReadWrite((capability.capabilities & V4L2_CAP_READWRITE) != 0);
    device.setSupportsStreaming((capability.capabilities & V4L2_CAP_STREAMING) != 0);
}

void setUsbIdentity(Device& device, char const* sysPath, udev* context)
{
    UdevDevice const node(udev_device_new_from_syspath(context, sysPath));
    if (!node) {
        return;
    }
    // The parent belongs to its child and must not be released.
    udev_device* const usb =
        udev_device_get_parent_with_subsystem_devtype(node.get(), "usb", "usb_device");
    if (usb == nullptr) {
        return;
    }
    device.setIdVendor(udev_device_get_sysattr_value(usb, "idVendor"));
    device.setIdProduct(udev_device_get_sysattr_value(usb, "idProduct"));
    device.setManufacturer(udev_device_get_sysattr_value(usb, "manufacturer"));
    device.setProduct(udev_device_get_sysattr_value(usb, "product"));
    device.setSerial(udev_device_get_sysattr_value(usb, "serial"));
}

struct UsbProperties
{
    unsigned short revision = 0;
    UsbSpeed speed = UsbSpeedUnknown;
};

/// Of devices with these ids the first that libusb lists answers for all. Kept as it is:
/// docs/behaviour.md, Devices.
UsbProperties findUsbProperties(libusb_device* const* devices, ssize_t count, unsigned long vendor,
                                unsigned long product)
{
    for (ssize_t i = 0; i < count; ++i) {
        libusb_device_descriptor descriptor{};
        if (libusb_get_device_descriptor(devices[i], &descriptor) == 0 &&
            descriptor.idVendor == vendor && descriptor.idProduct == product) {
            return {descriptor.bcdUSB,
                    DeviceEnumerator::convertSpeed(libusb_get_device_speed(devices[i]))};
        }
    }
    return {};
}

UsbProperties queryUsbProperties(libusb_context* context, unsigned long vendor,
                                 unsigned long product)
{
    libusb_device** devices = nullptr;
    ssize_t const count = libusb_get_device_list(context, &devices);
    if (count < 0) {
        return {};
    }
    UsbDeviceList const list(devices);
    return findUsbProperties(list.get(), count, vendor, product);
}

} // namespace

void DeviceEnumerator::fillDeviceList(DeviceList* list)
{
    list->clear();
    UdevContext const context(udev_new());
    for (int number = 0; number <= lastNodeNumber; ++number) {
        std::string const nodeName = "video" + std::to_string(number);
        std::unique_ptr<IDevice> device(
            createDevice(list->size(), (nodeDirectory + nodeName).c_str(),
                         (sysDirectory + nodeName).c_str(), context.get()));
        list->append(device.release());
    }
}

IDevice* DeviceEnumerator::createDevice(char const* nodeName)
{
    if (nodeName == nullptr) {
        return nullptr;
    }
    UdevContext const context(udev_new());
    return createDevice(0, (std::string(nodeDirectory) + nodeName).c_str(),
                        (std::string(sysDirectory) + nodeName).c_str(), context.get());
}

IDevice* DeviceEnumerator::createDevice(int index, char const* nodePath, char const* sysPath,
                                        udev* context)
{
    v4l2_capability capability;
    if (!queryCaptureCapability(nodePath, capability)) {
        return nullptr;
    }
    auto device = std::make_unique<Device>(index);
    device->setSystemName(nodePath);
    setCapability(*device, capability);
    setUsbIdentity(*device, sysPath, context);
    if (device->isaZorvaneDevice()) {
        getFirmwareRevision(device.get());
    }
    getUsbDescriptor(device.get());
    return device.release();
}

void DeviceEnumerator::getUsbDescriptor(Device* device)
{
    UsbProperties properties;
    libusb_context* context = createUsbContext().release();
    if (context != nullptr) {
        // A node without a USB device behind it has empty ids: the conversion throws, and the
        // context is not released. Kept as it is: docs/behaviour.md, Calls that throw and Devices.
        unsigned long const vendor = usbIdNumber(device->vendorId());
        unsigned long const product = usbIdNumber(device->productId());
        properties = queryUsbProperties(context, vendor, product);
        libusb_exit(context);
    }
    device->setUsbRevision(properties.revision);
    device->setUsbSpeed(properties.speed);
}

void DeviceEnumerator::getFirmwareRevision(Device* device)
{
    UsbContext const context = createUsbContext();
    if (!context) {
        return;
    }
    UsbDeviceHandle const handle = openUsbDevice(context, device->vendorId(), device->productId());
    if (!handle) {
        return;
    }
    unsigned char reply[32] = {};
    int const received = readVendorRequest(handle, firmwareRevisionRequest, reply, sizeof reply);
    if (received > 3) {
        // The reply need not end in a zero, and the library need not have filled all of it.
        device->setFirmwareVersion(kernelText(reply).c_str());
    }
}

UsbSpeed DeviceEnumerator::convertSpeed(int libusbSpeed)
{
    switch (libusbSpeed) {
    case LIBUSB_SPEED_LOW:
        return UsbSpeedLow;
    case LIBUSB_SPEED_FULL:
        return UsbSpeedFull;
    case LIBUSB_SPEED_HIGH:
        return UsbSpeedHigh;
    case LIBUSB_SPEED_SUPER:
        return UsbSpeedSuper;
    default:
        return UsbSpeedUnknown;
    }
}

} // namespace ImageAcquisition
