// SPDX-License-Identifier: MIT
#pragma once

#include <IDevice.h>

#include <string>

namespace KernelTest
{

/// What other programs and sysfs say of a camera, for comparison with the library's record.
struct SystemRecord
{
    /// As v4l2-ctl says, which goes through libv4l2 here, as the library does.
    std::string name;
    std::string driver;
    std::string bus;
    std::string driverVersion;
    unsigned capabilities = 0;
    unsigned nodeCapabilities = 0;

    /// As `lsusb -v` says.
    std::string vendorId;
    std::string productId;
    std::string manufacturer;
    std::string serial;
    std::string usbRevision; ///< such as "2.00"

    /// As sysfs says, in Mbit/s.
    std::string megabits;
};

SystemRecord readSystem(std::string const& node);

/// Expects every field of a record but the firmware text to be what the system says, and sysfs to
/// say the same of the USB device as lsusb.
void expectAsTheSystemSays(ImageAcquisition::IDevice const& record, std::string const& node);

} // namespace KernelTest
