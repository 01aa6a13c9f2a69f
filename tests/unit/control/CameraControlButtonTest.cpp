// SPDX-License-Identifier: MIT
#include "control/CameraControlButton.h"
#include "CameraWithControls.h"
#include "ICameraControlButton.h"

#include <gtest/gtest.h>
#include <linux/videodev2.h>

#include <cerrno>

using namespace ImageAcquisition;
using namespace VirtualCamera;

namespace
{

constexpr unsigned int id = V4L2_CID_AUTO_WHITE_BALANCE;

ControlScript button()
{
    return buttonControl(id, "Restart");
}

TEST(CameraControlButtonTest, SendsOneWithEachClick)
{
    CameraWithControls const opened({button()});
    EXPECT_TRUE(opened.as<ICameraControlButton>(id).clicked());
    EXPECT_TRUE(opened.as<ICameraControlButton>(id).clicked());
    std::vector<CallRecord> const calls = opened.node.calls();
    ASSERT_EQ(calls.size(), 2u);
    for (CallRecord const& call : calls) {
        EXPECT_EQ(CallId(VIDIOC_S_CTRL), call.call);
        EXPECT_EQ(call.argument<v4l2_control>().value, 1);
    }
}

TEST(CameraControlButtonTest, HasNoValueToReadAndDoesNotAskForOne)
{
    CameraWithControls const opened({button()});
    EXPECT_EQ(dynamic_cast<CameraControlButton&>(opened.control(id)).inquireControlValue(), 0);
    EXPECT_EQ(opened.node.countOf(Call::Ioctl), 0u);
}

TEST(CameraControlButtonTest, RefusedClickIsFalse)
{
    CameraWithControls const opened({button().refusingWrites(EIO)});
    EXPECT_FALSE(opened.as<ICameraControlButton>(id).clicked());
    EXPECT_EQ(opened.node.countOf(VIDIOC_S_CTRL), 1u);
}

} // namespace
