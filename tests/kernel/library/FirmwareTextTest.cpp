// SPDX-License-Identifier: MIT
#include "DeviceQueries.h"
#include "EmulatedCameras.h"
#include "LibraryCamera.h"
#include "Tool.h"

#include <ICameraControl.h>
#include <ICameraFactory.h>

#include <gtest/gtest.h>

using namespace ImageAcquisition;
using namespace KernelTest;

namespace
{

std::unique_ptr<IDevice> describe(std::string const& node)
{
    std::string const name = node.substr(node.rfind('/') + 1);
    return std::unique_ptr<IDevice>(ICameraFactory::getUniqueInstance().createDevice(name.c_str()));
}

struct Reply
{
    char const* bytes; ///< in hexadecimal
    std::string text;  ///< what the record makes of them
};

// libusb finds a device by its ids and lists the last of a bus first, which then answers for all:
// as each is unplugged, the one before it is asked.
TEST(FirmwareTextTest, IsWhatTheCameraSendsUpToAZeroWhenItIsFourBytesOrMore)
{
    std::vector<Reply> const replies{
        {"", ""},
        {"544a38", ""},
        {"544a382d", "TJ8-"},
        {"544a382d312e322e3900ff41", "TJ8-1.2.9"},
        {"00414243", ""},
        {"ff0a807f", "\xff\x0a\x80\x7f"},
        {"4141414141414141414141414141414141414141414141414141414141414141", std::string(32, 'A')},
        {"42424242424242424242424242424242424242424242424242424242424242424242",
         std::string(32, 'B')},
    };
    EmulatedCameras::Texts models;
    for (Reply const& reply : replies) {
        models.push_back(std::string("vendor-old,firmware-bytes=") + reply.bytes);
    }
    EmulatedCameras const cameras(models);
    std::string const first = cameras.videoNode(1);
    for (auto camera = static_cast<unsigned>(replies.size()); camera > 0; --camera) {
        Reply const& reply = replies[camera - 1];
        auto const record = describe(first);
        ASSERT_NE(record, nullptr) << reply.bytes;
        EXPECT_EQ(record->firmwareVersion(), reply.text) << reply.bytes;
        cameras.command("unplug", camera);
        ASSERT_TRUE(cameras.waitUntilGone(camera));
    }
}

TEST(FirmwareTextTest, OfACameraThatRefusesTheRequestIsEmpty)
{
    EmulatedCameras const cameras({"vendor-new"}, {"1 stall vendor"});
    std::unique_ptr<IDevice> const refused = describe(cameras.videoNode());
    EXPECT_STREQ(refused->firmwareVersion(), "");
    EXPECT_TRUE(refused->isaZorvaneDevice());
    EXPECT_STREQ(describe(cameras.videoNode())->firmwareVersion(), "TJ8-1.3.0");
}

TEST(FirmwareTextTest, OfAnyBytesIsPrintedAsValidJson)
{
    EmulatedCameras const cameras({"vendor-old,firmware-bytes=41ff0742"});
    EXPECT_EQ(readTool("list --json").at(0).at("firmware"), "A\xef\xbf\xbd\aB");
}

TEST(FirmwareTextTest, OfCamerasWithTheSameIdsIsThatOfTheOneThatLibusbListsFirst)
{
    EmulatedCameras const cameras({"vendor-new,serial=NEW", "vendor-old,serial=OLD"});
    std::string const answer =
        requestVendor(USBCAMERA_VENDOR_ID, USBCAMERA_PRODUCT_ID, 0xb0, 32).text.c_str();
    EXPECT_EQ(answer, "TJ8-1.2.9");
    ListPointer const list = listDevices();
    ASSERT_EQ(list->size(), 2);
    EXPECT_STRNE(list->at(0)->serial(), list->at(1)->serial());
    EXPECT_EQ(list->at(0)->firmwareVersion(), answer);
    EXPECT_EQ(list->at(1)->firmwareVersion(), answer);
    // So the new camera is opened as if it were an old one.
    CameraPointer const camera = openListed(cameras.videoNode(1));
    ASSERT_NE(camera, nullptr);
    EXPECT_STREQ(camera->device()->serial(), "NEW");
    EXPECT_EQ(camera->lightModeControl()->id(), 0x08000000U);

    cameras.command("unplug", 2);
    ASSERT_TRUE(cameras.waitUntilGone(2));
    EXPECT_STREQ(listDevices()->at(0)->firmwareVersion(), "TJ8-1.3.0");
}

TEST(FirmwareTextTest, OfANewCameraMakesAnOldOneWithTheSameIdsUnusable)
{
    // A line of a camera that had the port before would be taken for this one's.
    ASSERT_EQ(runShell("dmesg --clear").status, 0);
    EmulatedCameras const cameras({"vendor-old,serial=OLD", "vendor-new,serial=NEW"});
    EXPECT_STREQ(listDevices()->at(0)->firmwareVersion(), "TJ8-1.3.0");
    EXPECT_STREQ(listDevices()->at(1)->firmwareVersion(), "TJ8-1.3.0");
    // The old one has no serial port: its opening fails, and resets the one that libusb lists
    // first.
    EXPECT_EQ(openListed(cameras.videoNode(1)), nullptr);
    EXPECT_TRUE(waitFor([&] { return cameras.status(2)["plugs"] == 2; }));
    EXPECT_TRUE(cameras.waitUntilReady(2));
    EXPECT_EQ(cameras.status(1)["plugs"], 1);
}

} // namespace
