// SPDX-License-Identifier: MIT
#include "monitor/BlockingCameraMonitor.h"
#include "Await.h"
#include "MonitoredMachine.h"
#include "Stopwatch.h"
#include "ThreadState.h"
#include "monitor/CameraEvent.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <atomic>
#include <csignal>
#include <optional>
#include <thread>

using namespace ImageAcquisition;

namespace
{

class BlockingCameraMonitorTest : public MonitoredMachine
{
protected:
    void TearDown() override
    {
        m_monitor.stopMonitoring();
        MonitoredMachine::TearDown();
    }

    void expectEvent(int type, std::string const& node)
    {
        ASSERT_TRUE(nextEvent(m_monitor, m_event));
        EXPECT_EQ(m_event.type(), type);
        EXPECT_EQ(m_event.deviceSystemName(), node);
        EXPECT_STREQ(m_event.subSystemName(), "video4linux");
    }

    BlockingCameraMonitor m_monitor;
    CameraEvent m_event;
};

/// What a client might hand over by mistake.
struct ForeignEvent : public virtual ICameraEvent
{
    int type() const override { return 7; }
    char const* deviceSystemName() const override { return ""; }
    char const* subSystemName() const override { return ""; }
};

void ignoreSignal(int) {}

TEST_F(BlockingCameraMonitorTest, ReportsADeviceThatComesAndGoes)
{
    ASSERT_TRUE(m_monitor.startMonitoring());
    m_machine.addVideoNode("video0");
    expectEvent(1, "/dev/video0");
    m_machine.removeVideoNode("video0");
    expectEvent(2, "/dev/video0");
}

TEST_F(BlockingCameraMonitorTest, ReportsADeviceThatChangesAndMoves)
{
    m_machine.addVideoNode("video3");
    ASSERT_TRUE(m_monitor.startMonitoring());
    m_machine.sendEvent("video3", "change");
    expectEvent(3, "/dev/video3");
    m_machine.sendEvent("video3", "move");
    expectEvent(4, "/dev/video3");
}

TEST_F(BlockingCameraMonitorTest, ReportsActionsThatItHasNoNumberForAsZero)
{
    m_machine.addVideoNode("video0");
    ASSERT_TRUE(m_monitor.startMonitoring());
    for (char const* const action : {"bind", "unbind", "online", "offline"}) {
        m_event.setType("move");
        m_machine.sendEvent("video0", action);
        expectEvent(0, "/dev/video0");
    }
    for (std::optional<std::string> const& action :
         {std::optional<std::string>("Add"), std::optional<std::string>("repaint"),
          std::optional<std::string>()}) {
        m_hook.answer(UdevHook::Text::Action, action);
        m_event.setType("move");
        m_machine.sendEvent("video0", "change");
        expectEvent(0, "/dev/video0");
    }
}

TEST_F(BlockingCameraMonitorTest, ListensToUdevForVideoDevicesOfAnyType)
{
    ASSERT_TRUE(m_monitor.startMonitoring());
    std::vector<std::string> const wanted = {"udev", "video4linux", "any"};
    EXPECT_EQ(UdevHook::monitorArguments(), wanted);
}

TEST_F(BlockingCameraMonitorTest, OtherSubsystemsAreFilteredOut)
{
    ASSERT_TRUE(m_monitor.startMonitoring());
    m_machine.addOtherDevice("input", "event7", "/dev/input/event7");
    m_machine.addOtherDevice("usb", "9-1");
    m_machine.addVideoNode("video0");
    m_machine.addOtherDevice("media", "media0", "/dev/media0");
    m_machine.addVideoNode("video1");
    expectEvent(1, "/dev/video0");
    expectEvent(1, "/dev/video1");
}

TEST_F(BlockingCameraMonitorTest, KeepsWhatUdevDoesNotTell)
{
    ASSERT_TRUE(m_monitor.startMonitoring());
    m_hook.answer(UdevHook::Text::DeviceType, "camera");
    m_machine.addVideoNode("video0");
    expectEvent(1, "/dev/video0");
    EXPECT_STREQ(m_event.deviceType(), "camera");

    m_hook.answer(UdevHook::Text::DeviceType, std::nullopt);
    m_machine.addOtherDevice("video4linux", "v4l-without-node");
    expectEvent(1, "/dev/video0");
    EXPECT_STREQ(m_event.deviceType(), "camera");

    m_hook.answer(UdevHook::Text::Subsystem, std::nullopt);
    m_machine.addVideoNode("video1");
    expectEvent(1, "/dev/video1");

    m_hook.answer(UdevHook::Text::Subsystem, "other");
    m_machine.addVideoNode("video2");
    ASSERT_TRUE(nextEvent(m_monitor, m_event));
    EXPECT_STREQ(m_event.subSystemName(), "other");
}

TEST_F(BlockingCameraMonitorTest, NoEventOfABurstIsLost)
{
    ASSERT_TRUE(m_monitor.startMonitoring());
    // The simulated machine's socket holds ten events.
    for (int round = 0; round < 8; ++round) {
        std::string const prefix = "video" + std::to_string(round);
        for (int number = 0; number < 8; ++number) {
            m_machine.addVideoNode(prefix + std::to_string(number));
        }
        for (int number = 0; number < 8; ++number) {
            expectEvent(1, "/dev/" + prefix + std::to_string(number));
        }
    }
}

TEST_F(BlockingCameraMonitorTest, EventEndsAWaitThatHasBegun)
{
    ASSERT_TRUE(m_monitor.startMonitoring());
    bool filled = false;
    WatchedThread waiter([&] { filled = m_monitor.getEvent(&m_event); });
    ASSERT_TRUE(waiter.awaitSelect());
    m_machine.addVideoNode("video0");
    waiter.join();
    EXPECT_TRUE(filled);
    EXPECT_EQ(m_event.type(), 1);
    EXPECT_STREQ(m_event.deviceSystemName(), "/dev/video0");
}

TEST_F(BlockingCameraMonitorTest, StopFromASecondThreadEndsTheWait)
{
    ASSERT_TRUE(m_monitor.startMonitoring());
    int const receptions = UdevHook::receptions();
    bool filled = true;
    WatchedThread waiter([&] { filled = m_monitor.getEvent(&m_event); });
    ASSERT_TRUE(waiter.awaitSelect());
    EXPECT_TRUE(m_monitor.stopMonitoring());
    waiter.join();
    EXPECT_EQ(UdevHook::receptions(), receptions); // Udev had nothing to give.
    EXPECT_FALSE(filled);
    EXPECT_EQ(m_event.type(), 0);
    EXPECT_STREQ(m_event.deviceSystemName(), "");
}

TEST_F(BlockingCameraMonitorTest, SignalEndsTheWait)
{
    struct sigaction handling = {};
    handling.sa_handler = ignoreSignal;
    struct sigaction earlier = {};
    sigaction(SIGUSR1, &handling, &earlier);
    ASSERT_TRUE(m_monitor.startMonitoring());
    std::atomic<bool> ended{false};
    std::atomic<bool> filled{true};
    std::atomic<pthread_t> thread{};
    WatchedThread waiter([&] {
        thread = pthread_self();
        filled = m_monitor.getEvent(&m_event);
        ended = true;
        // Stays, so that a late signal finds a thread.
        while (ended) {
            std::this_thread::yield();
        }
    });
    ASSERT_TRUE(waiter.awaitSelect());
    while (!ended) {
        pthread_kill(thread, SIGUSR1);
        std::this_thread::yield();
    }
    EXPECT_FALSE(filled);
    ended = false;
    waiter.join();
    sigaction(SIGUSR1, &earlier, nullptr);
}

TEST_F(BlockingCameraMonitorTest, WithoutEventOfItsOwnItAnswersFalseAtOnce)
{
    ASSERT_TRUE(m_monitor.startMonitoring());
    ForeignEvent foreign;
    EXPECT_FALSE(m_monitor.getEvent(nullptr));
    EXPECT_FALSE(m_monitor.getEvent(&foreign));
    // Nor do they take an event away from the next one who asks.
    m_machine.addVideoNode("video0");
    EXPECT_FALSE(m_monitor.getEvent(nullptr));
    EXPECT_FALSE(m_monitor.getEvent(&foreign));
    expectEvent(1, "/dev/video0");
}

TEST_F(BlockingCameraMonitorTest, IdleMonitorAnswersFalseAtOnce)
{
    EXPECT_FALSE(m_monitor.getEvent(&m_event));
    ASSERT_TRUE(m_monitor.startMonitoring());
    m_machine.addVideoNode("video0");
    m_monitor.stopMonitoring();
    EXPECT_FALSE(m_monitor.getEvent(&m_event));
    EXPECT_EQ(m_event.type(), 0);
}

TEST_F(BlockingCameraMonitorTest, StopIsTrueAlsoWithoutStartAndTwice)
{
    Stopwatch const watch;
    EXPECT_TRUE(m_monitor.stopMonitoring());
    EXPECT_GE(watch.seconds(), 0.05);
    ASSERT_TRUE(m_monitor.startMonitoring());
    EXPECT_TRUE(m_monitor.stopMonitoring());
    EXPECT_TRUE(m_monitor.stopMonitoring());
}

TEST_F(BlockingCameraMonitorTest, StopTakesItsFiftyMillisecondsWhateverSignalsCome)
{
    ASSERT_TRUE(m_monitor.startMonitoring());
    expectFullStopUnderSignals(m_monitor, 0.05);
}

TEST_F(BlockingCameraMonitorTest, StartsAnewAfterAStop)
{
    for (int round = 0; round < 3; ++round) {
        ASSERT_TRUE(m_monitor.startMonitoring());
        m_machine.addVideoNode("video0");
        expectEvent(1, "/dev/video0");
        m_machine.removeVideoNode("video0"); // Missed by the next round's monitor.
        EXPECT_TRUE(m_monitor.stopMonitoring());
        EXPECT_EQ(UdevHook::monitors(), 0);
    }
}

TEST_F(BlockingCameraMonitorTest, StartWhileRunningReleasesWhatTheEarlierOneLeft)
{
    ASSERT_TRUE(m_monitor.startMonitoring());
    int const descriptors = pipesAndSockets();
    m_machine.addVideoNode("video0"); // For the first monitor, which nobody asks any more.
    ASSERT_TRUE(m_monitor.startMonitoring());
    EXPECT_EQ(UdevHook::monitors(), 1);
    EXPECT_EQ(pipesAndSockets(), descriptors);
    m_machine.addVideoNode("video1");
    expectEvent(1, "/dev/video1");
}

TEST_F(BlockingCameraMonitorTest, StartWhileAThreadWaitsEndsThatWait)
{
    ASSERT_TRUE(m_monitor.startMonitoring());
    bool filled = true;
    WatchedThread waiter([&] { filled = m_monitor.getEvent(&m_event); });
    ASSERT_TRUE(waiter.awaitSelect());
    EXPECT_TRUE(m_monitor.startMonitoring());
    waiter.join();
    EXPECT_FALSE(filled);
    m_machine.addVideoNode("video1");
    expectEvent(1, "/dev/video1");
}

TEST_F(BlockingCameraMonitorTest, ContextLivesAsLongAsTheMonitor)
{
    int const contexts = UdevHook::contexts();
    {
        BlockingCameraMonitor second;
        EXPECT_EQ(UdevHook::contexts(), contexts + 1);
        EXPECT_TRUE(second.startMonitoring());
        EXPECT_TRUE(second.stopMonitoring());
        EXPECT_EQ(UdevHook::contexts(), contexts + 1);
    }
    EXPECT_EQ(UdevHook::contexts(), contexts);
}

TEST_F(BlockingCameraMonitorTest, ManyRoundsLeaveNoDescriptor)
{
    int const descriptors = pipesAndSockets();
    for (int round = 0; round < 200; ++round) {
        ASSERT_TRUE(m_monitor.startMonitoring()) << round;
        ASSERT_TRUE(m_monitor.stopMonitoring()) << round;
    }
    EXPECT_EQ(pipesAndSockets(), descriptors);
    EXPECT_EQ(UdevHook::monitors(), 0);
}

TEST_F(BlockingCameraMonitorTest, StartsAndStopsUnderAThreadThatNeverStopsAsking)
{
    std::atomic<bool> finished{false};
    std::atomic<int> answers{0};
    std::thread asking([&] {
        while (!finished) {
            answers += m_monitor.getEvent(&m_event) ? 1 : 0;
        }
    });
    for (int round = 0; round < 10; ++round) {
        ASSERT_TRUE(m_monitor.startMonitoring());
        int const before = answers;
        m_machine.addVideoNode("video0");
        m_machine.removeVideoNode("video0");
        EXPECT_TRUE(await([&] { return answers >= before + 2; }));
        EXPECT_EQ(answers, before + 2);
        ASSERT_TRUE(m_monitor.stopMonitoring());
    }
    finished = true;
    asking.join();
}

} // namespace
