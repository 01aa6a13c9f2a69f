// SPDX-License-Identifier: MIT
#pragma once

#include "Await.h"

#include <filesystem>
#include <iterator>

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
    return await([wanted] { return threadCount() == wanted; });
}
