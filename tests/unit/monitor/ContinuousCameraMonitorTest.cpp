// SPDX-License-Identifier: MIT
#include "monitor/ContinuousCameraMonitor.h"
#include "Await.h"
#include "MonitoredMachine.h"
#include "RecordingClient.h"
#include "Stopwatch.h"
#include "ThreadCount.h"
#include "monitor/CameraEvent.h"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <thread>

using namespace ImageAcquisition;

namespace
{

class ContinuousCameraMonitorTest : public MonitoredMachine
{
protected:
    void TearDown() override
    {
        m_monitor.stopMonitoring();
        EXPECT_EQ(UdevHook::threads(), 0) << "a thread was left";
        MonitoredMachine::TearDown();
    }

    RecordingClient m_client;
    ContinuousCameraMonitor m_monitor;
};

struct ThrowingClient : public IContinuousCameraMonitor::IClient
{
    void cameraEventReceived(ICameraEvent* event) override
    {
        std::unique_ptr<ICameraEvent> const owned(event);
        throw std::runtime_error("the client has had enough");
    }
};

void listenWithAClientThatThrows(VirtualCamera::Testbed& machine)
{
    ThrowingClient throwing;
    ContinuousCameraMonitor monitor;
    monitor.startMonitoring(throwing);
    machine.addVideoNode("video0");
    std::this_thread::sleep_for(std::chrono::seconds(5)); // Ends before, with the process.
    std::exit(0);
}

TEST_F(ContinuousCameraMonitorTest, DeliversEventsOnAThreadOfItsOwn)
{
    ASSERT_TRUE(m_monitor.startMonitoring(m_client));
    m_machine.addVideoNode("video0");
    m_machine.sendEvent("video0", "change");
    m_machine.removeVideoNode("video0");
    ASSERT_TRUE(m_client.awaitEvents(3));
    for (int number = 0; number < 3; ++number) {
        RecordingClient::Received const received = m_client.received(number);
        EXPECT_EQ((std::vector<int>{1, 3, 2})[static_cast<std::size_t>(number)], received.type);
        EXPECT_EQ(received.node, "/dev/video0");
        EXPECT_EQ(received.subsystem, "video4linux");
        EXPECT_NE(std::this_thread::get_id(), received.thread);
        EXPECT_EQ(m_client.received(0).thread, received.thread);
    }
}

TEST_F(ContinuousCameraMonitorTest, EachEventIsAnObjectOfItsOwnThatTheClientKeeps)
{
    ASSERT_TRUE(m_monitor.startMonitoring(m_client));
    for (int number = 0; number < 20; ++number) {
        m_machine.addVideoNode("video" + std::to_string(number));
        // The simulated machine's socket holds ten events.
        ASSERT_TRUE(m_client.awaitEvents(number - 5));
    }
    ASSERT_TRUE(m_client.awaitEvents(20));
    EXPECT_TRUE(m_monitor.stopMonitoring());
    std::vector<std::unique_ptr<ICameraEvent>> const events = m_client.takeEvents();
    ASSERT_EQ(events.size(), 20u);
    for (std::size_t number = 0; number < events.size(); ++number) {
        // Later events have not overwritten earlier ones.
        EXPECT_EQ("/dev/video" + std::to_string(number), events[number]->deviceSystemName());
        for (std::size_t other = 0; other < number; ++other) {
            EXPECT_NE(events[other].get(), events[number].get());
        }
    }
}

TEST_F(ContinuousCameraMonitorTest, EventsOfOtherSubsystemsDoNotEndTheListening)
{
    ASSERT_TRUE(m_monitor.startMonitoring(m_client));
    m_machine.addOtherDevice("input", "event7", "/dev/input/event7");
    m_machine.addVideoNode("video0");
    ASSERT_TRUE(m_client.awaitEvents(1));
    m_machine.addOtherDevice("usb", "9-1");
    m_machine.addVideoNode("video1");
    ASSERT_TRUE(m_client.awaitEvents(2));
    EXPECT_EQ(m_client.received(1).node, "/dev/video1");
}

TEST_F(ContinuousCameraMonitorTest, StopJoinsTheThread)
{
    ASSERT_TRUE(m_monitor.startMonitoring(m_client));
    EXPECT_EQ(UdevHook::threads(), 1);
    Stopwatch const watch;
    EXPECT_TRUE(m_monitor.stopMonitoring());
    EXPECT_GE(watch.seconds(), 0.06);
    EXPECT_EQ(UdevHook::threads(), 0);
    EXPECT_EQ(UdevHook::monitors(), 0);
    m_machine.addVideoNode("video0");
    EXPECT_EQ(m_client.count(), 0);
}

TEST_F(ContinuousCameraMonitorTest, StopTakesItsSixtyMillisecondsWhateverSignalsCome)
{
    ASSERT_TRUE(m_monitor.startMonitoring(m_client));
    expectFullStopUnderSignals(m_monitor, 0.06);
}

TEST_F(ContinuousCameraMonitorTest, StopWithoutThreadIsFalse)
{
    EXPECT_FALSE(m_monitor.stopMonitoring());
    ASSERT_TRUE(m_monitor.startMonitoring(m_client));
    EXPECT_TRUE(m_monitor.stopMonitoring());
    EXPECT_FALSE(m_monitor.stopMonitoring());
}

TEST_F(ContinuousCameraMonitorTest, StartWhileRunningIsFalseAndChangesNothing)
{
    RecordingClient second;
    ASSERT_TRUE(m_monitor.startMonitoring(m_client));
    int const descriptors = pipesAndSockets();
    EXPECT_FALSE(m_monitor.startMonitoring(second));
    EXPECT_EQ(UdevHook::threads(), 1);
    EXPECT_EQ(pipesAndSockets(), descriptors);
    m_machine.addVideoNode("video0");
    EXPECT_TRUE(m_client.awaitEvents(1));
    EXPECT_EQ(second.count(), 0);
    EXPECT_TRUE(m_monitor.stopMonitoring());
}

TEST_F(ContinuousCameraMonitorTest, StartsAnewWithAnotherClient)
{
    RecordingClient second;
    ASSERT_TRUE(m_monitor.startMonitoring(m_client));
    EXPECT_TRUE(m_monitor.stopMonitoring());
    ASSERT_TRUE(m_monitor.startMonitoring(second));
    m_machine.addVideoNode("video0");
    EXPECT_TRUE(second.awaitEvents(1));
    EXPECT_EQ(m_client.count(), 0);
    EXPECT_TRUE(m_monitor.stopMonitoring());
}

TEST_F(ContinuousCameraMonitorTest, StopFromWithinTheCallbackLeavesTheJoinToALaterStop)
{
    std::atomic<int> answer{-1};
    m_client.whenCalled([&] { answer = m_monitor.stopMonitoring() ? 1 : 0; });
    ASSERT_TRUE(m_monitor.startMonitoring(m_client));
    m_machine.addVideoNode("video0");
    ASSERT_TRUE(m_client.awaitEvents(1));
    EXPECT_EQ(answer, 0);
    EXPECT_EQ(UdevHook::monitors(), 0);
    EXPECT_FALSE(m_monitor.startMonitoring(m_client)); // Its thread is still to be joined.
    EXPECT_TRUE(m_monitor.stopMonitoring());
    EXPECT_EQ(UdevHook::threads(), 0);
    EXPECT_FALSE(m_monitor.stopMonitoring());
    m_machine.addVideoNode("video1");
    EXPECT_EQ(m_client.count(), 1);
}

TEST_F(ContinuousCameraMonitorTest, CallbackThatComesBeforeStartReturnsMayStop)
{
    std::atomic<int> answer{-1};
    m_client.whenCalled([&] { answer = m_monitor.stopMonitoring() ? 1 : 0; });
    m_hook.afterCreatingThread([this] {
        m_machine.addVideoNode("video0");
        m_client.awaitEvents(1);
    });
    EXPECT_TRUE(m_monitor.startMonitoring(m_client));
    EXPECT_EQ(m_client.count(), 1);
    EXPECT_EQ(answer, 0);
    EXPECT_TRUE(m_monitor.stopMonitoring());
}

TEST_F(ContinuousCameraMonitorTest, CallbackThatComesBeforeStartReturnsMayNotStart)
{
    std::atomic<int> answer{-1};
    m_client.whenCalled([&] { answer = m_monitor.startMonitoring(m_client) ? 1 : 0; });
    m_hook.afterCreatingThread([this] {
        m_machine.addVideoNode("video0");
        m_client.awaitEvents(1);
    });
    EXPECT_TRUE(m_monitor.startMonitoring(m_client));
    EXPECT_EQ(answer, 0);
    EXPECT_EQ(UdevHook::threads(), 1);
    EXPECT_TRUE(m_monitor.stopMonitoring());
}

TEST_F(ContinuousCameraMonitorTest, CallbackMayNotStartWhileAStopJoinsItsThread)
{
    std::atomic<bool> called{false};
    std::atomic<bool> joining{false};
    std::atomic<bool> restarted{false};
    m_client.whenCalled([&] {
        called = true;
        joining = await([] { return UdevHook::threads() == 0; });
        if (m_monitor.startMonitoring(m_client)) {
            restarted = true;
            m_monitor.stopMonitoring(); // Or the join would never return.
        }
    });
    ASSERT_TRUE(m_monitor.startMonitoring(m_client));
    m_machine.addVideoNode("video0");
    ASSERT_TRUE(await([&] { return called.load(); }));
    EXPECT_TRUE(m_monitor.stopMonitoring());
    EXPECT_TRUE(joining);
    EXPECT_FALSE(restarted);
    EXPECT_EQ(UdevHook::threads(), 0);
    EXPECT_EQ(UdevHook::monitors(), 0);
    ASSERT_TRUE(m_monitor.startMonitoring(m_client)) << "once it has joined, it may start again";
    EXPECT_TRUE(m_monitor.stopMonitoring());
}

TEST_F(ContinuousCameraMonitorTest, OneMonitorsCallbackMayStopAnother)
{
    RecordingClient silent;
    ContinuousCameraMonitor other;
    std::atomic<int> answer{-1};
    m_client.whenCalled([&] { answer = other.stopMonitoring() ? 1 : 0; });
    ASSERT_TRUE(other.startMonitoring(silent));
    ASSERT_TRUE(m_monitor.startMonitoring(m_client));
    m_machine.addVideoNode("video0");
    ASSERT_TRUE(m_client.awaitEvents(1));
    EXPECT_EQ(answer, 1);
    EXPECT_TRUE(m_monitor.stopMonitoring());
}

TEST_F(ContinuousCameraMonitorTest, EventAtTheMomentOfAStopIsNotDelivered)
{
    ASSERT_TRUE(m_monitor.startMonitoring(m_client));
    int const pauses = UdevHook::pauses();
    HeldThread const held(UdevHook::Place::DeviceNode);
    m_machine.addVideoNode("video0");
    ASSERT_TRUE(HeldThread::awaitArrival());
    std::atomic<bool> stopped{false};
    std::thread stopping([&] { stopped = m_monitor.stopMonitoring(); });
    // By then the stop has been requested.
    while (UdevHook::pauses() == pauses) {
        std::this_thread::yield();
    }
    HeldThread::release();
    stopping.join();
    EXPECT_TRUE(stopped);
    EXPECT_EQ(m_client.count(), 0);
}

TEST_F(ContinuousCameraMonitorTest, WithoutUdevItDoesNotStartAndHasNoThread)
{
    for (UdevHook::Call const call :
         {UdevHook::Call::NewMonitor, UdevHook::Call::EnableReceiving, UdevHook::Call::Pipe}) {
        m_hook.refuse(call);
        EXPECT_FALSE(m_monitor.startMonitoring(m_client));
        EXPECT_EQ(UdevHook::threads(), 0);
        EXPECT_FALSE(m_monitor.stopMonitoring());
        m_hook.refuse(call, false);
    }
    EXPECT_TRUE(m_monitor.startMonitoring(m_client));
    EXPECT_TRUE(m_monitor.stopMonitoring());
}

TEST_F(ContinuousCameraMonitorTest, WithoutThreadTheInnerMonitorStaysStartedUntilAStop)
{
    m_hook.refuse(UdevHook::Call::CreateThread);
    EXPECT_FALSE(m_monitor.startMonitoring(m_client));
    EXPECT_EQ(UdevHook::threads(), 0);
    EXPECT_EQ(UdevHook::monitors(), 1);
    EXPECT_FALSE(m_monitor.stopMonitoring());
    EXPECT_EQ(UdevHook::monitors(), 0);

    EXPECT_FALSE(m_monitor.startMonitoring(m_client));
    m_hook.refuse(UdevHook::Call::CreateThread, false);
    EXPECT_TRUE(m_monitor.startMonitoring(m_client));
    EXPECT_EQ(UdevHook::monitors(), 1);
    m_machine.addVideoNode("video0");
    EXPECT_TRUE(m_client.awaitEvents(1));
    EXPECT_TRUE(m_monitor.stopMonitoring());
}

TEST_F(ContinuousCameraMonitorTest, ExceptionOutOfTheClientEndsTheProcess)
{
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    EXPECT_DEATH(listenWithAClientThatThrows(m_machine),
                 "terminate called after throwing an instance of 'std::runtime_error'");
}

TEST_F(ContinuousCameraMonitorTest, ContextsAreReleasedWithTheMonitor)
{
    int const contexts = UdevHook::contexts();
    {
        ContinuousCameraMonitor idle;
        ContinuousCameraMonitor stopped;
        EXPECT_TRUE(stopped.startMonitoring(m_client));
        EXPECT_TRUE(stopped.stopMonitoring());
        EXPECT_EQ(UdevHook::contexts(), contexts + 2);
    }
    EXPECT_EQ(UdevHook::contexts(), contexts);
}

TEST_F(ContinuousCameraMonitorTest, ManyRoundsLeaveNeitherDescriptorNorThread)
{
    // The first round, so that the simulated machine has its own threads by now.
    ASSERT_TRUE(m_monitor.startMonitoring(m_client));
    ASSERT_TRUE(m_monitor.stopMonitoring());
    int const descriptors = pipesAndSockets();
    int const threads = threadCount();
    for (int round = 0; round < 200; ++round) {
        ASSERT_TRUE(m_monitor.startMonitoring(m_client)) << round;
        ASSERT_TRUE(m_monitor.stopMonitoring()) << round;
    }
    EXPECT_EQ(pipesAndSockets(), descriptors);
    EXPECT_TRUE(awaitThreadCount(threads));
}

} // namespace
