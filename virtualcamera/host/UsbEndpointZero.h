// SPDX-License-Identifier: MIT
#pragma once

#include "UsbDevice.h"

#include <mutex>

namespace VirtualCamera
{

bool isFirmwareRequest(UsbRequest const& request);
bool isResetRequest(UsbRequest const& request);

/// What a device answers on its control endpoint. May be asked from any thread.
class UsbEndpointZero
{
public:
    explicit UsbEndpointZero(UsbDeviceScript const& script);

    struct Reply
    {
        bool stalled = true;
        std::vector<std::uint8_t> bytes;
        std::function<void()> afterwards;
    };

    Reply answer(UsbRequest const& request);
    std::vector<UsbRequest> requests() const;
    void setFirmware(std::optional<std::vector<std::uint8_t>> firmware);
    void onReset(std::function<void()> action);

private:
    mutable std::mutex m_mutex;
    std::optional<std::vector<std::uint8_t>> m_firmware;
    std::function<void()> m_resetAction;
    std::vector<UsbRequest> m_requests;
};

} // namespace VirtualCamera
