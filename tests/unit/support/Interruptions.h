// SPDX-License-Identifier: MIT
#pragma once

#include <sys/time.h>

#include <csignal>

/// While it lives, a signal that does not restart system calls interrupts the process every 2 ms.
class Interruptions
{
public:
    Interruptions()
    {
        struct sigaction action
        {
        };
        action.sa_handler = [](int) { ++count; };
        sigaction(SIGALRM, &action, &m_earlier);
        itimerval const often{{0, 2000}, {0, 2000}};
        setitimer(ITIMER_REAL, &often, nullptr);
    }
    Interruptions(Interruptions const&) = delete;
    Interruptions& operator=(Interruptions const&) = delete;
    ~Interruptions()
    {
        itimerval const never{};
        setitimer(ITIMER_REAL, &never, nullptr);
        sigaction(SIGALRM, &m_earlier, nullptr);
    }

    static inline volatile std::sig_atomic_t count = 0;

private:
    struct sigaction m_earlier
    {
    };
};
