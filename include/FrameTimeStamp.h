// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace ImageAcquisition
{

/// When the driver captured a frame; most drivers count from the start of the machine.
struct FrameTimeStamp
{
    std::int64_t seconds = 0;
    std::int64_t microseconds = 0;
};

} // namespace ImageAcquisition
