// SPDX-License-Identifier: MIT
#include "system/UsbHandles.h"

namespace ImageAcquisition
{

namespace
{

constexpr unsigned char deviceToHostVendorDevice = 0xC0;
constexpr unsigned int requestTimeoutMs = 5000;

} // namespace

UsbContext createUsbContext()
{
    libusb_context* context = nullptr;
    if (libusb_init(&context) != 0) {
        context = nullptr;
    }
    return UsbContext(context);
}

UsbDeviceHandle openUsbDevice(UsbContext const& context, char const* vendorId,
                              char const* productId)
{
    auto const vendor = static_cast<unsigned short>(usbIdNumber(vendorId));
    auto const product = static_cast<unsigned short>(usbIdNumber(productId));
    return UsbDeviceHandle(libusb_open_device_with_vid_pid(context.get(), vendor, product));
}

int readVendorRequest(UsbDeviceHandle const& handle, unsigned char request, unsigned char* data,
                      unsigned short length)
{
    return libusb_control_transfer(handle.get(), deviceToHostVendorDevice, request, 0, 0, data,
                                   length, requestTimeoutMs);
}

unsigned long usbIdNumber(char const* id)
{
    return std::stoul(id, nullptr, 16);
}

} // namespace ImageAcquisition
