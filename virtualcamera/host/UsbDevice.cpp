// SPDX-License-Identifier: MIT
#include "UsbDevice.h"

#include "UsbEndpointZero.h"

#include <algorithm>
#include <utility>

namespace VirtualCamera
{

UsbDevice::UsbDevice(std::string syspath, std::shared_ptr<UsbEndpointZero> endpoint)
    : m_syspath(std::move(syspath)), m_endpoint(std::move(endpoint))
{
}

std::vector<UsbRequest> UsbDevice::requests() const
{
    return m_endpoint->requests();
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
    m_endpoint->setFirmware(std::move(firmware));
}

void UsbDevice::onReset(std::function<void()> action)
{
    m_endpoint->onReset(std::move(action));
}

} // namespace VirtualCamera
