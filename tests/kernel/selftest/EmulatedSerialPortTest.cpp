// SPDX-License-Identifier: MIT
#include "DeviceQueries.h"
#include "EmulatedCameras.h"
#include "SerialClient.h"

#include <gtest/gtest.h>

using namespace KernelTest;
using UsbCamera::Bytes;
using UsbCamera::fromHex;
using UsbCamera::toHex;

TEST(EmulatedSerialPortTest, ExecutesPacketsOnTheSameControls)
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

TEST(EmulatedSerialPortTest, LogsWhatItWasSent)
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

TEST(EmulatedSerialPortTest, DoesNotAnswerWhatItCannotExecute)
{
    EmulatedCameras const cameras({"vendor-new"});
    SerialClient const port(cameras.serialNode());
    port.write(fromHex("a181001300030100"));
    EXPECT_TRUE(port.read(1, 300).empty());
    EXPECT_EQ(toHex(port.exchange("a181000100030100", 9)), "a18100010003010000");
}

TEST(EmulatedSerialPortTest, CanBeSilentSlowSplitAndShort)
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

TEST(EmulatedSerialPortTest, ACameraUnpluggedInAnExchangeTakesItsTerminalAway)
{
    EmulatedCameras const cameras({"vendor-new"});
    SerialClient const port(cameras.serialNode());
    cameras.command("unplug serial 2");
    EXPECT_EQ(port.exchange("a181000100030100", 9).size(), 9U);
    EXPECT_TRUE(port.exchange("a181000100030100", 9).empty());
    EXPECT_TRUE(cameras.waitUntilGone());
}
