// SPDX-License-Identifier: MIT
#pragma once

#include "UvcRequests.h"

#include <chrono>
#include <cstddef>
#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace UsbCamera
{

/// A request that the camera is to refuse.
struct StallFault
{
    std::optional<std::uint8_t> unit; ///< any when absent
    std::optional<std::uint8_t> selector;
    std::optional<std::uint8_t> request;
    unsigned remaining = 1;
    UvcError error = UvcError::NotReady;
};

enum class SerialMode { Normal, Silent, Slow, Split, Short };

/// What a camera is to do wrong, as ordered by its user.
struct Faults
{
    std::vector<StallFault> stalls;
    std::map<std::pair<std::uint8_t, std::uint8_t>, std::uint16_t> lengths; ///< GET_LEN's answer
    unsigned vendorStalls = 0;
    std::optional<std::uint32_t> unplugAtFrame;
    unsigned unplugInControl = 0; ///< at the nth control request to a unit from now; 0: never
    unsigned unplugInSerial = 0;  ///< at the nth serial packet from now; 0: never
    std::optional<std::uint32_t> holdAtFrame;
    std::map<std::uint32_t, bool> corruptedFrames;
    std::map<std::uint32_t, std::size_t> cutFrames; ///< to so many bytes
    SerialMode serialMode = SerialMode::Normal;
    std::chrono::milliseconds serialDelay{0};
    std::size_t serialSize = 0; ///< of a short reply

    /// The error to stall this request with, which uses one stall up; nothing in the normal case.
    std::optional<UvcError> takeStall(std::uint8_t unit, std::uint8_t selector,
                                      std::uint8_t request);
};

/// Counts a "from now" number down; true when the moment has come.
bool countDown(unsigned& remaining);

} // namespace UsbCamera
