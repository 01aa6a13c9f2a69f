// SPDX-License-Identifier: MIT
#pragma once

#include "SerialFirmware.h"
#include "TtyName.h"

#include <map>
#include <memory>
#include <string>

namespace VirtualCamera
{

class Testbed;

/// The ttys of the machine's cameras, and the kernel log that tells of them, for a program that
/// looks for them as on a real machine: a "dmesg" of its own prints that log.
class SerialPorts
{
public:
    explicit SerialPorts(Testbed& testbed);

    std::string toolFolder() const;
    /// Adds the tty of the USB device at a port path and announces it; the result is its node.
    std::string plug(std::string const& usbPort);
    void unplug(std::string const& node);

private:
    struct Port
    {
        TtyName name;
        std::unique_ptr<SerialFirmware> firmware = std::make_unique<SerialFirmware>();
    };

    std::string logFile() const;
    void announce(std::string const& line) const;

    Testbed& m_testbed;
    std::map<std::string, Port> m_ports; ///< By their nodes.
};

} // namespace VirtualCamera
