// SPDX-License-Identifier: MIT
#include "FramePainter.h"
#include "OrdinaryCamera.h"
#include "PaintedFrames.h"
#include "ThreeHands.h"

using namespace ImageAcquisition;
using namespace KernelTest;
using UsbCamera::FramePainter;

using UvcHandsTest = OrdinaryCamera;

TEST_F(UvcHandsTest, TakeFramesGiveThemBackAndSetAControlWithEveryByteRight)
{
    ASSERT_TRUE(m_camera->setCurrentImageFormat("YUYV", 160, 120, 1, 30));
    auto& brightness = dynamic_cast<ICameraControlNumeric<int>&>(*m_camera->brightnessControl());
    FramePainter painter(160, 120);
    ThreeHands hands(*m_camera, brightness, [&](IFrame& frame) {
        return bytesOf(frame) == painter.paint(static_cast<std::uint32_t>(frame.counter()));
    });
    hands.run(300, manyBuffers);
    EXPECT_EQ(hands.taken(), 300U);
    EXPECT_EQ(hands.good(), 300U);
    EXPECT_EQ(hands.givenBack(), 300U);
    EXPECT_GT(hands.controlled(), 0U);
    EXPECT_EQ(hands.uncontrolled(), 0U);
}
