// SPDX-License-Identifier: MIT
#pragma once

#include "UsbDeviceScript.h"

namespace VirtualCamera
{

/// The `descriptors` file of a device: the device's own and one configuration with one video
/// interface, which is what libusb insists on.
std::vector<std::uint8_t> usbDescriptors(UsbDeviceScript const& script);

} // namespace VirtualCamera
