// SPDX-License-Identifier: MIT
// Damaged frames that the driver was told to keep.
#include "DriversHabit.h"
#include "SessionCamera.h"

using namespace KernelTest;

namespace
{

class SessionKeptFrameTest : public testing::Test
{
protected:
    DriversHabit const m_habit{true}; ///< From before the camera is plugged in.
    EmulatedCameras const m_device{{"ordinary"}, {"1 corrupt 1", "1 cut 3 10000", "1 hold 10"}};
    ia::Camera m_camera = openEmulated(m_device);
};

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

} // namespace
