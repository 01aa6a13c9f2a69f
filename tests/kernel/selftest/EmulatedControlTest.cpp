// SPDX-License-Identifier: MIT
#include "DeviceQueries.h"
#include "EmulatedCameras.h"
#include "Shell.h"

#include <cerrno>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/videodev2.h>
#include <sys/ioctl.h>
#include <unistd.h>

using namespace KernelTest;
using UsbCamera::Bytes;
using UsbCamera::toHex;

TEST(EmulatedControlTest, AValueSetThroughTheDriverArrivesInTheCamera)
{
    EmulatedCameras const cameras({"ordinary"});
    cameras.mark();
    EXPECT_EQ(runShell("v4l2-ctl -c brightness=-5 -d " + cameras.videoNode()).status, 0);
    auto const written = cameras.requests("SET_CUR");
    ASSERT_EQ(written.size(), 1U);
    EXPECT_EQ(written[0]["kind"], "unit");
    EXPECT_EQ(written[0]["unit"], 2);
    EXPECT_EQ(written[0]["selector"], 2);
    EXPECT_EQ(written[0]["data"], "fbff");
    EXPECT_EQ(cameras.command("get 2 2"), "fbff");
}

TEST(EmulatedControlTest, AValueChangedInTheCameraIsRead)
{
    EmulatedCameras const cameras({"ordinary"});
    cameras.command("set 2 3 2a00");
    CommandResult const read = runShell("v4l2-ctl -C contrast -d " + cameras.videoNode());
    EXPECT_EQ(read.output, "contrast: 42\n");
}

TEST(EmulatedControlTest, EverySelectorOfTheExtensionUnitAnswers)
{
    EmulatedCameras const cameras({"vendor-old"});
    std::string const node = cameras.videoNode();
    for (int const number :
         {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 20, 24, 25}) {
        auto const selector = static_cast<std::uint8_t>(number);
        UnitAnswer const length = queryUnit(node, 3, selector, UVC_GET_LEN, Bytes(2));
        ASSERT_EQ(length.error, 0) << number;
        UnitAnswer const value = queryUnit(node, 3, selector, UVC_GET_CUR, Bytes(length.data[0]));
        EXPECT_EQ(value.error, 0) << number;
        EXPECT_EQ(toHex(value.data), cameras.command("get 3 " + std::to_string(number)));
    }
    EXPECT_EQ(queryUnit(node, 3, 19, UVC_GET_LEN, Bytes(2)).error, ENOENT);
}

TEST(EmulatedControlTest, AnExtensionUnitControlCanBeMappedAndWritten)
{
    EmulatedCameras const cameras({"vendor-old"});
    int const node = ::open(cameras.videoNode().c_str(), O_RDWR | O_CLOEXEC);
    uvc_xu_control_mapping mapping{};
    mapping.id = V4L2_CID_PRIVATE_BASE;
    std::snprintf(reinterpret_cast<char*>(mapping.name), sizeof mapping.name, "Field");
    mapping.entity[0] = 1;
    mapping.selector = 20;
    mapping.size = 16;
    mapping.offset = 32;
    mapping.v4l2_type = V4L2_CTRL_TYPE_INTEGER;
    mapping.data_type = UVC_CTRL_DATA_TYPE_UNSIGNED;
    EXPECT_EQ(::ioctl(node, UVCIOC_CTRL_MAP, &mapping), 0) << errno;
    v4l2_ext_control control{};
    control.id = mapping.id;
    control.value = 0x0123;
    v4l2_ext_controls controls{};
    controls.count = 1;
    controls.controls = &control;
    EXPECT_EQ(::ioctl(node, VIDIOC_S_EXT_CTRLS, &controls), 0) << errno;
    ::close(node);
    EXPECT_EQ(cameras.command("get 3 20"), "0000000023010000");
}

TEST(EmulatedControlTest, AStalledRequestIsRefusedByTheDriver)
{
    EmulatedCameras const cameras({"vendor-old"});
    std::string const node = cameras.videoNode();
    ASSERT_EQ(queryUnit(node, 3, 1, UVC_GET_CUR, Bytes(1)).error, 0);
    cameras.command("stall 3 1 SET_CUR 1 2");
    EXPECT_NE(queryUnit(node, 3, 1, UVC_SET_CUR, {3}).error, 0);
    EXPECT_EQ(cameras.command("get 3 1"), "00");
    EXPECT_EQ(queryUnit(node, 3, 1, UVC_SET_CUR, {3}).error, 0);
    EXPECT_EQ(cameras.command("get 3 1"), "03");
}

TEST(EmulatedControlTest, AnAbsurdLengthReachesTheDriver)
{
    EmulatedCameras const cameras({"vendor-old"}, {"1 length 3 1 5000"});
    UnitAnswer const length = queryUnit(cameras.videoNode(), 3, 1, UVC_GET_LEN, Bytes(2));
    EXPECT_EQ(toHex(length.data), "8813");
}

TEST(EmulatedControlTest, ACameraUnpluggedInARequestFailsIt)
{
    EmulatedCameras const cameras({"ordinary"});
    cameras.command("unplug control 1");
    CommandResult const set = runShell("v4l2-ctl -c brightness=5 -d " + cameras.videoNode());
    EXPECT_NE(set.output, "");
    EXPECT_TRUE(cameras.waitUntilGone());
    cameras.plug();
    EXPECT_EQ(runShell("v4l2-ctl -c brightness=5 -d " + cameras.videoNode()).output, "");
}
