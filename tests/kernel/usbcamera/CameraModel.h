// SPDX-License-Identifier: MIT
#pragma once

#include "Bytes.h"
#include "VhciPort.h"

#include <chrono>
#include <string>

namespace UsbCamera
{

/// What a camera is and says of itself: everything that one can choose before it is attached.
struct CameraModel
{
    std::string kind;
    std::uint16_t vendorId = 0;
    std::uint16_t productId = 0;
    std::uint16_t usbRelease = 0x0200;
    std::uint16_t deviceRelease = 0x0100;
    std::string manufacturer;
    std::string product;
    std::string serialNumber;
    Speed speed = Speed::High;
    unsigned controller = 0;
    unsigned port = 0; ///< 0: the next one on its hub that no other camera of this program has
    bool hasExtensionUnit = false;
    bool hasSerialPort = false;
    bool answersVendorRequests = false;
    bool hasIntervalRanges = false; ///< every interval between the shortest and the longest
    Bytes firmware;                 ///< the whole reply to the firmware request
    std::chrono::milliseconds resetDelay{300};
};

/// Makes a model from a text like "vendor-new,serial=A1,speed=super": a kind (ordinary, vendor-old,
/// vendor-new) and what differs from it. Throws std::invalid_argument with a sentence for the user.
CameraModel parseModel(std::string const& text);

/// The firmware text as cameras send it: with its terminating zero byte.
Bytes firmwareReply(std::string const& text);

} // namespace UsbCamera
