// SPDX-License-Identifier: MIT
#pragma once

#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

namespace Iacq
{

/// Shows on a terminal at standard error that something takes its time, once it does; the line is
/// gone when the object is. Does nothing when standard error is no terminal.
class Progress
{
public:
    explicit Progress(std::string const& what);
    ~Progress();
    Progress(Progress const&) = delete;
    Progress& operator=(Progress const&) = delete;

private:
    void show(std::string const& what);

    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_done = false;
    std::thread m_thread;
};

} // namespace Iacq
