// SPDX-License-Identifier: MIT
#include "ThreeHands.h"
#include "VividControls.h"

using namespace ImageAcquisition;
using namespace KernelTest;

using VividHandsTest = VividControls;

TEST_F(VividHandsTest, TakeFramesGiveThemBackAndSetAControl)
{
    ASSERT_TRUE(selectSmall(*m_camera));
    auto& brightness = dynamic_cast<ICameraControlNumeric<int>&>(*m_camera->brightnessControl());
    // The control changes the picture: what is right is its size, and that nothing writes into it
    // before it is given back.
    ThreeHands hands(*m_camera, brightness, [](IFrame& frame) {
        unsigned char const mark = static_cast<unsigned char>(frame.counter());
        unsigned long long const counter = frame.counter();
        frame.bytePtr()[0] = mark;
        return frame.bytesUsed() == smallSize && !frame.isCorrupted() &&
               frame.bytePtr()[0] == mark && frame.counter() == counter;
    });
    hands.run(300, 8);
    EXPECT_EQ(hands.taken(), 300U);
    EXPECT_EQ(hands.good(), 300U);
    EXPECT_EQ(hands.givenBack(), 300U);
    EXPECT_GT(hands.controlled(), 0U);
    EXPECT_EQ(hands.uncontrolled(), 0U);
}
