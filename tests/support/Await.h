// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <thread>

/// Returns once the condition holds; false when it does not within 5 seconds.
template <typename Condition>
bool await(Condition condition)
{
    auto const limit = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > limit) {
            return false;
        }
        std::this_thread::yield();
    }
    return true;
}
