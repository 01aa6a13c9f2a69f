// SPDX-License-Identifier: MIT
#pragma once

#include <libudev.h>

#include <memory>

namespace ImageAcquisition
{

struct UdevDeleter
{
    void operator()(udev* context) const { udev_unref(context); }
    void operator()(udev_device* device) const { udev_device_unref(device); }
    void operator()(udev_monitor* monitor) const { udev_monitor_unref(monitor); }
};

/// Owners of what libudev hands out. A device or a monitor keeps its context alive by itself.
using UdevContext = std::unique_ptr<udev, UdevDeleter>;
using UdevDevice = std::unique_ptr<udev_device, UdevDeleter>;
using UdevMonitor = std::unique_ptr<udev_monitor, UdevDeleter>;

} // namespace ImageAcquisition
