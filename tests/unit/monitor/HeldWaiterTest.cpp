// SPDX-License-Identifier: MIT
#include "MonitoredMachine.h"
#include "Named.h"
#include "Stopwatch.h"
#include "ThreadState.h"
#include "monitor/BlockingCameraMonitor.h"
#include "monitor/CameraEvent.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <thread>

using namespace ImageAcquisition;

namespace
{

using Place = UdevHook::Place;

/// A waiter that the scheduler keeps off the processor for longer than the fixed pause must find
/// monitor and descriptors as it left them.
class HeldWaiterTest : public MonitoredMachine, public testing::WithParamInterface<Named<Place>>
{
protected:
    /// The action has to last until a waiter that is held is released; just before, the observation
    /// is made.
    void expectWaitedFor(std::function<bool()> const& action,
                         std::function<void()> const& observation)
    {
        ASSERT_TRUE(m_monitor.startMonitoring());
        m_machine.addVideoNode("video0");
        HeldThread const held(GetParam().value);
        WatchedThread waiter([&] { m_monitor.getEvent(&m_event); });
        ASSERT_TRUE(HeldThread::awaitArrival());
        m_descriptorsOfTheWait = pipesAndSockets();
        Stopwatch const watch;
        std::thread scheduler([&] {
            std::this_thread::sleep_for(std::chrono::milliseconds(200));
            observation();
            HeldThread::release();
        });
        EXPECT_TRUE(action());
        EXPECT_GE(watch.seconds(), 0.2);
        scheduler.join();
        waiter.join();
    }

    int m_descriptorsOfTheWait = 0;
    BlockingCameraMonitor m_monitor;
    CameraEvent m_event;
};

TEST_P(HeldWaiterTest, IsWaitedForBeforeAnythingIsReleased)
{
    int monitorsBeforeRelease = 0;
    int descriptorsBeforeRelease = 0;
    expectWaitedFor([this] { return m_monitor.stopMonitoring(); },
                    [&] {
                        monitorsBeforeRelease = UdevHook::monitors();
                        descriptorsBeforeRelease = pipesAndSockets();
                    });
    EXPECT_EQ(monitorsBeforeRelease, 1);
    EXPECT_EQ(descriptorsBeforeRelease, m_descriptorsOfTheWait);
    EXPECT_EQ(UdevHook::monitors(), 0);
}

TEST_P(HeldWaiterTest, IsWaitedForByANewStartToo)
{
    expectWaitedFor([this] { return m_monitor.startMonitoring(); }, [] {});
    EXPECT_EQ(UdevHook::monitors(), 1);
    EXPECT_TRUE(m_monitor.stopMonitoring());
}

INSTANTIATE_TEST_SUITE_P(EachPlace, HeldWaiterTest,
                         testing::Values(Named<Place>{"Select", Place::Select},
                                         Named<Place>{"ReceiveDevice", Place::ReceiveDevice},
                                         Named<Place>{"DeviceNode", Place::DeviceNode}),
                         nameOf<Place>);

} // namespace
