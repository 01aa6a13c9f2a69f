// SPDX-License-Identifier: MIT
#include "UsbDeviceScript.h"

#include <utility>

namespace VirtualCamera
{

UsbDeviceScript aUsbDevice(std::string port)
{
    return UsbDeviceScript(std::move(port));
}

UsbDeviceScript& UsbDeviceScript::withIds(std::string vendor, std::string productNumber)
{
    vendorId = std::move(vendor);
    productId = std::move(productNumber);
    return *this;
}

UsbDeviceScript& UsbDeviceScript::withoutIds()
{
    vendorId.reset();
    productId.reset();
    return *this;
}

UsbDeviceScript& UsbDeviceScript::withManufacturer(std::string text)
{
    manufacturer = std::move(text);
    return *this;
}

UsbDeviceScript& UsbDeviceScript::withProduct(std::string text)
{
    product = std::move(text);
    return *this;
}

UsbDeviceScript& UsbDeviceScript::withSerial(std::string text)
{
    serial = std::move(text);
    return *this;
}

UsbDeviceScript& UsbDeviceScript::withUsbRevision(std::uint16_t revision)
{
    usbRevision = revision;
    return *this;
}

UsbDeviceScript& UsbDeviceScript::withSpeed(std::string megabits)
{
    speed = std::move(megabits);
    return *this;
}

UsbDeviceScript& UsbDeviceScript::withFirmware(std::string const& text)
{
    std::vector<std::uint8_t> bytes(text.begin(), text.end());
    bytes.push_back(0);
    return withFirmwareBytes(std::move(bytes));
}

UsbDeviceScript& UsbDeviceScript::withFirmwareBytes(std::vector<std::uint8_t> bytes)
{
    firmware = std::move(bytes);
    return *this;
}

UsbDeviceScript& UsbDeviceScript::stallingFirmwareRequests()
{
    firmware.reset();
    return *this;
}

UsbDeviceScript& UsbDeviceScript::refusingOpen()
{
    openRefused = true;
    return *this;
}

} // namespace VirtualCamera
