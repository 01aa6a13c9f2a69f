// SPDX-License-Identifier: MIT
// Streams that survive unplugging.
#include "ErrorOf.h"
#include "StreamedCamera.h"
#include "ThreadCount.h"
#include "session/Profile.h"

#include <gmock/gmock.h>
#include <linux/videodev2.h>

#include <atomic>
#include <cerrno>
#include <mutex>
#include <thread>

namespace
{

using namespace ImageAcquisition::Session;
using testing::ElementsAre;

VirtualCamera::CameraBuilder adjustable()
{
    return VirtualCamera::aCamera()
        .withFormat("YUYV")
        .withSize(32, 24)
        .withInterval(1, 30)
        .withSize(64, 48)
        .withInterval(1, 30)
        .withInterval(1, 15)
        .withControl(VirtualCamera::integerControl(V4L2_CID_HUE, "Hue")
                         .range(0, 9)
                         .activeOnlyWhen(V4L2_CID_HUE_AUTO, 0))
        .withControl(VirtualCamera::integerControl(V4L2_CID_CONTRAST, "Contrast").range(0, 9))
        .withControl(VirtualCamera::integerControl(V4L2_CID_GAIN, "Gain").range(0, 9))
        // Behind the control that it governs.
        .withControl(VirtualCamera::booleanControl(V4L2_CID_HUE_AUTO, "Hue, Auto").byDefault(1))
        .paced(VirtualCamera::Pace::Immediate);
}

class StayingOnTest : public testing::Test
{
protected:
    explicit StayingOnTest(VirtualCamera::CameraBuilder const& builder = smallCamera())
        : m_device(builder)
    {
        m_options.stayOn = true;
        m_options.onState = [this](StreamState state) {
            std::lock_guard<std::mutex> const lock(m_mutex);
            m_states.push_back(state);
        };
    }

    /// Until the stream has noticed.
    void unplug(Stream const& stream)
    {
        m_device.unplug();
        ASSERT_TRUE(await([&] { return stream.state() == StreamState::Away; }));
    }
    static bool isBack(Stream const& stream)
    {
        return await([&] { return stream.state() == StreamState::Running; });
    }
    std::vector<StreamState> states()
    {
        std::lock_guard<std::mutex> const lock(m_mutex);
        return m_states;
    }

    StreamedCamera m_device;
    StreamOptions m_options;

private:
    std::mutex m_mutex;
    std::vector<StreamState> m_states;
};

class AdjustedStayingOnTest : public StayingOnTest
{
protected:
    AdjustedStayingOnTest() : StayingOnTest(adjustable()) {}
};

TEST_F(StayingOnTest, GoesOnWhenTheCameraIsBack)
{
    Camera camera = m_device.open();
    Stream stream = camera.stream(m_options);
    EXPECT_TRUE(stream.next(5s));
    unplug(stream);
    while (stream.next(0ms)) {
    }
    EXPECT_FALSE(stream.next(20ms));
    EXPECT_FALSE(stream.error());
    m_device.plug();
    EXPECT_TRUE(stream.next(10s));
    EXPECT_EQ(stream.state(), StreamState::Running);
    EXPECT_EQ(stream.statistics().returns, 1u);
    EXPECT_EQ(stream.statistics().lost, 0u);
    EXPECT_THAT(states(), ElementsAre(StreamState::Away, StreamState::Running));
}

TEST_F(StayingOnTest, GoesOnTimeAndAgain)
{
    Camera camera = m_device.open();
    Stream stream = camera.stream(m_options);
    for (unsigned int round = 1; round <= 5; ++round) {
        EXPECT_TRUE(stream.next(5s));
        unplug(stream);
        m_device.plug();
        ASSERT_TRUE(isBack(stream));
        EXPECT_EQ(stream.statistics().returns, round);
    }
}

TEST_F(StayingOnTest, IsWhatALoopNeedNotKnowOf)
{
    m_options.timeout = 50ms;
    Camera camera = m_device.open();
    Stream stream = camera.stream(m_options);
    std::thread other([&] {
        unplug(stream);
        std::this_thread::sleep_for(200ms);
        m_device.plug();
    });
    for (Frame const& frame : stream) {
        EXPECT_TRUE(frame);
        if (stream.statistics().returns == 1) {
            stream.stop();
        }
    }
    other.join();
    EXPECT_EQ(stream.state(), StreamState::Stopped);
}

// The camera is back before the loop's time is over, and its first frame comes after that.
TEST_F(StayingOnTest, GivesALoopItsWholeTimeOnceMoreAfterAReturn)
{
    m_device.unplug();
    m_device.become(StreamedCamera::onDemand(), StreamedCamera::numbered());
    m_device.plug();
    m_options.timeout = 500ms;
    Camera camera = m_device.open();
    Stream stream = camera.stream(m_options);
    std::thread other([&] {
        unplug(stream);
        m_device.plug();
        EXPECT_TRUE(isBack(stream));
        std::this_thread::sleep_for(450ms);
        m_device->deliverFrames(1);
    });
    std::this_thread::sleep_for(100ms);
    EXPECT_NO_THROW(stream.begin());
    other.join();
}

TEST_F(StayingOnTest, OpensANodeThatCannotBeOpenedAtFirst)
{
    Camera camera = m_device.open();
    Stream stream = camera.stream(m_options);
    unplug(stream);
    m_device.become(smallCamera()
                        .failing(VirtualCamera::Call::Open, EIO, 1)
                        .failing(VirtualCamera::Call::Open, EIO, 2),
                    StreamedCamera::numbered());
    m_device.plug();
    EXPECT_TRUE(isBack(stream));
}

TEST_F(StayingOnTest, MayBeFollowedByAnotherWhenItTellsOfItsEnd)
{
    std::optional<Stream> next;
    std::atomic<bool> isFollowed{false};
    Camera camera = m_device.open();
    StreamOptions options;
    options.onState = [&](StreamState) {
        next.emplace(camera.stream());
        isFollowed = true;
    };
    {
        Stream stream = camera.stream(options);
        stream.stop();
        EXPECT_TRUE(await([&] { return isFollowed.load(); }));
    }
    EXPECT_TRUE(next->next(5s));
}

TEST_F(StayingOnTest, KeepsFramesOfTheCameraThatWas)
{
    Camera camera = m_device.open();
    Stream stream = camera.stream(m_options);
    Frame const frame = stream.next(5s);
    unplug(stream);
    m_device.plug();
    ASSERT_TRUE(isBack(stream));
    EXPECT_EQ(frame.bytes().size(), smallImageSize);
    EXPECT_EQ(frame.selection().format, "YUYV");
    EXPECT_GT(frame.bytes()[smallImageSize - 1] + frame.bytes()[1], 0);
    EXPECT_TRUE(stream.next(5s));
}

TEST_F(StayingOnTest, WaitsForTheSameSerialNumber)
{
    Camera camera = m_device.open();
    Stream stream = camera.stream(m_options);
    unplug(stream);
    m_device.become(smallCamera(), StreamedCamera::numbered().withSerial("VC1002"));
    m_device.plug();
    EXPECT_FALSE(await([&] { return stream.state() != StreamState::Away; }, 300ms));
    m_device.unplug();
    auto elsewhere = VirtualCamera::aUsbDevice("2-4").withIds("046d", "0825").withSerial("VC1001");
    m_device.become(smallCamera(), elsewhere);
    m_device.plug();
    EXPECT_TRUE(isBack(stream));
    EXPECT_EQ(camera.found().port(), "2-4");
}

TEST_F(StayingOnTest, WaitsAtThePortForACameraWithoutSerialNumber)
{
    auto const unnumbered = [](std::string const& port) {
        return VirtualCamera::aUsbDevice(port).withIds("046d", "0825");
    };
    m_device.unplug();
    m_device.become(smallCamera(), unnumbered("1-3"));
    m_device.plug();
    Camera camera = m_device.open();
    Stream stream = camera.stream(m_options);
    unplug(stream);
    m_device.become(smallCamera(), unnumbered("1-4"));
    m_device.plug();
    EXPECT_FALSE(await([&] { return stream.state() != StreamState::Away; }, 300ms));
    m_device.unplug();
    m_device.become(smallCamera(), unnumbered("1-3"));
    m_device.plug();
    EXPECT_TRUE(isBack(stream));
}

TEST_F(StayingOnTest, EndsWhenItsPatienceDoes)
{
    m_options.patience = 100ms;
    Camera camera = m_device.open();
    Stream stream = camera.stream(m_options);
    unplug(stream);
    ASSERT_TRUE(await([&] { return stream.state() == StreamState::Unplugged; }));
    ASSERT_TRUE(stream.error());
    EXPECT_EQ(stream.error()->kind(), ErrorKind::Unplugged);
    EXPECT_TRUE(await([&] { return states().size() == 2; }));
    EXPECT_THAT(states(), ElementsAre(StreamState::Away, StreamState::Unplugged));
}

TEST_F(StayingOnTest, IsStoppedWhileTheCameraIsAway)
{
    Camera camera = m_device.open();
    Stream stream = camera.stream(m_options);
    unplug(stream);
    stream.stop();
    EXPECT_FALSE(stream.next(30s));
    EXPECT_EQ(stream.state(), StreamState::Stopped);
}

TEST_F(StayingOnTest, EndsWithItsStreamWhileTheCameraIsAway)
{
    int const threads = threadCount();
    {
        Camera camera = m_device.open();
        Stream stream = camera.stream(m_options);
        unplug(stream);
    }
    EXPECT_TRUE(awaitThreadCount(threads));
    EXPECT_TRUE(m_device->accounting().nothingHeld());
}

TEST_F(StayingOnTest, RefusesASecondStreamWhileTheCameraIsAway)
{
    Camera camera = m_device.open();
    Stream stream = camera.stream(m_options);
    unplug(stream);
    auto const error = errorOf([&] { camera.stream(); });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->kind(), ErrorKind::Busy);
}

TEST_F(StayingOnTest, TriesAgainWhileTheCameraIsRefused)
{
    Camera camera = m_device.open();
    Stream stream = camera.stream(m_options);
    unplug(stream);
    m_device.become(smallCamera().failing(VIDIOC_STREAMON, EBUSY, 1), StreamedCamera::numbered());
    m_device.plug();
    EXPECT_TRUE(isBack(stream));
    EXPECT_TRUE(stream.next(5s));
}

TEST_F(StayingOnTest, FailsWhenTheCameraNoLongerOffersWhatWasSelected)
{
    Camera camera = m_device.open();
    Stream stream = camera.stream(m_options);
    unplug(stream);
    m_device.become(VirtualCamera::aCamera().withFormat("UYVY").withSize(32, 24).withInterval(1, 5),
                    StreamedCamera::numbered());
    m_device.plug();
    ASSERT_TRUE(await([&] { return stream.state() == StreamState::Failed; }));
    EXPECT_EQ(stream.error()->kind(), ErrorKind::Unsupported);
}

TEST_F(StayingOnTest, SurvivesNoDriversError)
{
    m_device->fail(VIDIOC_DQBUF, EIO, 5);
    Camera camera = m_device.open();
    Stream stream = camera.stream(m_options);
    ASSERT_TRUE(await([&] {
        stream.next(0ms);
        return stream.state() != StreamState::Running;
    }));
    EXPECT_EQ(stream.state(), StreamState::Failed);
}

TEST_F(AdjustedStayingOnTest, PutsTheSelectionBack)
{
    Camera camera = m_device.open();
    camera.select("YUYV 64x48@15");
    Stream stream = camera.stream(m_options);
    unplug(stream);
    m_device.plug();
    ASSERT_TRUE(isBack(stream));
    EXPECT_EQ(camera.selection().text(), "YUYV 64x48@15");
    EXPECT_EQ(stream.next(5s).selection().text(), "YUYV 64x48@15");
}

TEST_F(AdjustedStayingOnTest, PutsControlsBackAsTheyWereAndAsTheyWereSet)
{
    Camera camera = m_device.open();
    camera["gain"] = 3;
    camera["contrast"] = 4;
    Stream stream = camera.stream(m_options);
    camera["contrast"] = 7;
    unplug(stream);
    m_device.plug();
    ASSERT_TRUE(isBack(stream));
    EXPECT_EQ(m_device->controlValue(V4L2_CID_GAIN), 3);
    EXPECT_EQ(m_device->controlValue(V4L2_CID_CONTRAST), 7);
}

TEST_F(AdjustedStayingOnTest, PutsControlsBackAsTheyWereWhenItBegan)
{
    Camera camera = m_device.open();
    camera["gain"] = 3;
    m_device->setControlValue(V4L2_CID_GAIN, 8);
    Stream stream = camera.stream(m_options);
    unplug(stream);
    m_device.plug();
    ASSERT_TRUE(isBack(stream));
    EXPECT_EQ(m_device->controlValue(V4L2_CID_GAIN), 8);
}

// Valgrind and the sanitizers see what it would read of the camera that was.
TEST_F(AdjustedStayingOnTest, LetsProfilesBeComparedWhileTheCameraIsOpenedAnew)
{
    Camera camera = m_device.open();
    Profile const profile = Profile::take(camera);
    Stream stream = camera.stream(m_options);
    std::atomic<bool> isOver{false};
    std::thread other([&] {
        while (!isOver) {
            try {
                profile.compare(camera);
            } catch (Error const&) {
                // It is away.
            }
        }
    });
    for (int round = 0; round < 5; ++round) {
        unplug(stream);
        m_device.plug();
        ASSERT_TRUE(isBack(stream));
    }
    isOver = true;
    other.join();
}

TEST_F(AdjustedStayingOnTest, PutsControlsBackThatAnotherGoverns)
{
    m_device->setControlValue(V4L2_CID_HUE_AUTO, 0);
    m_device->setControlValue(V4L2_CID_HUE, 5);
    Camera camera = m_device.open();
    Stream stream = camera.stream(m_options);
    unplug(stream);
    m_device.plug();
    ASSERT_TRUE(isBack(stream));
    EXPECT_EQ(m_device->controlValue(V4L2_CID_HUE_AUTO), 0);
    EXPECT_EQ(m_device->controlValue(V4L2_CID_HUE), 5);
}

} // namespace
