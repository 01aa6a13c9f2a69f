// SPDX-License-Identifier: MIT
// Cameras that come and go.
#include "session/Events.h"
#include "Await.h"
#include "DescriptorCount.h"
#include "Machine.h"
#include "Stopwatch.h"

#include <IDevice.h>
#include <gmock/gmock.h>
#include <linux/videodev2.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <mutex>
#include <thread>

namespace
{

using namespace ImageAcquisition::Session;
using namespace std::chrono_literals;
using VirtualCamera::aCamera;
using VirtualCamera::aUsbDevice;

std::string textOf(std::optional<Event> const& event)
{
    return event ? std::string(toText(event->action)) + " " + event->camera.text() : "nothing";
}

class EventsTest : public testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(VirtualCamera::Testbed::visible()); }

    /// The virtual camera is there before its node is announced, as a driver has it.
    void plug(int number, std::string const& port, std::string const& serial)
    {
        auto const usb = m_machine.plug(aUsbDevice(port).withSerial(serial));
        m_videos.push_back(aCamera(Machine::nodeOf(number)).install());
        m_machine.testbed.addVideoNode("video" + std::to_string(number), usb);
    }

    Machine m_machine;
    std::vector<VirtualCamera::InstalledCamera> m_videos;
};

TEST_F(EventsTest, TellOfACameraThatComesWithItsRecord)
{
    Events events;
    plug(3, "1-2", "S1");
    auto const event = events.next(5s);
    EXPECT_EQ(textOf(event), "added serial:S1");
    ASSERT_TRUE(event);
    EXPECT_EQ(event->camera.node(), "/dev/video3");
    EXPECT_EQ(event->camera.port(), "1-2");
}

TEST_F(EventsTest, TellOfACameraThatGoesWhatWasKnownOfIt)
{
    plug(0, "1-1", "S0");
    Events events;
    m_machine.testbed.removeVideoNode("video0");
    EXPECT_EQ(textOf(events.next(5s)), "removed serial:S0");
}

TEST_F(EventsTest, TellOfChanges)
{
    plug(0, "1-1", "S0");
    Events events;
    m_machine.testbed.sendEvent("video0", "change");
    EXPECT_EQ(textOf(events.next(5s)), "changed serial:S0");
    m_machine.testbed.sendEvent("video0", "move");
    EXPECT_EQ(textOf(events.next(5s)), "moved serial:S0");
    m_machine.testbed.sendEvent("video0", "bind");
    EXPECT_EQ(textOf(events.next(5s)), "other serial:S0");
}

TEST_F(EventsTest, PassOverACameraThatIsKnown)
{
    plug(0, "1-1", "S0");
    Events events;
    m_machine.testbed.sendEvent("video0", "add");
    EXPECT_EQ(textOf(events.next(100ms)), "nothing") << "it is known";
}

TEST_F(EventsTest, PassOverWhatIsNoCamera)
{
    Events events;
    auto const usb = m_machine.plug(aUsbDevice("1-1"));
    m_videos.push_back(aCamera("/dev/video1")
                           .withCapabilities(V4L2_CAP_META_CAPTURE, V4L2_CAP_META_CAPTURE)
                           .install());
    m_machine.testbed.addVideoNode("video1", usb);
    m_machine.testbed.addVideoNode("vbi0", usb);
    plug(2, "1-2", "S2");
    EXPECT_EQ(textOf(events.next(5s)), "added serial:S2");
    EXPECT_EQ(textOf(events.next(0ms)), "nothing");
}

TEST_F(EventsTest, TellOfACameraThatGetsItsRightsLater)
{
    Events events;
    auto const usb = m_machine.plug(aUsbDevice("1-1").withSerial("S1"));
    m_videos.push_back(aCamera("/dev/video1").failing(VirtualCamera::Call::Open, EACCES).install());
    m_machine.testbed.addVideoNode("video1", usb);
    EXPECT_EQ(textOf(events.next(100ms)), "nothing");
    m_machine.testbed.sendEvent("video1", "change");
    EXPECT_EQ(textOf(events.next(5s)), "added serial:S1");
}

TEST_F(EventsTest, WaitNoLongerThanTheyAreTold)
{
    Events events;
    Stopwatch const watch;
    EXPECT_FALSE(events.next(0ms));
    EXPECT_FALSE(events.next(50ms));
    EXPECT_GE(watch.seconds(), 0.05);
    EXPECT_LT(watch.seconds(), 2);
}

TEST_F(EventsTest, EndOnRequestOfAnotherThread)
{
    Events events;
    std::thread stopper([&events] { events.stop(); });
    EXPECT_FALSE(events.next(-1ms));
    stopper.join();
    plug(0, "1-1", "S0");
    EXPECT_FALSE(events.next(100ms)) << "stopped for good";
}

TEST_F(EventsTest, MakeTheirDescriptorReadable)
{
    Events events;
    pollfd descriptor{events.descriptor(), POLLIN, 0};
    EXPECT_EQ(poll(&descriptor, 1, 0), 0);
    plug(0, "1-1", "S0");
    EXPECT_EQ(poll(&descriptor, 1, 5000), 1);
    EXPECT_EQ(textOf(events.next(5s)), "added serial:S0");
    EXPECT_EQ(poll(&descriptor, 1, 0), 0);
    events.stop();
    EXPECT_EQ(poll(&descriptor, 1, 0), 1);
}

TEST_F(EventsTest, CallBackOnAThreadOfTheirOwn)
{
    std::mutex mutex;
    std::vector<std::string> told;
    std::atomic<bool> otherThread{false};
    auto const caller = std::this_thread::get_id();
    Events events([&](Event const& event) {
        std::lock_guard<std::mutex> const lock(mutex);
        told.push_back(textOf(event));
        otherThread = std::this_thread::get_id() != caller;
    });
    EXPECT_EQ(events.descriptor(), -1);
    EXPECT_FALSE(events.next(5s));
    plug(0, "1-1", "S0");
    EXPECT_TRUE(await([&] {
        std::lock_guard<std::mutex> const lock(mutex);
        return told == std::vector<std::string>{"added serial:S0"};
    }));
    EXPECT_TRUE(otherThread);
}

TEST_F(EventsTest, MayGoFromWithinTheirCallback)
{
    std::atomic<bool> gone{false};
    std::optional<Events> events;
    events.emplace([&](Event const&) {
        events.reset();
        gone = true;
    });
    plug(0, "1-1", "S0");
    EXPECT_TRUE(await([&] { return gone.load(); }));
}

TEST_F(EventsTest, AskEachOfTheVendorsCamerasForItsFirmware)
{
    Events events;
    for (int number = 0; number < 2; ++number) {
        std::string const text = std::to_string(number);
        auto const usb =
            m_machine.plug(vendorUsbDevice("1-" + text).withFirmware(("TJ8-1.2." + text).c_str()));
        m_videos.push_back(aCamera(Machine::nodeOf(number)).install());
        m_machine.testbed.addVideoNode("video" + text, usb);
        auto const event = events.next(5s);
        ASSERT_TRUE(event);
        EXPECT_EQ(event->camera.device().firmwareVersion(), "TJ8-1.2." + text);
    }
}

TEST_F(EventsTest, LeaveAChildNothingToWaitFor)
{
    std::optional<Events> events(std::in_place);
    std::optional<Events> calling([](Event const&) {});
    plug(0, "1-1", "S0");
    pid_t const child = fork();
    if (child == 0) {
        alarm(20);
        bool const isTold = events->next(-1ms).has_value();
        events.reset();
        calling.reset();
        _exit(isTold ? 1 : 0);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status)) << "signal " << WTERMSIG(status);
    EXPECT_EQ(WEXITSTATUS(status), 0);
    EXPECT_EQ(textOf(events->next(5s)), "added serial:S0");
}

TEST_F(EventsTest, LeaveNoDescriptorBehind)
{
    auto const watch = [] {
        Events events;
        Events moved = std::move(events);
        moved = Events([](Event const&) {});
    };
    // The first event makes the simulated machine open the sockets that it keeps.
    m_machine.testbed.addOtherDevice("input", "event99");
    watch();
    int const before = openDescriptors();
    for (int round = 0; round < 5; ++round) {
        watch();
    }
    EXPECT_LT(openDescriptors(), before + 5) << "a round leaves none, the machine some of its own";
}

} // namespace
