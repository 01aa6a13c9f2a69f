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

UsbEndpointZero::UsbEndpointZero(UsbDeviceScript const& script) : _firmware(script.firmware) {}

UsbEndpointZero::Reply UsbEndpointZero::answer(UsbRequest const& request)
{
    std::lock_guard const lock(_mutex);
    _requests.push_back(request);
    Reply reply;
    // A device without the vendor's firmware knows neither of its requests.
    reply.stalled = !_firmware || !(isFirmwareRequest(request) || isResetRequest(request));
    if (reply.stalled)
        return reply;
    if (isFirmwareRequest(request)) {
        reply.bytes = *_firmware;
    } else {
        reply.bytes.assign(request.length, 0);
        reply.afterwards = _resetAction;
    }
    reply.bytes.resize(std::min<std::size_t>(reply.bytes.size(), request.length));
    return reply;
}

std::vector<UsbRequest> UsbEndpointZero::requests() const
{
    std::lock_guard const lock(_mutex);
    return _requests;
}

void UsbEndpointZero::setFirmware(std::optional<std::vector<std::uint8_t>> firmware)
{
    std::lock_guard const lock(_mutex);
    _firmware = std::move(firmware);
}

void UsbEndpointZero::onReset(std::function<void()> action)
{
    std::lock_guard const lock(_mutex);
    _resetAction = std::move(action);
}

} // namespace VirtualCamera
