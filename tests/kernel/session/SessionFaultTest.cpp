// SPDX-License-Identifier: MIT
// Every fault of the emulated cameras, as a client of the session layer meets it.
#include "DriversHabit.h"
#include "ErrorOf.h"
#include "FuserFolder.h"
#include "SessionCamera.h"
#include "Shell.h"

using namespace KernelTest;

namespace
{

/// Takes what comes until the stream has ended or nothing comes.
unsigned takenFrom(ia::Stream& stream)
{
    unsigned taken = 0;
    while (ia::Frame const frame = stream.next(3s)) {
        ++taken;
    }
    return taken;
}

class SessionFaultTest : public testing::Test
{
protected:
    explicit SessionFaultTest(bool driverKeepsDamaged = false,
                              std::vector<std::string> const& commands = {})
        : m_habit(driverKeepsDamaged), m_device({"ordinary"}, commands)
    {
    }

    ia::Stream stream()
    {
        m_camera.select("YUYV 160x120@30");
        return m_camera.stream(unhurried());
    }

    DriversHabit const m_habit; ///< From before the camera is plugged in.
    EmulatedCameras const m_device;
    ia::Camera m_camera = openEmulated(m_device);
};

class SessionKeptFrameTest : public SessionFaultTest
{
protected:
    SessionKeptFrameTest() : SessionFaultTest(true, {"1 corrupt 1", "1 cut 3 10000", "1 hold 10"})
    {
    }
};

TEST_F(SessionFaultTest, OfFramesThatTheDriverDropsIsALoss)
{
    m_device.command("corrupt 1");
    m_device.command("cut 3 10000");
    m_device.command("hold 10");
    ia::Stream frames = stream();
    unsigned const taken = takenFrom(frames);
    ia::Statistics const all = frames.statistics();
    EXPECT_EQ(taken, 8U);
    EXPECT_EQ(all.received, 8U);
    EXPECT_EQ(all.damaged, 0U);
    EXPECT_EQ(all.state, ia::StreamState::Running);
}

TEST_F(SessionFaultTest, InTheMiddleOfAFrameIsUnplugging)
{
    m_device.command("unplug frame 5");
    ia::Stream frames = stream();
    EXPECT_EQ(takenFrom(frames), 5U);
    EXPECT_EQ(frames.state(), ia::StreamState::Unplugged);
}

TEST_F(SessionFaultTest, OfAControlIsToldAndLeavesItAsItWas)
{
    ia::Control const brightness = m_camera["brightness"];
    auto const before = brightness.number();
    m_device.command("stall 2 2 any");
    auto const notSet = errorOf([&] { brightness.set(before + 1); });
    ASSERT_TRUE(notSet);
    EXPECT_EQ(notSet->kind(), ia::ErrorKind::Refused) << notSet->what();
    m_device.command("clear");
    EXPECT_EQ(brightness.number(), before);
    brightness.set(before + 1);
    EXPECT_EQ(brightness.number(), before + 1);
}

TEST_F(SessionFaultTest, InPlaceOfAControlsAnswerIsUnplugging)
{
    ia::Control const brightness = m_camera["brightness"];
    ia::Stream frames = stream();
    ASSERT_TRUE(frames.next(20s));
    m_device.command("unplug control");
    EXPECT_TRUE(errorOf([&] { brightness.set(brightness.maximum()); }));
    EXPECT_TRUE(waitFor([&] { return frames.state() == ia::StreamState::Unplugged; }));
    auto const gone = errorOf([&] { brightness.set(1); });
    ASSERT_TRUE(gone);
    EXPECT_EQ(gone->kind(), ia::ErrorKind::Unplugged) << gone->what();
}

TEST_F(SessionKeptFrameTest, AreMarkedAndCounted)
{
    Pictures pictures(m_camera.select("YUYV 160x120@30"));
    ia::Stream frames = m_camera.stream(unhurried());
    for (unsigned long long number = 0; number < 10; ++number) {
        ia::Frame const frame = frames.next(20s);
        ASSERT_TRUE(frame);
        EXPECT_EQ(frame.number(), number);
        EXPECT_EQ(frame.isDamaged(), number == 1 || number == 3);
        EXPECT_EQ(frame.isShort(), number == 3);
        EXPECT_EQ(pictures.areIn(frame), number != 3) << number;
    }
    ia::Statistics const all = frames.statistics();
    EXPECT_EQ(all.damaged, 2U);
    EXPECT_EQ(all.shortened, 1U);
    EXPECT_EQ(all.lost, 0U);
}

/// A camera whose controls go over its serial port.
class SessionSerialFaultTest : public testing::Test
{
protected:
    FuserFolder const m_folder;
    EmulatedCameras const m_device{{"vendor-new"}};
    ia::Camera m_camera = openEmulated(m_device);
};

TEST_F(SessionSerialFaultTest, IsToldOfEveryBadLine)
{
    ia::Control const focus = m_camera["focus"];
    ia::Stream frames = m_camera.stream(unhurried());
    focus.set(321);
    for (char const* const mode : {"serial silent", "serial short 6", "serial slow 900"}) {
        m_device.command(mode);
        auto const silent = errorOf([&] { focus.set(123); });
        ASSERT_TRUE(silent) << mode;
        EXPECT_EQ(silent->kind(), ia::ErrorKind::Refused) << silent->what();
        m_device.command("serial normal");
        EXPECT_TRUE(waitFor([&] { return m_device.status()["serialPending"] == 0; }));
        focus.set(321);
        EXPECT_EQ(focus.number(), 321) << mode;
        EXPECT_TRUE(frames.next(20s));
    }
    for (char const* const mode : {"serial slow 40", "serial split 20"}) {
        m_device.command(mode);
        EXPECT_EQ(focus.number(), 321) << mode;
    }
}

TEST_F(SessionSerialFaultTest, IsUnpluggingInPlaceOfAnAnswer)
{
    ia::Control const focus = m_camera["focus"];
    ia::Stream frames = m_camera.stream(unhurried());
    ASSERT_TRUE(frames.next(20s));
    m_device.command("unplug serial");
    EXPECT_TRUE(errorOf([&] { focus.set(321); }));
    EXPECT_TRUE(waitFor([&] { return frames.state() == ia::StreamState::Unplugged; }));
}

} // namespace
