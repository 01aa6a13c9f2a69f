// SPDX-License-Identifier: MIT
#pragma once

#include "UsbDeviceScript.h"

#include <functional>
#include <memory>

namespace VirtualCamera
{

class UsbEndpointZero;

/// A control transfer that a client sent.
struct UsbRequest
{
    std::uint8_t requestType = 0;
    std::uint8_t request = 0;
    std::uint16_t value = 0;
    std::uint16_t index = 0;
    std::uint16_t length = 0;
};

/// A device plugged into a `Testbed`; copies stand for the same device.
class UsbDevice
{
public:
    UsbDevice(std::string syspath, std::shared_ptr<UsbEndpointZero> endpoint);

    /// "/sys/devices/..."
    std::string const& syspath() const { return m_syspath; }
    /// Every control transfer so far, oldest first.
    std::vector<UsbRequest> requests() const;
    /// How many asked for the firmware revision, and how many for a reset.
    int firmwareRequests() const;
    int resetRequests() const;
    void setFirmware(std::optional<std::vector<std::uint8_t>> firmware);
    /// Called in another thread after each reset request has been answered; must leave the
    /// testbed alone.
    void onReset(std::function<void()> action);

private:
    std::string m_syspath;
    std::shared_ptr<UsbEndpointZero> m_endpoint;
};

} // namespace VirtualCamera
