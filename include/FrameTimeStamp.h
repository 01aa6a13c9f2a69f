// SPDX-License-Identifier: MIT
#pragma once

namespace ImageAcquisition
{

/// When the driver captured a frame; most drivers count from the start of the machine.
struct FrameTimeStamp
{
    long long seconds = 0;      ///< Whole seconds
    long long microseconds = 0; ///< 0 to 999999
};

} // namespace ImageAcquisition
