// SPDX-License-Identifier: MIT
#pragma once

#include "Shell.h"

#include <linux/usb/video.h>
#include <linux/uvcvideo.h>

#include "Bytes.h"

namespace KernelTest
{

/// The kernel log's last line that holds a text; empty when none does.
std::string lastKernelLine(std::string const& text);

struct UnitAnswer
{
    int error = 0; ///< errno of the query
    UsbCamera::Bytes data;
};

/// A request to a unit of the camera behind a video node, past the driver's controls.
UnitAnswer queryUnit(std::string const& node, std::uint8_t unit, std::uint8_t selector,
                     std::uint8_t request, UsbCamera::Bytes data);

struct UsbAnswer
{
    int result = 0; ///< bytes received, or libusb's error
    std::string text;
};

/// A vendor request to a device from the host's side, as an application makes it.
UsbAnswer requestVendor(std::uint16_t vendorId, std::uint16_t productId, std::uint8_t request,
                        std::uint16_t length);

} // namespace KernelTest
