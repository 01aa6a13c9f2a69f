// SPDX-License-Identifier: MIT
#include "MonitoredMachine.h"
#include "Named.h"
#include "monitor/BlockingCameraMonitor.h"
#include "monitor/CameraEvent.h"

#include <gtest/gtest.h>

using namespace ImageAcquisition;

namespace
{

using Call = UdevHook::Call;

class MonitorStartFailureTest : public MonitoredMachine,
                                public testing::WithParamInterface<Named<Call>>
{
};

TEST_P(MonitorStartFailureTest, IsReportedAndLeavesAMonitorThatCanBeStopped)
{
    BlockingCameraMonitor monitor;
    CameraEvent event;
    m_hook.refuse(GetParam().value);
    EXPECT_FALSE(monitor.startMonitoring());
    m_machine.addVideoNode("video0");
    EXPECT_FALSE(monitor.getEvent(&event));
    EXPECT_TRUE(monitor.stopMonitoring());
    EXPECT_FALSE(monitor.getEvent(&event));
}

TEST_P(MonitorStartFailureTest, IsOvercomeByALaterStart)
{
    BlockingCameraMonitor monitor;
    CameraEvent event;
    m_hook.refuse(GetParam().value);
    EXPECT_FALSE(monitor.startMonitoring());
    m_hook.refuse(GetParam().value, false);
    EXPECT_TRUE(monitor.startMonitoring());
    m_machine.addVideoNode("video0");
    EXPECT_TRUE(nextEvent(monitor, event));
    EXPECT_TRUE(monitor.stopMonitoring());
}

TEST_P(MonitorStartFailureTest, EndsWhatRanBefore)
{
    BlockingCameraMonitor monitor;
    CameraEvent event;
    EXPECT_TRUE(monitor.startMonitoring());
    m_hook.refuse(GetParam().value);
    EXPECT_FALSE(monitor.startMonitoring());
    m_machine.addVideoNode("video0");
    EXPECT_FALSE(monitor.getEvent(&event));
    EXPECT_TRUE(monitor.stopMonitoring());
}

INSTANTIATE_TEST_SUITE_P(EachStep, MonitorStartFailureTest,
                         testing::Values(Named<Call>{"NewMonitor", Call::NewMonitor},
                                         Named<Call>{"EnableReceiving", Call::EnableReceiving},
                                         Named<Call>{"MonitorDescriptor", Call::MonitorDescriptor},
                                         Named<Call>{"Pipe", Call::Pipe}),
                         nameOf<Call>);

TEST_F(MonitorStartFailureTest, RefusedReceptionDoesNotStopTheLaterSteps)
{
    BlockingCameraMonitor monitor;
    int const descriptors = pipesAndSockets();
    m_hook.refuse(Call::EnableReceiving);
    EXPECT_FALSE(monitor.startMonitoring());
    EXPECT_EQ(pipesAndSockets(), descriptors + 3); // The socket and the pipe.
    EXPECT_TRUE(monitor.stopMonitoring());
    EXPECT_EQ(pipesAndSockets(), descriptors);
}

} // namespace
