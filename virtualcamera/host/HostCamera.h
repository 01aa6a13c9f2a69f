// SPDX-License-Identifier: MIT
#pragma once

#include "CameraScript.h"
#include "UsbDeviceScript.h"

#include <optional>
#include <string>
#include <vector>

namespace VirtualCamera
{

/// A camera with all its sides: the nodes that its driver makes, and the USB device below them.
struct HostCamera
{
    std::vector<CameraScript> nodes;
    std::optional<UsbDeviceScript> usb; ///< Absent: the nodes hang below no USB device.
    /// The USB device has the vendor's serial port, too.
    bool serialPort = false;
};

/// The cameras of a configuration file, with the `usb` objects that the preloaded library skips;
/// nodes that name the same port belong to one camera. Throws `std::runtime_error`, with the place
/// in the text, for anything that is not understood.
std::vector<HostCamera> hostCamerasFromJson(std::string const& text);

} // namespace VirtualCamera
