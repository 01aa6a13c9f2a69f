// SPDX-License-Identifier: MIT
#pragma once

#include "session/Found.h"
#include "session/SessionExport.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace ImageAcquisition::Session
{

/// A camera came, went or changed.
struct Event
{
    /// What udev calls it.
    enum class Action { Added, Removed, Changed, Moved, Other };

    Action action; ///< What happened.
    Found camera;  ///< Of a camera that is gone, what was known of it.
};

/// "added", "removed", "changed", "moved" or "other".
IMAGEACQUISITION_SESSION_EXPORT char const* toText(Event::Action action) noexcept;

/**
 * @brief Tells of cameras that come and go, from its construction to its destruction.
 *
 * Nodes that are no cameras, as findCameras() has it, are passed over. Cameras that are there at
 * the beginning are known, not told.
 *
 * Movable. Threads: next() by one thread at a time; stop() from any.
 */
class IMAGEACQUISITION_SESSION_EXPORT Events
{
public:
    /// Is told of each event.
    using Callback = std::function<void(Event const&)>;

    /// Begins to watch; events wait for next().
    /// @throws Error (Refused) when udev cannot be reached.
    Events();
    /// Begins to watch and calls back on a thread of its own, one call at a time. What the callback
    /// throws ends the process, as on any thread.
    explicit Events(Callback callback);
    /// What was moved from can only be assigned to or destroyed.
    Events(Events&& other) noexcept;
    /// Ends its own watch first, as the destructor does.
    Events& operator=(Events&& other) noexcept;
    /// Ends watching; waits for a callback that is running, unless it is called from within.
    ~Events();

    /**
     * @brief Waits for the next event.
     * @param timeout zero only looks; negative waits without limit.
     * @return nothing when the time was over or watching was stopped; at once when it calls back.
     */
    std::optional<Event> next(std::chrono::milliseconds timeout);

    /// Ends watching for good, and a next() that waits. A callback that is about to begin may still
    /// run; none does after destruction.
    void stop() noexcept;

    /// A descriptor that is readable when next() may have something to say at once: for `poll`. Not
    /// to be read or closed; -1 when it calls back.
    int descriptor() const noexcept;

private:
    class Watch;

    void end() noexcept;

    std::shared_ptr<Watch> m_watch;
    bool m_callsBack = false;
};

} // namespace ImageAcquisition::Session
