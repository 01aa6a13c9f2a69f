// SPDX-License-Identifier: MIT
#pragma once

#include "session/SessionExport.h"
#include "session/StreamOptions.h"

#include <chrono>
#include <iosfwd>
#include <string>

namespace ImageAcquisition::Session
{

/// What became of a stream's frames since it began. A snapshot.
struct IMAGEACQUISITION_SESSION_EXPORT Statistics
{
    /// Milliseconds.
    using Duration = std::chrono::duration<double, std::milli>;

    unsigned long long received = 0;   ///< Had from the driver, damaged and short ones included.
    unsigned long long lost = 0;       ///< Gaps of the driver's counter; restarts are no gaps.
    unsigned long long damaged = 0;    ///< Marked by the driver.
    unsigned long long shortened = 0;  ///< With fewer bytes than the picture has.
    unsigned long long late = 0;       ///< Came more than one and a half intervals after the last.
    unsigned long long thrownAway = 0; ///< Not taken by the client in time.
    unsigned long long timeOuts = 0;   ///< next() waited in vain.
    unsigned long long returns = 0;    ///< The camera was unplugged and came back.

    double rate = 0;    ///< Frames a second, from the driver's time stamps.
    Duration jitter{0}; ///< Standard deviation of the time between frames.
    Duration age{0};    ///< Mean time from capture to delivery.
    Duration oldest{0}; ///< The longest of them.

    StreamState state = StreamState::Running; ///< Why it ended, once it did.
    std::string reason = {};                  ///< The same in words; empty while it runs.

    /// One line for a person.
    std::string text() const;
};

/// Writes Statistics::text().
IMAGEACQUISITION_SESSION_EXPORT std::ostream& operator<<(std::ostream& out, Statistics const& of);

} // namespace ImageAcquisition::Session
