// SPDX-License-Identifier: MIT
#pragma once

#include <FrameTimeStamp.h>

#include <chrono>

namespace ImageAcquisition::Session
{

/**
 * When a frame was captured that came at @p now, on the steady clock. Drivers stamp by the
 * monotonic clock, or by the time of day; which of them it is shows in how far away from it the
 * stamp is. Where it is far from both, or there is no stamp, the frame counts as captured when it
 * came.
 */
std::chrono::steady_clock::time_point capturedAt(FrameTimeStamp stamp,
                                                 std::chrono::steady_clock::time_point now);

} // namespace ImageAcquisition::Session
