// SPDX-License-Identifier: MIT
#pragma once

#include "session/Selection.h"
#include "session/Statistics.h"

#include <chrono>
#include <optional>

namespace ImageAcquisition::Session
{

/// Counts and times a stream's frames.
class Measure
{
public:
    using Clock = std::chrono::steady_clock;

    struct Arrival
    {
        unsigned long long number; ///< The driver's.
        Clock::time_point captured;
        bool isDamaged;
        bool isShort;
    };

    /// The stream begins, at first or anew: numbers and times before tell nothing about those that
    /// follow.
    /// @param expected what is selected, if that is known.
    void begin(FrameRate expected);
    /// The stream has begun anew, since its camera came back.
    void cameBack() { ++m_counts.returns; }

    /// @return how many were lost between the frame before and this one.
    unsigned long long came(Arrival const& arrival);
    void threwAway() { ++m_counts.thrownAway; }
    void handedOut(Clock::duration age);
    void timedOut() { ++m_counts.timeOuts; }

    /// All but state and reason.
    Statistics statistics() const;

private:
    void timed(double elapsedMs, unsigned long long lost);
    double meanMs() const;

    Statistics m_counts; ///< The counts only.
    bool m_isFirst = true;
    unsigned long long m_lastNumber = 0;
    Clock::time_point m_lastCaptured;
    double m_expectedMs = 0;

    // Of the times between frames.
    unsigned long long m_intervals = 0;
    double m_sumMs = 0;
    double m_squaresMs = 0;

    unsigned long long m_handedOut = 0;
    Clock::duration m_ages{0};
    Clock::duration m_oldest{0};
};

} // namespace ImageAcquisition::Session
