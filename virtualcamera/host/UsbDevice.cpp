// SPDX-License-Identifier: MIT
#include "UsbDevice.h"

#include "UsbEndpointZero.h"

#include <algorithm>
#include <utility>

namespace VirtualCamera
{

UsbDevice::UsbDevice(std::string syspath, std::shared_ptr<UsbEndpointZero> endpoint)
    : _syspath(std::move(syspath)), _endpoint(std::move(endpoint))
{
}

std::vector<UsbRequest> UsbDevice::requests() const
{
    return _endpoint->requests();
}

int UsbDevice::firmwareRequests() const
{
    std::vector<UsbRequest> const all = requests();
    return static_cast<int>(std::count_if(all.begin(), all.end(), isFirmwareRequest));
}

int UsbDevice::resetRequests() const
{
    std::vector<UsbRequest> const all = requests();
    return static_cast<int>(std::count_if(all.begin(), all.end(), isResetRequest));
}

void UsbDevice::setFirmware(std::optional<std::vector<std::uint8_t>> firmware)
{
    _endpoint->setFirmware(std::move(firmware));
}

void UsbDevice::onReset(std::function<void()> action)
{
    _endpoint->onReset(std::move(action));
}

} // namespace VirtualCamera
