// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <thread>

/// Returns once the condition holds; false when it does not in time.
template <typename Condition>
bool await(Condition const& condition, std::chrono::milliseconds limit = std::chrono::seconds(5),
           std::chrono::milliseconds pause = std::chrono::milliseconds(1))
{
    auto const end = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        std::this_thread::sleep_for(pause);
    }
    return true;
}
