// SPDX-License-Identifier: MIT
#pragma once

namespace ImageAcquisition
{

/// Speed that a USB device negotiated with its port. The numbers are those of libusb.
enum UsbSpeed : int {
    UsbSpeedUnknown = 0, ///< Not known, not a USB device, or faster than super speed.
    UsbSpeedLow = 1,     ///< 1.5 Mbit/s
    UsbSpeedFull = 2,    ///< 12 Mbit/s
    UsbSpeedHigh = 3,    ///< 480 Mbit/s
    UsbSpeedSuper = 4    ///< 5 Gbit/s
};

} // namespace ImageAcquisition
