// SPDX-License-Identifier: MIT
#include "WatchedCameras.h"

using namespace KernelTest;

namespace
{

/// Of the times that udevadm and the monitors tell: they are woken one after the other on a slow
/// machine, and the processes with which udev handles many devices at once come in between.
constexpr double tolerance = 10.0;

} // namespace

using MonitorLoadTest = MonitorsOf<64>;

TEST_F(MonitorLoadTest, LosesNoEventOfTheBlockingMonitor)
{
    expectAll(watched->fromBlocking);
}

TEST_F(MonitorLoadTest, LosesNoEventOfTheContinuousMonitor)
{
    expectAll(watched->fromContinuous);
}

TEST_F(MonitorLoadTest, LosesNoEventOfAMonitorThatIsAskedAfterwards)
{
    expectEachNodeOnce(watched->afterLoad, "add", 64);
}

TEST_F(MonitorLoadTest, IsReportedByTheBlockingMonitorAsUdevadmReportsIt)
{
    expectSameEvents(watched->fromBlocking, watched->fromUdevadm, tolerance);
}

TEST_F(MonitorLoadTest, IsReportedByTheContinuousMonitorAsUdevadmReportsIt)
{
    expectSameEvents(watched->fromContinuous, watched->fromUdevadm, tolerance);
}
