// SPDX-License-Identifier: MIT
#pragma once

#include "Await.h"
#include "DescriptorCount.h"
#include "IBlockingCameraMonitor.h"
#include "Interruptions.h"
#include "Stopwatch.h"
#include "Testbed.h"
#include "UdevHook.h"

#include <gtest/gtest.h>

/// The descriptors of the kinds that a monitor uses. The simulated machine opens others whenever
/// its own threads get to it.
inline int pipesAndSockets()
{
    int count = 0;
    for (std::string const& target : descriptorTargets()) {
        count += target.rfind("pipe:", 0) == 0 || target.rfind("socket:", 0) == 0 ? 1 : 0;
    }
    return count;
}

/// A simulated machine whose devices come and go, for tests of monitors.
class MonitoredMachine : public testing::Test
{
protected:
    void SetUp() override
    {
        // Without the preloaded library the events would be the real machine's.
        ASSERT_TRUE(VirtualCamera::Testbed::visible());
        // The first event makes the simulated machine open the socket that it keeps.
        m_machine.addOtherDevice("input", "event99");
        m_descriptors = pipesAndSockets();
    }
    void TearDown() override
    {
        EXPECT_EQ(UdevHook::monitors(), 0) << "a monitor was left";
        EXPECT_EQ(UdevHook::devices(), 0) << "a device was left";
        EXPECT_EQ(pipesAndSockets(), m_descriptors) << "a descriptor was left";
    }

    VirtualCamera::Testbed m_machine;
    UdevHook m_hook;

private:
    int m_descriptors = 0;
};

/// Asks until an event comes; false when none does within 5 seconds. An event of another subsystem
/// may wake the monitor for nothing, because the simulated machine does not filter by itself.
inline bool nextEvent(ImageAcquisition::IBlockingCameraMonitor const& monitor,
                      ImageAcquisition::ICameraEvent& event)
{
    return await([&] { return monitor.getEvent(&event); });
}

/// Stops a monitor that was started, which takes so many seconds, under signals.
template <typename Monitor>
void expectFullStopUnderSignals(Monitor& monitor, double seconds)
{
    Interruptions const interruptions;
    Stopwatch const watch;
    EXPECT_TRUE(monitor.stopMonitoring());
    EXPECT_GE(watch.seconds(), seconds);
    EXPECT_GE(Interruptions::count, 1);
}
