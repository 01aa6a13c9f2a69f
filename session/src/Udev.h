// SPDX-License-Identifier: MIT
#pragma once

#include "system/UdevHandles.h"

#include <memory>
#include <string>

namespace ImageAcquisition::Session
{

struct UdevEnumerateDeleter
{
    void operator()(udev_enumerate* enumerate) const { udev_enumerate_unref(enumerate); }
};
using UdevEnumerate = std::unique_ptr<udev_enumerate, UdevEnumerateDeleter>;

/// A file of a device in sysfs; empty when there is none.
inline std::string attribute(udev_device* device, char const* name)
{
    char const* const value = udev_device_get_sysattr_value(device, name);
    return value == nullptr ? "" : value;
}

} // namespace ImageAcquisition::Session
