// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>

/// Seconds since it was made.
class Stopwatch
{
public:
    double seconds() const
    {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - _start).count();
    }

private:
    std::chrono::steady_clock::time_point const _start = std::chrono::steady_clock::now();
};
