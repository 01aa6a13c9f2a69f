// SPDX-License-Identifier: MIT
#pragma once

#include "Connection.h"
#include "Signal.h"

#include "session/Error.h"
#include "session/Events.h"

#include <memory>
#include <optional>

namespace ImageAcquisition::Session
{

/**
 * Waits for a camera that was unplugged: the one with its serial number; where it has none or
 * others have the same, the one at its port. Of one thread.
 */
class CameraReturn
{
public:
    explicit CameraReturn(Found lost);

    /// Waits until it is worth to open(): now, when something was plugged in, or a while after the
    /// camera was refused. False when @p end is set or the time is over.
    bool await(Signal const& end, Deadline const& patience);

    /// @throws Error when the camera is not there, or cannot be opened.
    std::shared_ptr<Connection> open();

    /// What was made of the open camera failed.
    void refused(Error const& error);

private:
    /// Whether an event tells of the camera, which then is the candidate.
    bool isToldOf();

    Found const m_lost;
    std::optional<Events> m_events;   ///< None where udev cannot be reached: then time has to do.
    std::optional<Found> m_candidate; ///< The camera, as an event told of it.
    int m_attempts = 0;               ///< That are worth it, without another event.
    int m_pause = 0;                  ///< Milliseconds; -1: until something is plugged in.
};

} // namespace ImageAcquisition::Session
