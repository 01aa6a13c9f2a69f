// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <vector>

namespace VirtualCamera
{

class ChildProcess;

/// A change of the machine at a time after the program's start.
struct HotPlug
{
    int afterMilliseconds;
    std::function<void()> action;
};

/// Carries the changes out in the order of their times until the program ends, and waits for that.
void performWhileRunning(ChildProcess& child, std::vector<HotPlug> changes);

} // namespace VirtualCamera
