// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace VirtualCamera
{

/// A USB device as sysfs, udev and libusb show it, and what it answers to the vendor's requests.
/// `aUsbDevice("1-2").withIds("7a76", "ca01").withSerial("A1").withFirmware("TJ8-1.2.4")`
struct UsbDeviceScript
{
    explicit UsbDeviceScript(std::string portPath) : port(std::move(portPath)) {}

    /// Four hexadecimal digits each, as sysfs prints them.
    UsbDeviceScript& withIds(std::string vendor, std::string product);
    UsbDeviceScript& withoutIds();
    UsbDeviceScript& withManufacturer(std::string text);
    UsbDeviceScript& withProduct(std::string text);
    UsbDeviceScript& withSerial(std::string text);
    /// Binary coded: 0x0200 is USB 2.0.
    UsbDeviceScript& withUsbRevision(std::uint16_t revision);
    /// In megabits a second, as sysfs prints it: "1.5", "12", "480", "5000", "10000".
    UsbDeviceScript& withSpeed(std::string megabits);
    /// The reply to the firmware request: a text with its zero, or bytes exactly as given.
    UsbDeviceScript& withFirmware(std::string const& text);
    UsbDeviceScript& withFirmwareBytes(std::vector<std::uint8_t> bytes);
    /// The firmware request ends in a stall (as it does on every device that has no firmware set).
    UsbDeviceScript& stallingFirmwareRequests();
    /// The device is listed, but cannot be opened.
    UsbDeviceScript& refusingOpen();

    std::string port; ///< Bus, and port path below its root hub: "1-2", "2-1.4".
    std::optional<std::string> vendorId = "1d6b";  ///< Absent: the attribute is missing.
    std::optional<std::string> productId = "0104"; ///< The same; the descriptor says 0 then.
    std::optional<std::string> manufacturer;
    std::optional<std::string> product;
    std::optional<std::string> serial;
    std::uint16_t usbRevision = 0x0200;
    std::string speed = "480";
    std::optional<std::vector<std::uint8_t>> firmware;
    bool openRefused = false;
};

UsbDeviceScript aUsbDevice(std::string port = "1-1");

} // namespace VirtualCamera
