// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>

namespace ImageAcquisition::Session
{

/// Which frames a stream hands out.
enum class Delivery {
    EveryFrame, ///< All in their order; when the client is too slow, those it has no room for go.
    NewestOnly  ///< The one captured last; those before it that nobody took go.
};

/// For `camera.stream(everyFrame)`.
inline constexpr Delivery everyFrame = Delivery::EveryFrame;
/// For `camera.stream(newest)`.
inline constexpr Delivery newest = Delivery::NewestOnly;

/// Where a stream is. From Stopped on it has ended.
enum class StreamState {
    Running,   ///< Frames come.
    Away,      ///< The camera is unplugged, and the stream waits for it to come back.
    Stopped,   ///< Somebody stopped it.
    Unplugged, ///< The camera is gone.
    Failed     ///< The driver failed: Stream::error() tells how.
};

/// How a stream is to run. Made from a Delivery where nothing else is wanted.
struct StreamOptions
{
    /// Everything else as it usually is.
    StreamOptions(Delivery which = everyFrame) : delivery(which) {}

    Delivery delivery; ///< Which frames are handed out.
    /// Buffers to ask the driver for, at least 2; it may grant more or fewer. Frames that the
    /// client holds are missing from them.
    int buffers = 4;
    /// How long a range `for` waits for each frame.
    std::chrono::milliseconds timeout{2000};

    /// Whether the stream survives unplugging: it then waits for the same camera (its serial
    /// number, or else its port), opens it, sets selection and controls as they were, and goes on.
    /// Controls are read when the stream begins, which takes its time over a serial link; what is
    /// set to them later, by Control, is remembered.
    bool stayOn = false;
    /// How long it waits for the camera; then it ends as Unplugged. Zero: for ever.
    std::chrono::milliseconds patience{0};
    /// Told of each change of state, on the stream's own thread; must not destroy the stream,
    /// nor wait for who does, for ending a stream waits for this call. What it throws ends the
    /// process, as on any thread. May be empty.
    std::function<void(StreamState)> onState = {};
};

} // namespace ImageAcquisition::Session
