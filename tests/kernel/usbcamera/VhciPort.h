// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

namespace UsbCamera
{

/// Link speeds by the numbers that the virtual controller's attach file takes.
enum class Speed : std::uint8_t { Full = 2, High = 3, Super = 5 };

std::string speedName(Speed speed);

/// One root port of the kernel's virtual host controllers (module vhci-hcd).
class VhciPort
{
public:
    /// `port` counts from 1 on the controller's hub for `speed`, as the kernel's bus paths do.
    VhciPort(unsigned controller, unsigned port, Speed speed);

    /// Hands one end of a connected pair of sockets to the controller and returns the other; -1
    /// while the port isn't free yet. Throws std::system_error when there is no such controller.
    int attach();

    bool isFree() const;

private:
    std::string statusFile() const;

    unsigned m_controller;
    unsigned m_number; ///< over all controllers, as the attach file counts
    Speed m_speed;
};

} // namespace UsbCamera
