// SPDX-License-Identifier: MIT
#pragma once

#include "Udev.h"
#include "UsbBus.h"

#include "session/Found.h"

#include <linux/videodev2.h>

#include <string>
#include <variant>

namespace ImageAcquisition
{
class Device;
}

namespace ImageAcquisition::Session
{

/// Describes video nodes from what their drivers, udev and sysfs tell of each. One walk shares what
/// is costly to open.
class NodeWalk
{
public:
    /// @throws Error when udev cannot be reached.
    NodeWalk();

    /// Every node of the machine.
    CameraList all();

    /// The node of this short name, such as video0, as camera of this index.
    std::variant<Found, LeftOut> describe(std::string const& name, int index);

private:
    void addUsbIdentity(Device& device, udev_device* usb);

    UdevContext m_udev;
    UsbBus m_usb;
};

} // namespace ImageAcquisition::Session
