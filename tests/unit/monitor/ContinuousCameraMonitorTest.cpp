// SPDX-License-Identifier: MIT
#include "monitor/ContinuousCameraMonitor.h"
#include "Await.h"
#include "Interruptions.h"
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
        monitor.stopMonitoring();
        EXPECT_EQ(UdevHook::threads(), 0) << "a thread was left";
        MonitoredMachine::TearDown();
    }

    RecordingClient client;
    ContinuousCameraMonitor monitor;
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

} // namespace

TEST_F(ContinuousCameraMonitorTest, DeliversEventsOnAThreadOfItsOwn)
{
    ASSERT_TRUE(monitor.startMonitoring(client));
    machine.addVideoNode("video0");
    machine.sendEvent("video0", "change");
    machine.removeVideoNode("video0");
    ASSERT_TRUE(client.awaitEvents(3));
    for (int number = 0; number < 3; ++number) {
        RecordingClient::Received const received = client.received(number);
        EXPECT_EQ((std::vector<int>{1, 3, 2})[static_cast<std::size_t>(number)], received.type);
        EXPECT_EQ(received.node, "/dev/video0");
        EXPECT_EQ(received.subsystem, "video4linux");
        EXPECT_NE(std::this_thread::get_id(), received.thread);
        EXPECT_EQ(client.received(0).thread, received.thread);
    }
}

TEST_F(ContinuousCameraMonitorTest, EachEventIsAnObjectOfItsOwnThatTheClientKeeps)
{
    ASSERT_TRUE(monitor.startMonitoring(client));
    for (int number = 0; number < 20; ++number) {
        machine.addVideoNode("video" + std::to_string(number));
        // The made-up machine's socket holds ten events.
        ASSERT_TRUE(client.awaitEvents(number - 5));
    }
    ASSERT_TRUE(client.awaitEvents(20));
    EXPECT_TRUE(monitor.stopMonitoring());
    std::vector<std::unique_ptr<ICameraEvent>> const events = client.takeEvents();
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
    ASSERT_TRUE(monitor.startMonitoring(client));
    machine.addOtherDevice("input", "event7", "/dev/input/event7");
    machine.addVideoNode("video0");
    ASSERT_TRUE(client.awaitEvents(1));
    machine.addOtherDevice("usb", "9-1");
    machine.addVideoNode("video1");
    ASSERT_TRUE(client.awaitEvents(2));
    EXPECT_EQ(client.received(1).node, "/dev/video1");
}

TEST_F(ContinuousCameraMonitorTest, StopJoinsTheThread)
{
    ASSERT_TRUE(monitor.startMonitoring(client));
    EXPECT_EQ(UdevHook::threads(), 1);
    Stopwatch const watch;
    EXPECT_TRUE(monitor.stopMonitoring());
    EXPECT_GE(watch.seconds(), 0.06);
    EXPECT_EQ(UdevHook::threads(), 0);
    EXPECT_EQ(UdevHook::monitors(), 0);
    machine.addVideoNode("video0");
    EXPECT_EQ(client.count(), 0);
}

TEST_F(ContinuousCameraMonitorTest, StopTakesItsSixtyMillisecondsWhateverSignalsCome)
{
    ASSERT_TRUE(monitor.startMonitoring(client));
    Interruptions const interruptions;
    Stopwatch const watch;
    EXPECT_TRUE(monitor.stopMonitoring());
    EXPECT_GE(watch.seconds(), 0.06);
    EXPECT_GE(Interruptions::count, 1);
}

TEST_F(ContinuousCameraMonitorTest, StopWithoutThreadIsFalse)
{
    EXPECT_FALSE(monitor.stopMonitoring());
    ASSERT_TRUE(monitor.startMonitoring(client));
    EXPECT_TRUE(monitor.stopMonitoring());
    EXPECT_FALSE(monitor.stopMonitoring());
}

TEST_F(ContinuousCameraMonitorTest, StartWhileRunningIsFalseAndChangesNothing)
{
    RecordingClient second;
    ASSERT_TRUE(monitor.startMonitoring(client));
    int const descriptors = pipesAndSockets();
    EXPECT_FALSE(monitor.startMonitoring(second));
    EXPECT_EQ(UdevHook::threads(), 1);
    EXPECT_EQ(pipesAndSockets(), descriptors);
    machine.addVideoNode("video0");
    EXPECT_TRUE(client.awaitEvents(1));
    EXPECT_EQ(second.count(), 0);
    EXPECT_TRUE(monitor.stopMonitoring());
}

TEST_F(ContinuousCameraMonitorTest, StartsAnewWithAnotherClient)
{
    RecordingClient second;
    ASSERT_TRUE(monitor.startMonitoring(client));
    EXPECT_TRUE(monitor.stopMonitoring());
    ASSERT_TRUE(monitor.startMonitoring(second));
    machine.addVideoNode("video0");
    EXPECT_TRUE(second.awaitEvents(1));
    EXPECT_EQ(client.count(), 0);
    EXPECT_TRUE(monitor.stopMonitoring());
}

TEST_F(ContinuousCameraMonitorTest, StopFromWithinTheCallbackLeavesTheJoinToALaterStop)
{
    std::atomic<int> answer{-1};
    client.whenCalled([&] { answer = monitor.stopMonitoring() ? 1 : 0; });
    ASSERT_TRUE(monitor.startMonitoring(client));
    machine.addVideoNode("video0");
    ASSERT_TRUE(client.awaitEvents(1));
    EXPECT_EQ(answer, 0);
    EXPECT_EQ(UdevHook::monitors(), 0);
    EXPECT_FALSE(monitor.startMonitoring(client)); // Its thread is still to be joined.
    EXPECT_TRUE(monitor.stopMonitoring());
    EXPECT_EQ(UdevHook::threads(), 0);
    EXPECT_FALSE(monitor.stopMonitoring());
    machine.addVideoNode("video1");
    EXPECT_EQ(client.count(), 1);
}

TEST_F(ContinuousCameraMonitorTest, CallbackThatComesBeforeStartReturnsMayStop)
{
    std::atomic<int> answer{-1};
    client.whenCalled([&] { answer = monitor.stopMonitoring() ? 1 : 0; });
    hook.afterCreatingThread([this] {
        machine.addVideoNode("video0");
        client.awaitEvents(1);
    });
    EXPECT_TRUE(monitor.startMonitoring(client));
    EXPECT_EQ(client.count(), 1);
    EXPECT_EQ(answer, 0);
    EXPECT_TRUE(monitor.stopMonitoring());
}

TEST_F(ContinuousCameraMonitorTest, CallbackThatComesBeforeStartReturnsMayNotStart)
{
    std::atomic<int> answer{-1};
    client.whenCalled([&] { answer = monitor.startMonitoring(client) ? 1 : 0; });
    hook.afterCreatingThread([this] {
        machine.addVideoNode("video0");
        client.awaitEvents(1);
    });
    EXPECT_TRUE(monitor.startMonitoring(client));
    EXPECT_EQ(answer, 0);
    EXPECT_EQ(UdevHook::threads(), 1);
    EXPECT_TRUE(monitor.stopMonitoring());
}

TEST_F(ContinuousCameraMonitorTest, CallbackMayNotStartWhileAStopJoinsItsThread)
{
    std::atomic<bool> called{false};
    std::atomic<bool> joining{false};
    std::atomic<bool> restarted{false};
    client.whenCalled([&] {
        called = true;
        joining = await([] { return UdevHook::threads() == 0; });
        if (monitor.startMonitoring(client)) {
            restarted = true;
            monitor.stopMonitoring(); // Or the join would never return.
        }
    });
    ASSERT_TRUE(monitor.startMonitoring(client));
    machine.addVideoNode("video0");
    ASSERT_TRUE(await([&] { return called.load(); }));
    EXPECT_TRUE(monitor.stopMonitoring());
    EXPECT_TRUE(joining);
    EXPECT_FALSE(restarted);
    EXPECT_EQ(UdevHook::threads(), 0);
    EXPECT_EQ(UdevHook::monitors(), 0);
    ASSERT_TRUE(monitor.startMonitoring(client)) << "once it has joined, it may start again";
    EXPECT_TRUE(monitor.stopMonitoring());
}

TEST_F(ContinuousCameraMonitorTest, OneMonitorsCallbackMayStopAnother)
{
    RecordingClient silent;
    ContinuousCameraMonitor other;
    std::atomic<int> answer{-1};
    client.whenCalled([&] { answer = other.stopMonitoring() ? 1 : 0; });
    ASSERT_TRUE(other.startMonitoring(silent));
    ASSERT_TRUE(monitor.startMonitoring(client));
    machine.addVideoNode("video0");
    ASSERT_TRUE(client.awaitEvents(1));
    EXPECT_EQ(answer, 1);
    EXPECT_TRUE(monitor.stopMonitoring());
}

TEST_F(ContinuousCameraMonitorTest, EventAtTheMomentOfAStopIsNotDelivered)
{
    ASSERT_TRUE(monitor.startMonitoring(client));
    int const pauses = UdevHook::pauses();
    HeldThread const held(UdevHook::Place::DeviceNode);
    machine.addVideoNode("video0");
    ASSERT_TRUE(HeldThread::awaitArrival());
    std::atomic<bool> stopped{false};
    std::thread stopping([&] { stopped = monitor.stopMonitoring(); });
    // By then the stop has been requested.
    while (UdevHook::pauses() == pauses) {
        std::this_thread::yield();
    }
    HeldThread::release();
    stopping.join();
    EXPECT_TRUE(stopped);
    EXPECT_EQ(client.count(), 0);
}

TEST_F(ContinuousCameraMonitorTest, WithoutUdevItDoesNotStartAndHasNoThread)
{
    for (UdevHook::Call const call :
         {UdevHook::Call::NewMonitor, UdevHook::Call::EnableReceiving, UdevHook::Call::Pipe}) {
        hook.refuse(call);
        EXPECT_FALSE(monitor.startMonitoring(client));
        EXPECT_EQ(UdevHook::threads(), 0);
        EXPECT_FALSE(monitor.stopMonitoring());
        hook.refuse(call, false);
    }
    EXPECT_TRUE(monitor.startMonitoring(client));
    EXPECT_TRUE(monitor.stopMonitoring());
}

TEST_F(ContinuousCameraMonitorTest, WithoutThreadTheInnerMonitorStaysStartedUntilAStop)
{
    hook.refuse(UdevHook::Call::CreateThread);
    EXPECT_FALSE(monitor.startMonitoring(client));
    EXPECT_EQ(UdevHook::threads(), 0);
    EXPECT_EQ(UdevHook::monitors(), 1);
    EXPECT_FALSE(monitor.stopMonitoring());
    EXPECT_EQ(UdevHook::monitors(), 0);

    EXPECT_FALSE(monitor.startMonitoring(client));
    hook.refuse(UdevHook::Call::CreateThread, false);
    EXPECT_TRUE(monitor.startMonitoring(client));
    EXPECT_EQ(UdevHook::monitors(), 1);
    machine.addVideoNode("video0");
    EXPECT_TRUE(client.awaitEvents(1));
    EXPECT_TRUE(monitor.stopMonitoring());
}

TEST_F(ContinuousCameraMonitorTest, ExceptionOutOfTheClientEndsTheProcess)
{
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    EXPECT_DEATH(listenWithAClientThatThrows(machine),
                 "terminate called after throwing an instance of 'std::runtime_error'");
}

TEST_F(ContinuousCameraMonitorTest, ContextsAreReleasedWithTheMonitor)
{
    int const contexts = UdevHook::contexts();
    {
        ContinuousCameraMonitor idle;
        ContinuousCameraMonitor stopped;
        EXPECT_TRUE(stopped.startMonitoring(client));
        EXPECT_TRUE(stopped.stopMonitoring());
        EXPECT_EQ(UdevHook::contexts(), contexts + 2);
    }
    EXPECT_EQ(UdevHook::contexts(), contexts);
}

TEST_F(ContinuousCameraMonitorTest, ManyRoundsLeaveNeitherDescriptorNorThread)
{
    // The first round, so that the made-up machine has its own threads by now.
    ASSERT_TRUE(monitor.startMonitoring(client));
    ASSERT_TRUE(monitor.stopMonitoring());
    int const descriptors = pipesAndSockets();
    int const threads = threadCount();
    for (int round = 0; round < 200; ++round) {
        ASSERT_TRUE(monitor.startMonitoring(client)) << round;
        ASSERT_TRUE(monitor.stopMonitoring()) << round;
    }
    EXPECT_EQ(pipesAndSockets(), descriptors);
    EXPECT_TRUE(awaitThreadCount(threads));
}
