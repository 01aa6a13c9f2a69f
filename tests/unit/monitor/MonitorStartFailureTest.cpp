// SPDX-License-Identifier: MIT
#include "MonitoredMachine.h"
#include "Stopwatch.h"
#include "ThreadState.h"
#include "monitor/BlockingCameraMonitor.h"
#include "monitor/CameraEvent.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <ostream>
#include <string>
#include <thread>

using namespace ImageAcquisition;

namespace
{

class MonitorStartFailureTest : public MonitoredMachine,
                                public testing::WithParamInterface<UdevHook::Call>
{
};

class HeldWaiterTest : public MonitoredMachine, public testing::WithParamInterface<UdevHook::Place>
{
};

std::string nameOf(UdevHook::Call call)
{
    switch (call) {
    case UdevHook::Call::NewMonitor:
        return "NewMonitor";
    case UdevHook::Call::EnableReceiving:
        return "EnableReceiving";
    case UdevHook::Call::MonitorDescriptor:
        return "MonitorDescriptor";
    case UdevHook::Call::Pipe:
        return "Pipe";
    default:
        return "CreateThread";
    }
}

std::string nameOf(UdevHook::Place place)
{
    switch (place) {
    case UdevHook::Place::Select:
        return "Select";
    case UdevHook::Place::ReceiveDevice:
        return "ReceiveDevice";
    default:
        return "DeviceNode";
    }
}

} // namespace

// For the names under which the tests are listed.
static void PrintTo(UdevHook::Call call, std::ostream* output)
{
    *output << nameOf(call);
}

static void PrintTo(UdevHook::Place place, std::ostream* output)
{
    *output << nameOf(place);
}

TEST_P(MonitorStartFailureTest, IsReportedAndLeavesAMonitorThatCanBeStopped)
{
    BlockingCameraMonitor monitor;
    CameraEvent event;
    m_hook.refuse(GetParam());
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
    m_hook.refuse(GetParam());
    EXPECT_FALSE(monitor.startMonitoring());
    m_hook.refuse(GetParam(), false);
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
    m_hook.refuse(GetParam());
    EXPECT_FALSE(monitor.startMonitoring());
    m_machine.addVideoNode("video0");
    EXPECT_FALSE(monitor.getEvent(&event));
    EXPECT_TRUE(monitor.stopMonitoring());
}

INSTANTIATE_TEST_SUITE_P(EachStep, MonitorStartFailureTest,
                         testing::Values(UdevHook::Call::NewMonitor,
                                         UdevHook::Call::EnableReceiving,
                                         UdevHook::Call::MonitorDescriptor, UdevHook::Call::Pipe),
                         [](auto const& tested) { return nameOf(tested.param); });

TEST_F(MonitoredMachine, RefusedReceptionDoesNotStopTheLaterSteps)
{
    BlockingCameraMonitor monitor;
    int const descriptors = pipesAndSockets();
    m_hook.refuse(UdevHook::Call::EnableReceiving);
    EXPECT_FALSE(monitor.startMonitoring());
    EXPECT_EQ(pipesAndSockets(), descriptors + 3); // The socket and the pipe.
    EXPECT_TRUE(monitor.stopMonitoring());
    EXPECT_EQ(pipesAndSockets(), descriptors);
}

// A waiter that the scheduler keeps off the processor for longer than the fixed pause must find
// monitor and descriptors as it left them.
TEST_P(HeldWaiterTest, IsWaitedForBeforeAnythingIsReleased)
{
    BlockingCameraMonitor monitor;
    CameraEvent event;
    ASSERT_TRUE(monitor.startMonitoring());
    m_machine.addVideoNode("video0");
    HeldThread const held(GetParam());
    WatchedThread waiter([&] { monitor.getEvent(&event); });
    ASSERT_TRUE(HeldThread::awaitArrival());

    Stopwatch const watch;
    int const descriptors = pipesAndSockets();
    int monitorsBeforeRelease = 0;
    int descriptorsBeforeRelease = 0;
    std::thread scheduler([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        monitorsBeforeRelease = UdevHook::monitors();
        descriptorsBeforeRelease = pipesAndSockets();
        HeldThread::release();
    });
    EXPECT_TRUE(monitor.stopMonitoring());
    EXPECT_GE(watch.seconds(), 0.2);
    scheduler.join();
    waiter.join();
    EXPECT_EQ(monitorsBeforeRelease, 1);
    EXPECT_EQ(descriptors, descriptorsBeforeRelease);
    EXPECT_EQ(UdevHook::monitors(), 0);
}

TEST_P(HeldWaiterTest, IsWaitedForByANewStartToo)
{
    BlockingCameraMonitor monitor;
    CameraEvent event;
    ASSERT_TRUE(monitor.startMonitoring());
    m_machine.addVideoNode("video0");
    HeldThread const held(GetParam());
    WatchedThread waiter([&] { monitor.getEvent(&event); });
    ASSERT_TRUE(HeldThread::awaitArrival());
    Stopwatch const watch;
    std::thread scheduler([] {
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        HeldThread::release();
    });
    EXPECT_TRUE(monitor.startMonitoring());
    EXPECT_GE(watch.seconds(), 0.2);
    scheduler.join();
    waiter.join();
    EXPECT_EQ(UdevHook::monitors(), 1);
    EXPECT_TRUE(monitor.stopMonitoring());
}

INSTANTIATE_TEST_SUITE_P(EachPlace, HeldWaiterTest,
                         testing::Values(UdevHook::Place::Select, UdevHook::Place::ReceiveDevice,
                                         UdevHook::Place::DeviceNode),
                         [](auto const& tested) { return nameOf(tested.param); });

TEST_F(MonitoredMachine, StartsAndStopsUnderAThreadThatNeverStopsAsking)
{
    BlockingCameraMonitor monitor;
    CameraEvent event;
    std::atomic<bool> finished{false};
    std::atomic<int> answers{0};
    std::thread asking([&] {
        while (!finished) {
            answers += monitor.getEvent(&event) ? 1 : 0;
        }
    });
    for (int round = 0; round < 10; ++round) {
        ASSERT_TRUE(monitor.startMonitoring());
        int const before = answers;
        m_machine.addVideoNode("video0");
        m_machine.removeVideoNode("video0");
        auto const end = std::chrono::steady_clock::now() + std::chrono::seconds(5);
        while (answers < before + 2 && std::chrono::steady_clock::now() < end) {
            std::this_thread::yield();
        }
        EXPECT_EQ(answers, before + 2);
        ASSERT_TRUE(monitor.stopMonitoring());
    }
    finished = true;
    asking.join();
}
