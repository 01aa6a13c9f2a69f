// SPDX-License-Identifier: MIT
#pragma once

#include <csignal>

namespace ImageAcquisition::Session
{

/// While it lives, threads are made that take no signals: those are for the client's threads.
class BlockedSignals
{
public:
    BlockedSignals()
    {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &m_before);
    }
    BlockedSignals(BlockedSignals const&) = delete;
    BlockedSignals& operator=(BlockedSignals const&) = delete;
    ~BlockedSignals() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }

private:
    sigset_t m_before;
};

} // namespace ImageAcquisition::Session
