// SPDX-License-Identifier: MIT
#pragma once

#include "HostCamera.h"
#include "PrivateFolder.h"
#include "SerialPorts.h"
#include "Testbed.h"

namespace VirtualCamera
{

/// A testbed with cameras on it, and the file that tells the preloaded library about them. Has to
/// be made before this process has any other thread.
class VirtualMachine
{
public:
    explicit VirtualMachine(std::vector<HostCamera> cameras);

    std::string configurationFile() const;
    /// The folder of the tools that replace the machine's own; to be searched first.
    std::string toolFolder() const { return m_serialPorts.toolFolder(); }
    /// Take away and bring back the camera that was named last.
    void unplugLast();
    void plugLast();

private:
    struct PlacedCamera
    {
        HostCamera camera;
        std::optional<UsbDevice> usb;
        bool plugged = false;
        std::optional<std::string> tty;
    };

    void plug(PlacedCamera& placed);
    void unplug(PlacedCamera& placed);
    void writeConfiguration() const;

    PrivateFolder m_folder; ///< Of all the files of this machine.
    Testbed m_testbed;
    SerialPorts m_serialPorts{m_testbed};
    std::vector<PlacedCamera> m_cameras;
};

} // namespace VirtualCamera
