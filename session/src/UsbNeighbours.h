// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace ImageAcquisition::Session
{

/// The other devices on the bus of the device at this port, such as "1-3 'Product'", without hubs;
/// empty when there are none or the port is empty.
std::string usbNeighboursOf(std::string const& port);

} // namespace ImageAcquisition::Session
