// SPDX-License-Identifier: MIT
#pragma once

#include "Await.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <fstream>
#include <string>
#include <thread>

/// A thread whose blocking can be awaited.
class WatchedThread
{
public:
    template <typename Work>
    explicit WatchedThread(Work work)
        : m_thread([this, work] {
              m_id = static_cast<pid_t>(syscall(SYS_gettid));
              work();
          })
    {
    }
    WatchedThread(WatchedThread const&) = delete;
    WatchedThread& operator=(WatchedThread const&) = delete;
    ~WatchedThread() { join(); }

    void join()
    {
        if (m_thread.joinable()) {
            m_thread.join();
        }
    }

    /// Returns once the thread waits in select(); false when it does not within 5 seconds.
    bool awaitSelect() const
    {
        return await([this] { return waitsInSelect(); });
    }

private:
    bool waitsInSelect() const
    {
        pid_t const id = m_id;
        if (id == 0) {
            return false;
        }
        // The number of the system call that the thread waits in; "running" when it does not wait.
        std::ifstream file("/proc/self/task/" + std::to_string(id) + "/syscall");
        std::string number;
        file >> number;
        return number == std::to_string(SYS_select) || number == std::to_string(SYS_pselect6);
    }

    std::atomic<pid_t> m_id{0};
    std::thread m_thread;
};
