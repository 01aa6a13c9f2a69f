// SPDX-License-Identifier: MIT
#pragma once

#include <signal.h>
#include <sys/types.h>

#include <string>
#include <vector>

namespace VirtualCamera
{

/// Blocks the signals that are meant for a child until there is one. Has to exist before
/// the process makes any thread, so that none of those takes a signal meanwhile.
class BlockedSignals
{
public:
    BlockedSignals();
    sigset_t const& earlier() const { return m_earlier; }

private:
    sigset_t m_earlier;
};

/// A program that runs with this process's environment and terminal. Signals that end this process
/// are passed on to it, so that the two end together.
class ChildProcess
{
public:
    /// Throws `std::system_error` when the program can't be started. Lets the signals through.
    ChildProcess(std::vector<std::string> const& command, BlockedSignals const& blocked);

    /// Waits for its end, at most so long; -1 waits for ever. True when it has ended.
    bool waitFor(int milliseconds);
    /// Once it has ended: its exit status, or 128 and the number of the signal that ended it.
    int exitStatus() const { return m_exitStatus; }

private:
    void ended(int status);

    pid_t m_process = -1;
    int m_processDescriptor = -1;
    bool m_running = true;
    int m_exitStatus = 0;
};

} // namespace VirtualCamera
