// SPDX-License-Identifier: MIT
#pragma once

#include "system/UsbHandles.h"

#include <map>
#include <string>
#include <utility>

namespace ImageAcquisition::Session
{

/// The USB devices of the machine, by their places. Looks for them once, when it is first asked:
/// libusb scans the whole bus for each context and each list.
class UsbBus
{
public:
    UsbBus() = default;
    UsbBus(UsbBus const&) = delete;
    UsbBus& operator=(UsbBus const&) = delete;
    ~UsbBus();

    /// What the device at this very address answers to the vendor's request for its firmware
    /// revision; empty when it may not be opened or does not answer.
    std::string firmwareRevision(int bus, int address);

private:
    void list();

    UsbContext m_context;
    libusb_device** m_devices = nullptr;
    std::map<std::pair<int, int>, libusb_device*> m_byAddress;
};

} // namespace ImageAcquisition::Session
