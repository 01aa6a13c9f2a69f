// SPDX-License-Identifier: MIT
#pragma once

#include <istream>
#include <string>

namespace ImageAcquisition::Session
{

/// What stands in the way of a camera's serial link, as far as can be seen from outside. The port
/// is looked for where the library does: in the kernel's log, by the camera's place on the bus.
std::string serialLinkFault(std::istream& kernelLog, std::string const& busInfo,
                            std::string const& devDirectory = "/dev");

/// The same, with the log as dmesg prints it now.
std::string serialLinkFault(std::string const& busInfo);

} // namespace ImageAcquisition::Session
