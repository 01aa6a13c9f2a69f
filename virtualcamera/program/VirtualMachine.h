// SPDX-License-Identifier: MIT
#pragma once

#include "HostCamera.h"
#include "Testbed.h"

namespace VirtualCamera
{

/// A testbed with cameras on it, and the file that tells the preloaded library about them.
class VirtualMachine
{
public:
    explicit VirtualMachine(std::vector<HostCamera> cameras);

    std::string configurationFile() const;
    /// Take away and bring back the camera that was named last.
    void unplugLast();
    void plugLast();

private:
    struct PlacedCamera
    {
        HostCamera camera;
        std::optional<UsbDevice> usb;
        bool plugged = false;
    };

    void plug(PlacedCamera& placed);
    void unplug(PlacedCamera& placed);
    void writeConfiguration() const;

    Testbed _testbed;
    std::vector<PlacedCamera> _cameras;
};

} // namespace VirtualCamera
