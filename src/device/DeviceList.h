// SPDX-License-Identifier: MIT
#pragma once

#include "IDeviceList.h"

#include <memory>
#include <vector>

namespace ImageAcquisition
{

/// Owns the records that an enumeration made.
class DeviceList : public virtual IDeviceList
{
public:
    DeviceList();
    ~DeviceList() override;

    int size() const override;
    IDevice const* at(int position) const override;
    IDevice const* deviceByName(char const* name) const override;

    /// Destroys all records.
    void clear();

    /// Takes over a record; it is destroyed if the list cannot grow. Null is ignored.
    void append(IDevice* device);

private:
    std::vector<std::unique_ptr<IDevice>> m_devices;
};

} // namespace ImageAcquisition
