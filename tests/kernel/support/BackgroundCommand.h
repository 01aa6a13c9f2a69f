// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <sys/types.h>

namespace KernelTest
{

/// A shell command that runs beside the test; it is ended with it.
class BackgroundCommand
{
public:
    /// Standard output and standard error go to a file.
    explicit BackgroundCommand(std::string const& line);
    ~BackgroundCommand();
    BackgroundCommand(BackgroundCommand const&) = delete;
    BackgroundCommand& operator=(BackgroundCommand const&) = delete;

    /// The command's own process id.
    pid_t process() const { return m_process; }

    /// What it has written so far.
    std::string output() const;

    void signal(int number) const;

    /// Whether it has joined udev's multicast group: its events reach it from then on.
    bool listensToUdev() const;

    /// Waits until it ends: its exit status, 128 and the signal that ended it, or -1 when it runs
    /// on.
    int wait();

private:
    std::string m_file;
    pid_t m_process = -1;
};

} // namespace KernelTest
