// SPDX-License-Identifier: MIT
// Streams that stay on while the camera is unplugged and plugged in again.
#include "DescriptorCount.h"
#include "ProcessCensus.h"
#include "RemainsCheck.h"
#include "SessionCamera.h"
#include "Shell.h"
#include "ThreadCount.h"
#include "V4l2Ctl.h"

#include <gmock/gmock.h>

#include <mutex>
#include <optional>
#include <utility>

using namespace KernelTest;
using testing::ElementsAre;

namespace
{

/// What the process has.
struct Possessions
{
    int descriptors = openDescriptors();
    int threads = threadCount();
    int children = childrenOfThisProcess();
};

class SessionReturnTest : public testing::Test
{
protected:
    ia::StreamOptions stayingOn()
    {
        ia::StreamOptions options = unhurried();
        options.stayOn = true;
        options.onState = [this](ia::StreamState state) {
            std::lock_guard<std::mutex> const lock(m_mutex);
            m_told.push_back(state);
        };
        return options;
    }
    /// What was told since the last call, as soon as it ends with a state.
    std::vector<ia::StreamState> toldUntil(ia::StreamState last)
    {
        waitFor([&] {
            std::lock_guard<std::mutex> const lock(m_mutex);
            return !m_told.empty() && m_told.back() == last;
        });
        std::lock_guard<std::mutex> const lock(m_mutex);
        return std::exchange(m_told, {});
    }

    /// Unplugs a camera, and sees that the stream knows it and waits.
    static void unplug(EmulatedCameras const& cameras, ia::Stream& stream, unsigned camera = 1)
    {
        cameras.command("unplug", camera);
        ASSERT_TRUE(waitFor([&] { return stream.state() != ia::StreamState::Running; }));
        EXPECT_EQ(stream.state(), ia::StreamState::Away);
        EXPECT_FALSE(stream.error());
        ASSERT_TRUE(cameras.waitUntilGone(camera));
        while (stream.next(0ms)) {
            // Those that came before.
        }
    }

    void expectFrame(ia::Stream& stream)
    {
        ia::Frame const frame = stream.next(20s);
        ASSERT_TRUE(frame);
        EXPECT_EQ(frame.selection().text(), "YUYV 160x120@30");
        EXPECT_TRUE(m_pictures.areIn(frame)) << frame.number();
    }

    Pictures m_pictures{{"YUYV", 160, 120, {}}};

private:
    std::mutex m_mutex;
    std::vector<ia::StreamState> m_told;
};

/// A number of two bytes in the camera itself.
int numberIn(EmulatedCameras const& cameras, char const* unitAndSelector)
{
    UsbCamera::Bytes const bytes =
        UsbCamera::fromHex(cameras.command(std::string("get ") + unitAndSelector));
    return static_cast<std::int16_t>(UsbCamera::readLittle(bytes, 0, 2));
}

TEST_F(SessionReturnTest, FiftyTimesPutsEverythingBackAndLeavesNothingBehind)
{
    constexpr unsigned rounds = 50;
    EmulatedCameras const device({"ordinary"});
    int const threads = threadCount();
    // The first stream sets up some things of the process once.
    openEmulated(device).stream().next(20s);
    ASSERT_TRUE(awaitThreadCount(threads));
    RemainsCheck const remains;
    ia::Camera camera = ia::Camera::open("serial:ORD001");
    camera.select("YUYV 160x120@30");
    camera["auto_exposure"] = "Manual Mode";
    camera["exposure_time_absolute"] = 321;
    ia::Stream stream = camera.stream(stayingOn());
    std::optional<Possessions> first;
    for (unsigned round = 1; round <= rounds && !HasFailure(); ++round) {
        SCOPED_TRACE(round);
        int const contrast = static_cast<int>(10 + round);
        camera["contrast"] = contrast;
        expectFrame(stream);
        unplug(device, stream);
        device.plug();
        ASSERT_TRUE(waitFor([&] { return stream.statistics().returns == round; }));
        expectFrame(stream);
        EXPECT_EQ(stream.state(), ia::StreamState::Running);
        EXPECT_THAT(toldUntil(ia::StreamState::Running),
                    ElementsAre(ia::StreamState::Away, ia::StreamState::Running));
        // A camera that is plugged in begins with other values.
        EXPECT_EQ(numberIn(device, "1 4"), 321);
        EXPECT_EQ(numberIn(device, "2 3"), contrast);
        EXPECT_EQ(camera["contrast"].number(), contrast);
        Possessions const now;
        first = first ? first : now;
        EXPECT_EQ(now.descriptors, first->descriptors);
        EXPECT_EQ(now.threads, first->threads);
        EXPECT_EQ(now.children, first->children);
    }
    EXPECT_EQ(selectedByV4l2Ctl(camera.found().node()), "YUYV 160x120@30");
    EXPECT_EQ(readControl(camera.found().node(), "exposure_time_absolute"), "321");
}

TEST_F(SessionReturnTest, FindsTheSerialNumberAtAnotherPort)
{
    EmulatedCameras const device({"ordinary,serial=A,port=1", "ordinary,serial=A,port=2"});
    device.command("unplug", 2);
    ASSERT_TRUE(device.waitUntilGone(2));
    ia::Camera camera = ia::Camera::open("serial:A");
    std::string const port = camera.found().port();
    camera.select("YUYV 160x120@30");
    ia::Stream stream = camera.stream(stayingOn());
    expectFrame(stream);
    unplug(device, stream);
    device.plug(2);
    expectFrame(stream);
    EXPECT_NE(camera.found().port(), port);
    EXPECT_EQ(camera.found().serial(), "A");
    EXPECT_EQ(stream.statistics().returns, 1U);
    EXPECT_EQ(device.status(2)["streaming"], true);
}

TEST_F(SessionReturnTest, WithoutASerialNumberFindsThePort)
{
    EmulatedCameras const device({"ordinary,serial=,port=1", "ordinary,serial=,port=2"});
    ia::Camera camera = openEmulated(device, 2);
    ASSERT_EQ(camera.found().serial(), "");
    std::string const port = camera.found().port();
    camera.select("YUYV 160x120@30");
    ia::Stream stream = camera.stream(stayingOn());
    expectFrame(stream);
    unplug(device, stream, 2);
    device.plug(2);
    expectFrame(stream);
    EXPECT_EQ(camera.found().port(), port);
    EXPECT_EQ(device.status(1)["streaming"], false);
    EXPECT_EQ(device.status(2)["streaming"], true);
}

TEST_F(SessionReturnTest, IsAwaitedForAsLongAsWasSaid)
{
    EmulatedCameras const device({"ordinary"});
    ia::Camera camera = openEmulated(device);
    ia::StreamOptions options = stayingOn();
    options.patience = 500ms;
    ia::Stream stream = camera.stream(options);
    ASSERT_TRUE(stream.next(20s));
    unplug(device, stream);
    EXPECT_FALSE(stream.next(20s));
    EXPECT_EQ(stream.state(), ia::StreamState::Unplugged);
    EXPECT_THAT(toldUntil(ia::StreamState::Unplugged),
                ElementsAre(ia::StreamState::Away, ia::StreamState::Unplugged));
}

} // namespace
