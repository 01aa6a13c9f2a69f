// SPDX-License-Identifier: MIT
// Faults of a serial link, as a client of the session layer meets them.
#include "ErrorOf.h"
#include "FuserFolder.h"
#include "SessionCamera.h"
#include "Shell.h"

using namespace KernelTest;

namespace
{

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
