// SPDX-License-Identifier: MIT
#include "device/DeviceList.h"

#include "IDevice.h"

#include <cstring>

namespace ImageAcquisition
{

IDeviceList::~IDeviceList() = default;

DeviceList::DeviceList() = default;
DeviceList::~DeviceList() = default;

int DeviceList::size() const
{
    return static_cast<int>(m_devices.size());
}

IDevice const* DeviceList::at(int position) const
{
    if (position < 0 || position >= size()) {
        return nullptr;
    }
    return m_devices[static_cast<std::size_t>(position)].get();
}

IDevice const* DeviceList::deviceByName(char const* name) const
{
    if (name == nullptr) {
        return nullptr;
    }
    for (auto const& device : m_devices) {
        char const* const deviceName = device->name();
        if (deviceName != nullptr && std::strcmp(deviceName, name) == 0) {
            return device.get();
        }
    }
    return nullptr;
}

void DeviceList::clear()
{
    m_devices.clear();
}

void DeviceList::append(IDevice* device)
{
    if (device == nullptr) {
        return;
    }
    std::unique_ptr<IDevice> owner(device);
    m_devices.push_back(std::move(owner));
}

} // namespace ImageAcquisition
