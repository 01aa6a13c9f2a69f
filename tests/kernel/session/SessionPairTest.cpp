// SPDX-License-Identifier: MIT
// Two cameras under one wait.
#include "SessionCamera.h"

using namespace KernelTest;

namespace
{

TEST(SessionPairTest, GetsFromEachCameraItsShare)
{
    EmulatedCameras const device({"ordinary,serial=A", "ordinary,serial=B"},
                                 {"1 hold 90", "2 hold 45"});
    ia::Camera left = ia::Camera::open("serial:A");
    ia::Camera right = ia::Camera::open("serial:B");
    Pictures leftPictures(left.select("YUYV 160x120@30"));
    Pictures rightPictures(right.select("YUYV 320x240@15"));
    ia::Stream fast = left.stream(unhurried());
    ia::Stream slow = right.stream(unhurried());
    unsigned long long counts[2] = {};
    unsigned long long leftWhenRightHadTwenty = 0;
    while (auto const which = ia::waitAny({&fast, &slow}, 3s)) {
        bool const isLeft = *which == 0;
        ia::Frame const frame = (isLeft ? fast : slow).next(0ms);
        ASSERT_TRUE(frame) << *which;
        EXPECT_EQ(frame.number(), counts[*which]++);
        EXPECT_TRUE((isLeft ? leftPictures : rightPictures).areIn(frame)) << frame.number();
        if (!isLeft && counts[1] == 20) {
            leftWhenRightHadTwenty = counts[0];
        }
    }
    EXPECT_EQ(counts[0], 90U);
    EXPECT_EQ(counts[1], 45U);
    // Twice as many, as their rates are, but for what one of them began earlier.
    EXPECT_NEAR(static_cast<double>(leftWhenRightHadTwenty), 40, 15);
    EXPECT_EQ(fast.statistics().received, 90U);
    EXPECT_EQ(slow.statistics().received, 45U);
    for (ia::Stream const* const stream : {&fast, &slow}) {
        ia::Statistics const all = stream->statistics();
        EXPECT_EQ(all.lost, 0U);
        EXPECT_EQ(all.thrownAway, 0U);
        EXPECT_EQ(all.timeOuts, 0U) << "waitAny() is what waited";
    }
    device.command("unplug", 1);
    EXPECT_EQ(ia::waitAny({&fast, &slow}, 20s), 0U);
    EXPECT_EQ(fast.state(), ia::StreamState::Unplugged);
    EXPECT_EQ(slow.state(), ia::StreamState::Running);
    ASSERT_TRUE(device.waitUntilGone(1));
}

} // namespace
