// SPDX-License-Identifier: MIT
#include "WatchedCameras.h"

using namespace KernelTest;

namespace
{

/// Of the times that udevadm and the monitors tell: they are woken one after the other on a slow
/// machine.
constexpr double tolerance = 2.0;

} // namespace

using VideoMonitorTest = MonitorsOf<2>;

TEST_F(VideoMonitorTest, CamerasAreReportedByTheBlockingMonitorWhenTheyComeAndGo)
{
    expectAll(watched->fromBlocking);
}

TEST_F(VideoMonitorTest, CamerasAreReportedByTheContinuousMonitorWhenTheyComeAndGo)
{
    expectAll(watched->fromContinuous);
}

TEST_F(VideoMonitorTest, CamerasAreReportedByTheBlockingMonitorAsUdevadmReportsThem)
{
    expectSameEvents(watched->fromBlocking, watched->fromUdevadm, tolerance);
}

TEST_F(VideoMonitorTest, CamerasAreReportedByTheContinuousMonitorAsUdevadmReportsThem)
{
    expectSameEvents(watched->fromContinuous, watched->fromUdevadm, tolerance);
}

TEST_F(VideoMonitorTest, CamerasBringOtherDevicesThatAreNotReported)
{
    EXPECT_GE(watched->othersFromUdevadm, 2U);
    expectAll(watched->fromContinuous);
}
