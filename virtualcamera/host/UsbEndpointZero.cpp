// SPDX-License-Identifier: MIT
#include "UsbEndpointZero.h"

#include <algorithm>
#include <utility>

namespace VirtualCamera
{

namespace
{
constexpr std::uint8_t vendorDeviceToHost = 0xc0;
constexpr std::uint8_t firmwareRequest = 0xb0;
constexpr std::uint8_t resetRequest = 0xe0;
} // namespace

bool isFirmwareRequest(UsbRequest const& request)
{
    return request.requestType == vendorDeviceToHost && request.request == firmwareRequest;
}

bool isResetRequest(UsbRequest const& request)
{
    return request.requestType == vendorDeviceToHost && request.request == resetRequest;
}

UsbEndpointZero::UsbEndpointZero(UsbDeviceScript const& script) : m_firmware(script.firmware) {}

UsbEndpointZero::Reply UsbEndpointZero::answer(UsbRequest const& request)
{
    std::lock_guard const lock(m_mutex);
    m_requests.push_back(request);
    Reply reply;
    // A device without the vendor's firmware knows neither of its requests.
    reply.stalled = !m_firmware || !(isFirmwareRequest(request) || isResetRequest(request));
    if (reply.stalled) {
        return reply;
    }
    if (isFirmwareRequest(request)) {
        reply.bytes = *m_firmware;
    } else {
        reply.bytes.assign(request.length, 0);
        reply.afterwards = m_resetAction;
    }
    reply.bytes.resize(std::min<std::size_t>(reply.bytes.size(), request.length));
    return reply;
}

std::vector<UsbRequest> UsbEndpointZero::requests() const
{
    std::lock_guard const lock(m_mutex);
    return m_requests;
}

void UsbEndpointZero::setFirmware(std::optional<std::vector<std::uint8_t>> firmware)
{
    std::lock_guard const lock(m_mutex);
    m_firmware = std::move(firmware);
}

void UsbEndpointZero::onReset(std::function<void()> action)
{
    std::lock_guard const lock(m_mutex);
    m_resetAction = std::move(action);
}

} // namespace VirtualCamera
