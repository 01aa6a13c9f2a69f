// SPDX-License-Identifier: MIT
#pragma once

namespace ImageAcquisition
{

/// When the driver captured a frame; most drivers count from the start of the machine.
struct FrameTimeStamp
{
    long long seconds = 0;
    long long microseconds = 0;
};

} // namespace ImageAcquisition
