// SPDX-License-Identifier: MIT
#include "Measure.h"

#include <algorithm>
#include <cmath>

namespace ImageAcquisition::Session
{

namespace
{

/// Of an interval, after which a frame counts as late.
constexpr double lateness = 1.5;

} // namespace

void Measure::begin(FrameRate expected)
{
    m_isFirst = true;
    m_expectedMs = expected.isSaid() ? 1000 / expected.perSecond() : 0;
}

unsigned long long Measure::came(Arrival const& arrival)
{
    ++m_counts.received;
    m_counts.damaged += arrival.isDamaged ? 1 : 0;
    m_counts.shortened += arrival.isShort ? 1 : 0;
    unsigned long long lost = 0;
    if (!m_isFirst) {
        // A driver that starts anew, or does not count at all, has lost nothing by that.
        lost = arrival.number > m_lastNumber ? arrival.number - m_lastNumber - 1 : 0;
        m_counts.lost += lost;
        timed(Statistics::Duration(arrival.captured - m_lastCaptured).count(), lost);
    }
    m_isFirst = false;
    m_lastNumber = arrival.number;
    m_lastCaptured = arrival.captured;
    return lost;
}

void Measure::timed(double elapsedMs, unsigned long long lost)
{
    double const usualMs = m_expectedMs > 0 ? m_expectedMs : meanMs();
    // Lost frames had their time too.
    if (usualMs > 0 &&
        elapsedMs > (static_cast<double>(static_cast<long long>(lost)) + lateness) * usualMs) {
        ++m_counts.late;
    }
    ++m_intervals;
    m_sumMs += elapsedMs;
    m_squaresMs += elapsedMs * elapsedMs;
}

double Measure::meanMs() const
{
    return m_intervals == 0 ? 0 : m_sumMs / static_cast<double>(m_intervals);
}

void Measure::handedOut(Clock::duration age)
{
    ++m_handedOut;
    m_ages += age;
    m_oldest = std::max(m_oldest, age);
}

Statistics Measure::statistics() const
{
    Statistics all = m_counts;
    double const mean = meanMs();
    all.rate = mean > 0 ? 1000 / mean : 0;
    if (m_intervals > 0) {
        double const variance = m_squaresMs / static_cast<double>(m_intervals) - mean * mean;
        all.jitter = Statistics::Duration(std::sqrt(std::max(variance, 0.0)));
    }
    if (m_handedOut > 0) {
        all.age = Statistics::Duration(m_ages) / static_cast<double>(m_handedOut);
    }
    all.oldest = m_oldest;
    return all;
}

} // namespace ImageAcquisition::Session
