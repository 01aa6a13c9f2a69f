// SPDX-License-Identifier: MIT
#include "DeviceQueries.h"
#include "EmulatedCameras.h"
#include "SerialClient.h"

#include <cerrno>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/videodev2.h>
#include <sys/ioctl.h>
#include <unistd.h>

using namespace KernelTest;
using UsbCamera::Bytes;
using UsbCamera::fromHex;
using UsbCamera::toHex;

TEST(CameraControl, AValueSetThroughTheDriverArrivesInTheCamera)
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

TEST(CameraControl, AValueChangedInTheCameraIsRead)
{
    EmulatedCameras const cameras({"ordinary"});
    cameras.command("set 2 3 2a00");
    CommandResult const read = runShell("v4l2-ctl -C contrast -d " + cameras.videoNode());
    EXPECT_EQ(read.output, "contrast: 42\n");
}

TEST(CameraControl, EverySelectorOfTheExtensionUnitAnswers)
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

TEST(CameraControl, AnExtensionUnitControlCanBeMappedAndWritten)
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

TEST(CameraControl, AStalledRequestIsRefusedByTheDriver)
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

TEST(CameraControl, AnAbsurdLengthReachesTheDriver)
{
    EmulatedCameras const cameras({"vendor-old"}, {"1 length 3 1 5000"});
    UnitAnswer const length = queryUnit(cameras.videoNode(), 3, 1, UVC_GET_LEN, Bytes(2));
    EXPECT_EQ(toHex(length.data), "8813");
}

TEST(CameraControl, ACameraUnpluggedInARequestFailsIt)
{
    EmulatedCameras const cameras({"ordinary"});
    cameras.command("unplug control 1");
    CommandResult const set = runShell("v4l2-ctl -c brightness=5 -d " + cameras.videoNode());
    EXPECT_NE(set.output, "");
    EXPECT_TRUE(cameras.waitUntilGone());
    cameras.plug();
    EXPECT_EQ(runShell("v4l2-ctl -c brightness=5 -d " + cameras.videoNode()).output, "");
}

TEST(CameraSerialPort, ExecutesPacketsOnTheSameControls)
{
    EmulatedCameras const cameras({"vendor-new"});
    SerialClient const port(cameras.serialNode());
    // GET_LEN, GET_INFO, GET_MAX and GET_CUR of the focus of the camera terminal.
    EXPECT_EQ(toHex(port.exchange("a185000600010200", 10)), "a1850006000102000200");
    EXPECT_EQ(toHex(port.exchange("a186000600010100", 9)), "a18600060001010003");
    EXPECT_EQ(toHex(port.exchange("a183000600010200", 10)), "a183000600010200ff03");
    EXPECT_EQ(toHex(port.exchange("a181000600010200", 10)), "a181000600010200c800");
    // SET_CUR of the focus windows of the extension unit.
    EXPECT_EQ(toHex(port.exchange("21010014000308000100020003000400", 16)),
              "21010014000308000100020003000400");
    EXPECT_EQ(cameras.command("get 3 20"), "0100020003000400");
    EXPECT_EQ(toHex(queryUnit(cameras.videoNode(), 3, 20, UVC_GET_CUR, Bytes(8)).data),
              "0100020003000400");
}

TEST(CameraSerialPort, LogsWhatItWasSent)
{
    EmulatedCameras const cameras({"vendor-new"});
    SerialClient const port(cameras.serialNode());
    cameras.mark();
    port.exchange("210100010003010003", 9);
    auto const written = cameras.requests("SET_CUR");
    ASSERT_EQ(written.size(), 1U);
    EXPECT_EQ(written[0]["kind"], "serial");
    EXPECT_EQ(written[0]["packet"], "210100010003010003");
    EXPECT_EQ(written[0]["reply"], "210100010003010003");
    EXPECT_EQ(written[0]["refused"], false);
}

TEST(CameraSerialPort, DoesNotAnswerWhatItCannotExecute)
{
    EmulatedCameras const cameras({"vendor-new"});
    SerialClient const port(cameras.serialNode());
    port.write(fromHex("a181001300030100"));
    EXPECT_TRUE(port.read(1, 300).empty());
    EXPECT_EQ(toHex(port.exchange("a181000100030100", 9)), "a18100010003010000");
}

TEST(CameraSerialPort, CanBeSilentSlowSplitAndShort)
{
    EmulatedCameras const cameras({"vendor-new"}, {"1 serial silent"});
    SerialClient const port(cameras.serialNode());
    Bytes const packet = fromHex("a181000100030100");
    port.write(packet);
    EXPECT_TRUE(port.read(1, 300).empty());
    cameras.command("serial slow 600");
    port.write(packet);
    EXPECT_TRUE(port.read(1, 300).empty());
    EXPECT_EQ(port.read(9).size(), 9U);
    cameras.command("serial split 600");
    port.write(packet);
    EXPECT_EQ(port.read(9, 300).size(), 4U);
    EXPECT_EQ(port.read(5).size(), 5U);
    cameras.command("serial short 6");
    port.write(packet);
    EXPECT_EQ(port.read(9, 300).size(), 6U);
    cameras.command("serial normal");
    port.write(packet);
    EXPECT_EQ(port.read(9).size(), 9U);
}

TEST(CameraSerialPort, ACameraUnpluggedInAnExchangeTakesItsTerminalAway)
{
    EmulatedCameras const cameras({"vendor-new"});
    SerialClient const port(cameras.serialNode());
    cameras.command("unplug serial 2");
    EXPECT_EQ(port.exchange("a181000100030100", 9).size(), 9U);
    EXPECT_TRUE(port.exchange("a181000100030100", 9).empty());
    EXPECT_TRUE(cameras.waitUntilGone());
}
