// SPDX-License-Identifier: MIT
// Faults of the emulated camera, as a client of the session layer meets it.
#include "ErrorOf.h"
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
    ia::Stream stream()
    {
        m_camera.select("YUYV 160x120@30");
        return m_camera.stream(unhurried());
    }

    EmulatedCameras const m_device{{"ordinary"}};
    ia::Camera m_camera = openEmulated(m_device);
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

} // namespace
