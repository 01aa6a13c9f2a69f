// SPDX-License-Identifier: MIT
#include "FrameSource.h"

#include "BufferQueue.h"

#include <algorithm>
#include <ctime>

namespace VirtualCamera
{

namespace
{

constexpr Nanoseconds second = 1000000000;
constexpr Nanoseconds shortestInterval = 100000;

timeval timestampOf(Nanoseconds time)
{
    timeval stamp{};
    stamp.tv_sec = static_cast<time_t>(time / second);
    stamp.tv_usec = static_cast<suseconds_t>(time % second / 1000);
    return stamp;
}

bool applies(FrameFault const& fault, std::uint32_t frame)
{
    return frame == fault.frame || (fault.fromThenOn && frame > fault.frame);
}

} // namespace

Nanoseconds monotonicNow()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return Nanoseconds{now.tv_sec} * second + now.tv_nsec;
}

FrameSource::FrameSource(CameraScript const& script) : m_script(script) {}

void FrameSource::start(Nanoseconds now, Interval const& interval)
{
    m_start = now;
    m_lastArrival = now;
    m_next = 0;
    Interval const usual;
    bool const usable = interval.numerator != 0 && interval.denominator != 0;
    Interval const& used = usable ? interval : usual;
    m_interval = std::max(second * used.numerator / used.denominator, shortestInterval);
}

FrameFault FrameSource::faultOf(std::uint32_t frame) const
{
    FrameFault all;
    all.frame = frame;
    for (FrameFault const& fault : m_script.frameFaults) {
        if (!applies(fault, frame)) {
            continue;
        }
        all.lateMilliseconds = std::max(all.lateMilliseconds, fault.lateMilliseconds);
        all.corrupted = all.corrupted || fault.corrupted;
        all.missing = all.missing || fault.missing;
        if (fault.bytesUsed) {
            all.bytesUsed = fault.bytesUsed;
        }
        if (fault.claimedBytes) {
            all.claimedBytes = fault.claimedBytes;
        }
        if (fault.index) {
            all.index = fault.index;
        }
        if (fault.userPointer) {
            all.userPointer = fault.userPointer;
        }
        if (fault.length) {
            all.length = fault.length;
        }
    }
    return all;
}

bool FrameSource::neverAgain(std::uint32_t frame) const
{
    auto const silent = [frame](FrameFault const& fault) {
        return fault.missing && fault.fromThenOn && frame >= fault.frame;
    };
    return std::any_of(m_script.frameFaults.begin(), m_script.frameFaults.end(), silent);
}

Nanoseconds FrameSource::dueTime(std::uint32_t frame) const
{
    Nanoseconds const late = Nanoseconds{faultOf(frame).lateMilliseconds} * 1000000;
    Nanoseconds const due = m_start + (Nanoseconds{frame} + 1) * m_interval + late;
    return std::max(due, m_lastArrival);
}

void FrameSource::arrive(Nanoseconds due, BufferQueue& queue)
{
    if (m_script.vanishingFrame && m_next >= *m_script.vanishingFrame) {
        m_vanished = true;
        return;
    }
    if (!faultOf(m_next).missing) {
        if (queue.hasQueued()) {
            queue.complete(m_next, timestampOf(due));
        } else {
            ++m_dropped;
        }
    }
    m_lastArrival = due;
    ++m_next;
}

bool FrameSource::mayArrive(Nanoseconds now, BufferQueue const& queue) const
{
    bool const vanishing = m_script.vanishingFrame.has_value();
    if (m_script.pace == Pace::Interval) {
        return (vanishing || !neverAgain(m_next)) && dueTime(m_next) <= now;
    }
    if (vanishing && m_next >= *m_script.vanishingFrame) {
        return true;
    }
    return m_script.pace == Pace::Immediate && queue.hasQueued() &&
           (vanishing || !neverAgain(m_next));
}

void FrameSource::advance(Nanoseconds now, BufferQueue& queue)
{
    while (queue.streaming() && !m_vanished && mayArrive(now, queue)) {
        arrive(m_script.pace == Pace::Interval ? dueTime(m_next) : now, queue);
    }
}

void FrameSource::deliver(unsigned count, Nanoseconds now, BufferQueue& queue)
{
    for (unsigned frame = 0; frame < count && queue.streaming() && !m_vanished; ++frame) {
        arrive(now, queue);
    }
}

std::optional<Nanoseconds> FrameSource::nextEvent(BufferQueue const& queue) const
{
    if (m_script.pace != Pace::Interval) {
        return std::nullopt;
    }
    std::optional<Nanoseconds> event;
    if (m_script.vanishingFrame) {
        event = dueTime(std::max(m_next, *m_script.vanishingFrame));
    }
    if (!queue.hasQueued()) {
        return event;
    }
    std::uint32_t frame = m_next;
    while (!neverAgain(frame) && faultOf(frame).missing) {
        ++frame;
    }
    if (neverAgain(frame)) {
        return event;
    }
    return event ? std::min(*event, dueTime(frame)) : dueTime(frame);
}

} // namespace VirtualCamera
