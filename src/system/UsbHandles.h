// SPDX-License-Identifier: MIT
#pragma once

#include <libusb.h>

#include <memory>
#include <string>

namespace ImageAcquisition
{

struct UsbContextDeleter
{
    void operator()(libusb_context* context) const { libusb_exit(context); }
};

struct UsbDeviceHandleDeleter
{
    void operator()(libusb_device_handle* handle) const { libusb_close(handle); }
};

struct UsbDeviceListDeleter
{
    void operator()(libusb_device** list) const { libusb_free_device_list(list, 1); }
};

/// The devices that libusb lists, which it keeps alive.
using UsbDeviceList = std::unique_ptr<libusb_device*, UsbDeviceListDeleter>;

/// A private libusb context; null when libusb cannot be initialised.
using UsbContext = std::unique_ptr<libusb_context, UsbContextDeleter>;

/// An open USB device; null when it is absent or may not be opened. Must go before its context.
using UsbDeviceHandle = std::unique_ptr<libusb_device_handle, UsbDeviceHandleDeleter>;

UsbContext createUsbContext();

/// Opens the first device of these ids, given as hexadecimal texts.
/// @throws std::invalid_argument or std::out_of_range when an id is no such number.
UsbDeviceHandle openUsbDevice(UsbContext const& context, char const* vendorId,
                              char const* productId);

/// A vendor request that reads @p length bytes. Returns how many came, or a libusb error.
int readVendorRequest(UsbDeviceHandle const& handle, unsigned char request, unsigned char* data,
                      unsigned short length);

/// The number that a USB id text stands for.
/// @throws std::invalid_argument or std::out_of_range when it is none.
unsigned long usbIdNumber(char const* id);

} // namespace ImageAcquisition
