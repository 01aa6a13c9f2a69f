// SPDX-License-Identifier: MIT
#include "DeviceQueries.h"
#include "EmulatedCameras.h"

#include <gtest/gtest.h>

using namespace KernelTest;
using testing::Test;

namespace
{

std::string attribute(EmulatedCameras const& cameras, std::string const& name, unsigned camera = 1)
{
    return readFile(cameras.usbFolder(camera) + "/" + name);
}

bool shows(CommandResult const& result, std::string const& text)
{
    return result.output.find(text) != std::string::npos;
}

TEST(CameraIdentityTest, AnOrdinaryCameraIsDescribedAsChosen)
{
    EmulatedCameras const cameras({"ordinary,vendor=1234,product=5678,manufacturer=Some "
                                   "Maker,name=Some Camera,serial=SN42,usb=0210,release=0305"});
    EXPECT_EQ(attribute(cameras, "idVendor"), "1234");
    EXPECT_EQ(attribute(cameras, "idProduct"), "5678");
    EXPECT_EQ(attribute(cameras, "manufacturer"), "Some Maker");
    EXPECT_EQ(attribute(cameras, "product"), "Some Camera");
    EXPECT_EQ(attribute(cameras, "serial"), "SN42");
    EXPECT_EQ(attribute(cameras, "version"), " 2.10");
    EXPECT_EQ(attribute(cameras, "bcdDevice"), "0305");
    EXPECT_EQ(attribute(cameras, "speed"), "480");
    CommandResult const listed = runShell("lsusb -v -d 1234:5678");
    EXPECT_EQ(listed.status, 0);
    EXPECT_TRUE(shows(listed, "iSerial                 3 SN42")) << listed.output;
    EXPECT_TRUE(shows(listed, "bcdUSB               2.10")) << listed.output;
    EXPECT_FALSE(shows(listed, "EXTENSION_UNIT"));
    EXPECT_EQ(cameras.serialNode(), "");
}

TEST(CameraIdentityTest, AMissingStringIsNoAttribute)
{
    EmulatedCameras const cameras({"ordinary,serial=,manufacturer="});
    EXPECT_EQ(runShell("test -e " + cameras.usbFolder() + "/serial").status, 1);
    EXPECT_EQ(runShell("test -e " + cameras.usbFolder() + "/manufacturer").status, 1);
    EXPECT_EQ(attribute(cameras, "product"), "Ordinary Camera");
}

TEST(CameraIdentityTest, EveryLinkSpeedIsTakenByTheKernel)
{
    for (auto const& [name, speed] :
         {std::pair{"full", "12"}, std::pair{"high", "480"}, std::pair{"super", "5000"}}) {
        EmulatedCameras const cameras({std::string("vendor-new,speed=") + name});
        EXPECT_EQ(attribute(cameras, "speed"), speed);
        EXPECT_NE(cameras.videoNode(), "") << name;
        EXPECT_NE(cameras.serialNode(), "") << name;
    }
}

TEST(CameraIdentityTest, TheExtensionUnitHasTheVendorsGuidAndSelectors)
{
    EmulatedCameras const cameras({"vendor-old"});
    CommandResult const listed = runShell("lsusb -v -d " + attribute(cameras, "idVendor") + ":" +
                                          attribute(cameras, "idProduct"));
    EXPECT_TRUE(shows(listed, "{00000001-0000-0000-0000-000000000000}")) << listed.output;
    EXPECT_TRUE(shows(listed, "bNumControls           21"));
    EXPECT_EQ(cameras.serialNode(), "");
}

TEST(CameraIdentityTest, TheSerialPortIsAnnouncedForInterfaceFive)
{
    EmulatedCameras const cameras({"vendor-new"});
    std::string const line = lastKernelLine("USB ACM device");
    EXPECT_NE(line.find("cdc_acm 1-1:1.5: ttyACM0: USB ACM device"), std::string::npos) << line;
    EXPECT_EQ(cameras.serialNode(), "/dev/ttyACM0");
}

TEST(CameraIdentityTest, TheFirmwareTextIsAnsweredToAVendorRequest)
{
    EmulatedCameras const cameras({"vendor-old,firmware=TJ8-1.2.3"});
    UsbAnswer const answer = requestVendor(USBCAMERA_VENDOR_ID, USBCAMERA_PRODUCT_ID, 0xb0, 32);
    EXPECT_EQ(answer.result, 10);
    EXPECT_STREQ(answer.text.c_str(), "TJ8-1.2.3");
}

TEST(CameraIdentityTest, AFirmwareReplyCanBeAnyBytes)
{
    EmulatedCameras const cameras({"vendor-old,firmware-bytes=544a38"});
    EXPECT_EQ(requestVendor(USBCAMERA_VENDOR_ID, USBCAMERA_PRODUCT_ID, 0xb0, 32).text, "TJ8");
    cameras.command("stall vendor");
    EXPECT_LT(requestVendor(USBCAMERA_VENDOR_ID, USBCAMERA_PRODUCT_ID, 0xb0, 32).result, 0);
    EXPECT_EQ(requestVendor(USBCAMERA_VENDOR_ID, USBCAMERA_PRODUCT_ID, 0xb0, 32).result, 3);
}

TEST(CameraIdentityTest, AnOrdinaryCameraRefusesVendorRequests)
{
    EmulatedCameras const cameras({"ordinary"});
    EXPECT_LT(requestVendor(0x1d6b, 0x0102, 0xb0, 32).result, 0);
}

TEST(CameraIdentityTest, SeveralCamerasHaveNodesOfTheirOwn)
{
    EmulatedCameras const cameras(
        {"vendor-new,serial=A", "vendor-new,serial=B", "ordinary", "vendor-new,controller=1"});
    EXPECT_EQ(cameras.usbFolder(1), "/sys/bus/usb/devices/1-1");
    EXPECT_EQ(cameras.usbFolder(2), "/sys/bus/usb/devices/1-2");
    EXPECT_EQ(cameras.usbFolder(3), "/sys/bus/usb/devices/1-3");
    EXPECT_EQ(cameras.usbFolder(4), "/sys/bus/usb/devices/3-1");
    EXPECT_EQ(attribute(cameras, "serial", 2), "B");
    EXPECT_NE(cameras.videoNode(1), cameras.videoNode(2));
    EXPECT_NE(cameras.serialNode(1), cameras.serialNode(2));
    EXPECT_NE(cameras.serialNode(1), cameras.serialNode(4));
}

TEST(CameraIdentityTest, AResetRequestMakesTheCameraLeaveAndComeBack)
{
    EmulatedCameras const cameras({"vendor-new,reset-delay=100"});
    cameras.command("set 3 2 0700");
    UsbAnswer const answer = requestVendor(USBCAMERA_VENDOR_ID, USBCAMERA_PRODUCT_ID, 0xe0, 16);
    EXPECT_GE(answer.result, 0);
    EXPECT_TRUE(waitFor([&] { return cameras.status()["plugs"] == 2; }));
    EXPECT_TRUE(cameras.waitUntilReady());
    EXPECT_EQ(cameras.command("get 3 2"), "f401");
    EXPECT_EQ(requestVendor(USBCAMERA_VENDOR_ID, USBCAMERA_PRODUCT_ID, 0xb0, 32).result, 10);
}

} // namespace
