// SPDX-License-Identifier: MIT
#pragma once

#include "CameraScript.h"

#include <cstdint>
#include <optional>

namespace VirtualCamera
{

class BufferQueue;

/// Nanoseconds of the monotonic clock, as select() and frame time stamps count them.
using Nanoseconds = std::int64_t;

Nanoseconds monotonicNow();

/// The sensor's side of a stream: decides when which frame arrives, without a thread. Whoever
/// looks at the device lets it catch up with the clock first.
class FrameSource
{
public:
    explicit FrameSource(CameraScript const& script);

    void start(Nanoseconds now, Interval const& interval);
    /// Moves the frames that are due by now into queued buffers, or loses them.
    void advance(Nanoseconds now, BufferQueue& queue);
    /// Moves frames in without regard to the clock.
    void deliver(unsigned count, Nanoseconds now, BufferQueue& queue);
    /// When `advance` will have something to do that a waiting client must hear of.
    std::optional<Nanoseconds> nextEvent(BufferQueue const& queue) const;

    bool vanished() const { return m_vanished; }
    unsigned dropped() const { return m_dropped; }
    /// What goes wrong with a frame, all scripts for it taken together.
    FrameFault faultOf(std::uint32_t frame) const;

private:
    bool neverAgain(std::uint32_t frame) const;
    Nanoseconds dueTime(std::uint32_t frame) const;
    void arrive(Nanoseconds due, BufferQueue& queue);
    bool mayArrive(Nanoseconds now, BufferQueue const& queue) const;

    CameraScript const& m_script;
    Nanoseconds m_start = 0;
    Nanoseconds m_interval = 0;
    Nanoseconds m_lastArrival = 0;
    std::uint32_t m_next = 0;
    unsigned m_dropped = 0;
    bool m_vanished = false;
};

} // namespace VirtualCamera
