// SPDX-License-Identifier: MIT
#pragma once

#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <fstream>
#include <string>
#include <thread>

/// A thread whose blocking can be awaited.
class WatchedThread
{
public:
    template <typename Work>
    explicit WatchedThread(Work work)
        : _thread([this, work] {
              _id = static_cast<pid_t>(syscall(SYS_gettid));
              work();
          })
    {
    }
    WatchedThread(WatchedThread const&) = delete;
    WatchedThread& operator=(WatchedThread const&) = delete;
    ~WatchedThread() { join(); }

    void join()
    {
        if (_thread.joinable()) {
            _thread.join();
        }
    }

    /// Returns once the thread waits in select(); false when it does not within 5 seconds.
    bool awaitSelect() const
    {
        auto const end = std::chrono::steady_clock::now() + std::chrono::seconds(5);
        while (std::chrono::steady_clock::now() < end) {
            if (waitsInSelect()) {
                return true;
            }
            std::this_thread::yield();
        }
        return false;
    }

private:
    bool waitsInSelect() const
    {
        pid_t const id = _id;
        if (id == 0) {
            return false;
        }
        // The number of the system call that the thread waits in; "running" when it does not wait.
        std::ifstream file("/proc/self/task/" + std::to_string(id) + "/syscall");
        std::string number;
        file >> number;
        return number == std::to_string(SYS_select) || number == std::to_string(SYS_pselect6);
    }

    std::atomic<pid_t> _id{0};
    std::thread _thread;
};
