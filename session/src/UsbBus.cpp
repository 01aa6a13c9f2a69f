// SPDX-License-Identifier: MIT
#include "UsbBus.h"

#include "system/KernelText.h"

namespace ImageAcquisition::Session
{

namespace
{

constexpr unsigned char firmwareRevisionRequest = 0xB0;

std::string askForFirmware(libusb_device* device)
{
    libusb_device_handle* opened = nullptr;
    if (libusb_open(device, &opened) != 0) {
        return "";
    }
    UsbDeviceHandle const handle(opened);
    unsigned char reply[32] = {};
    int const received = readVendorRequest(handle, firmwareRevisionRequest, reply, sizeof reply);
    return received > 3 ? kernelText(reply) : "";
}

} // namespace

UsbBus::~UsbBus()
{
    if (m_count >= 0) {
        libusb_free_device_list(m_devices, 1);
    }
}

void UsbBus::list()
{
    m_context = createUsbContext();
    if (m_context) {
        m_count = libusb_get_device_list(m_context.get(), &m_devices);
    }
}

std::string UsbBus::firmwareRevision(int bus, int address)
{
    if (!m_context) {
        list();
    }
    for (ssize_t i = 0; i < m_count; ++i) {
        if (libusb_get_bus_number(m_devices[i]) == bus &&
            libusb_get_device_address(m_devices[i]) == address) {
            return askForFirmware(m_devices[i]);
        }
    }
    return "";
}

} // namespace ImageAcquisition::Session
