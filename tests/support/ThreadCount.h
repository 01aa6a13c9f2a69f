// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <filesystem>
#include <iterator>
#include <thread>

/// How many threads the process has.
inline int threadCount()
{
    std::filesystem::directory_iterator const threads("/proc/self/task");
    return static_cast<int>(std::distance(begin(threads), end(threads)));
}

/// Returns once the process has so many threads; false when it does not within 5 seconds. A thread
/// that was joined is listed for a moment more.
inline bool awaitThreadCount(int wanted)
{
    auto const end = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (threadCount() != wanted) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        std::this_thread::yield();
    }
    return true;
}
