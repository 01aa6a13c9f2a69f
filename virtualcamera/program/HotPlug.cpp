// SPDX-License-Identifier: MIT
#include "HotPlug.h"

#include "ChildProcess.h"

#include <algorithm>
#include <chrono>

namespace VirtualCamera
{

void performWhileRunning(ChildProcess& child, std::vector<HotPlug> changes)
{
    using Clock = std::chrono::steady_clock;
    auto const earlier = [](HotPlug const& left, HotPlug const& right) {
        return left.afterMilliseconds < right.afterMilliseconds;
    };
    std::stable_sort(changes.begin(), changes.end(), earlier);
    Clock::time_point const start = Clock::now();
    for (HotPlug const& change : changes) {
        for (;;) {
            auto const passed =
                std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start);
            int const left = change.afterMilliseconds - static_cast<int>(passed.count());
            if (left <= 0) {
                break;
            }
            if (child.waitFor(left)) {
                return;
            }
        }
        change.action();
    }
    while (!child.waitFor(-1)) {
    }
}

} // namespace VirtualCamera
