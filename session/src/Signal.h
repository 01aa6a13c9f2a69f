// SPDX-License-Identifier: MIT
#pragma once

#include "session/Error.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdint>

namespace ImageAcquisition::Session
{

/// The end of a wait; never, for a negative time.
class Deadline
{
public:
    using Clock = std::chrono::steady_clock;

    explicit Deadline(std::chrono::milliseconds timeout) noexcept
        : m_timeout(clamped(timeout)), m_begin(m_timeout < 0 ? Clock::time_point() : Clock::now())
    {
    }

    /// For `poll`: the whole time in milliseconds, -1 for ever.
    int whole() const noexcept { return m_timeout; }

    /// For `poll`: what is left of it, rounded up.
    int left() const noexcept
    {
        if (m_timeout < 0) {
            return -1;
        }
        auto const gone = std::chrono::floor<std::chrono::milliseconds>(Clock::now() - m_begin);
        return gone.count() >= m_timeout ? 0 : m_timeout - static_cast<int>(gone.count());
    }

private:
    /// Longer than three weeks is for ever.
    static int clamped(std::chrono::milliseconds timeout) noexcept
    {
        return timeout.count() < 0 || timeout.count() > INT_MAX ? -1
                                                                : static_cast<int>(timeout.count());
    }

    int m_timeout;
    Clock::time_point m_begin;
};

/// Owns a descriptor.
class Descriptor
{
public:
    /// @throws Error when there is none left, which is -1.
    explicit Descriptor(int number) : m_number(number)
    {
        if (m_number == -1) {
            throw Error({ErrorKind::Refused, "open an event descriptor", "", "", errno});
        }
    }
    Descriptor(Descriptor const&) = delete;
    Descriptor& operator=(Descriptor const&) = delete;
    ~Descriptor() { close(m_number); }

    int number() const noexcept { return m_number; }

private:
    int const m_number;
};

/// A flag that can be waited for, also together with other descriptors.
class Signal
{
public:
    /// @throws Error when there is no descriptor left.
    Signal() : m_descriptor(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {}

    int descriptor() const noexcept { return m_descriptor.number(); }

    // By the bare system calls: those of the C library are points of cancellation, and cost twice
    // as much.
    void set() noexcept
    {
        std::uint64_t const one = 1;
        syscall(SYS_write, descriptor(), &one, sizeof one);
    }
    void clear() noexcept
    {
        std::uint64_t count = 0;
        syscall(SYS_read, descriptor(), &count, sizeof count);
    }

    /// Whether it is set before the time is over.
    /// @param isFirst the deadline was only just made.
    bool wait(Deadline const& deadline, bool isFirst = false) const noexcept
    {
        pollfd entry{descriptor(), POLLIN, 0};
        int const left = isFirst ? deadline.whole() : deadline.left();
        int ready = poll(&entry, 1, left);
        while (ready == -1 && errno == EINTR) {
            ready = poll(&entry, 1, deadline.left());
        }
        return ready > 0;
    }

private:
    Descriptor const m_descriptor;
};

} // namespace ImageAcquisition::Session
