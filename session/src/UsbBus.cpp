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
    if (m_devices != nullptr) {
        libusb_free_device_list(m_devices, 1);
    }
}

void UsbBus::list()
{
    m_context = createUsbContext();
    ssize_t const count =
        m_context ? libusb_get_device_list(m_context.get(), &m_devices) : ssize_t{0};
    for (ssize_t i = 0; i < count; ++i) {
        m_byAddress.emplace(std::pair<int, int>(libusb_get_bus_number(m_devices[i]),
                                                libusb_get_device_address(m_devices[i])),
                            m_devices[i]);
    }
}

std::string UsbBus::firmwareRevision(int bus, int address)
{
    if (!m_context) {
        list();
    }
    auto const found = m_byAddress.find({bus, address});
    return found == m_byAddress.end() ? "" : askForFirmware(found->second);
}

} // namespace ImageAcquisition::Session
