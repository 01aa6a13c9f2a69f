// SPDX-License-Identifier: MIT
#include "DeviceQueries.h"
#include "EmulatedCameras.h"
#include "LibraryCamera.h"
#include "SystemRecord.h"
#include "Tool.h"

#include <ICameraFactory.h>

#include <gtest/gtest.h>

#include <filesystem>

using namespace ImageAcquisition;
using namespace KernelTest;
using Json = nlohmann::json;

namespace
{

std::string firmwareAnswer()
{
    return requestVendor(USBCAMERA_VENDOR_ID, USBCAMERA_PRODUCT_ID, 0xb0, 32).text.c_str();
}

std::string printedRevision(unsigned revision)
{
    char text[16];
    std::snprintf(text, sizeof text, "%x.%02x", revision >> 8U, revision & 0xffU);
    return text;
}

void expectPrinted(Json const& printed, IDevice const& record)
{
    static char const* const speeds[] = {"unknown", "low", "full", "high", "super"};
    Json const wanted{{"index", record.index()},
                      {"node", record.systemName()},
                      {"name", record.name()},
                      {"driver", record.driverName()},
                      {"driverVersion", record.driverVersion()},
                      {"bus", record.busInfo()},
                      {"vendorId", record.vendorId()},
                      {"productId", record.productId()},
                      {"manufacturer", record.manufacturer()},
                      {"serial", record.serial()},
                      {"firmware", record.firmwareVersion()},
                      {"vendorsOwn", record.isaZorvaneDevice()},
                      {"usbRevision", printedRevision(record.usbRevision())},
                      {"usbSpeed", speeds[record.usbSpeed()]},
                      {"supports",
                       {{"videoCapture", record.supportsVideoCapture()},
                        {"multiplane", record.supportsMultiplane()},
                        {"streaming", record.supportsStreaming()},
                        {"readWrite", record.supportsReadWrite()},
                        {"asynchIO", record.supportsAsynchIO()}}}};
    EXPECT_EQ(printed, wanted);
}

/// Compares the whole list with the system and with what iacq prints. Returns the cameras' records.
std::vector<IDevice const*> expectList(IDeviceList const& list, EmulatedCameras const& cameras,
                                       unsigned count)
{
    Json const printed = readTool("list --json");
    EXPECT_EQ(printed.size(), count);
    EXPECT_EQ(list.size(), static_cast<int>(count));
    std::vector<IDevice const*> records;
    for (unsigned camera = 1; camera <= count; ++camera) {
        SCOPED_TRACE(camera);
        // Cameras that are plugged in together get their nodes in any order.
        IDevice const* const record = recordOf(list, cameras.videoNode(camera));
        if (record == nullptr) {
            throw std::runtime_error("a camera is not in the list");
        }
        EXPECT_EQ(list.at(record->index()), record);
        expectAsTheSystemSays(*record, cameras.videoNode(camera));
        expectPrinted(printed.at(static_cast<std::size_t>(record->index())), *record);
        records.push_back(record);
    }
    return records;
}

std::size_t countVideoNodes()
{
    std::filesystem::directory_iterator const nodes("/sys/class/video4linux");
    return static_cast<std::size_t>(std::distance(begin(nodes), end(nodes)));
}

TEST(RecordTest, OfAnOrdinaryAndAnOldVendorCameraAreWhatTheSystemSays)
{
    EmulatedCameras const cameras(
        {"ordinary,serial=SN 42,manufacturer=Some Maker,name=Some Camera", "vendor-old"});
    ListPointer const list = listDevices();
    auto const records = expectList(*list, cameras, 2);
    EXPECT_STREQ(records[0]->name(), "Some Camera");
    EXPECT_STREQ(records[0]->manufacturer(), "Some Maker");
    EXPECT_STREQ(records[0]->serial(), "SN 42");
    EXPECT_STREQ(records[0]->firmwareVersion(), "");
    EXPECT_FALSE(records[0]->isaZorvaneDevice());
    EXPECT_TRUE(records[1]->isaZorvaneDevice());
    EXPECT_EQ(records[1]->firmwareVersion(), firmwareAnswer());
    EXPECT_STREQ(records[1]->firmwareVersion(), "TJ8-1.2.9");
    EXPECT_EQ(list->deviceByName("Vendor Camera"), records[1]);
    EXPECT_EQ(list->deviceByName(records[1]->systemName()), nullptr);
}

TEST(RecordTest, LeaveOutTheNodesForMetadata)
{
    EmulatedCameras const cameras({"ordinary", "ordinary,product=0103"});
    ASSERT_EQ(countVideoNodes(), 4U);
    EXPECT_EQ(listDevices()->size(), 2);
    auto const& factory = ICameraFactory::getUniqueInstance();
    for (char const* const node : {"video0", "video1", "video2", "video3"}) {
        std::unique_ptr<IDevice> const record(factory.createDevice(node));
        bool const captures =
            readFile(std::string("/sys/class/video4linux/") + node + "/index") == "0";
        ASSERT_EQ(record != nullptr, captures) << node;
        EXPECT_EQ(runTool(std::string("show ") + node).status, captures ? 0 : 3) << node;
        if (captures) {
            EXPECT_EQ(record->index(), 0);
            expectAsTheSystemSays(*record, std::string("/dev/") + node);
        }
    }
}

TEST(RecordTest, OfANewVendorCameraAndOfOneWithoutTextsAreWhatTheSystemSays)
{
    EmulatedCameras const cameras({"vendor-new", "ordinary,serial=,manufacturer="});
    ListPointer const list = listDevices();
    auto const records = expectList(*list, cameras, 2);
    EXPECT_TRUE(records[0]->isaZorvaneDevice());
    EXPECT_EQ(records[0]->firmwareVersion(), firmwareAnswer());
    EXPECT_STREQ(records[0]->firmwareVersion(), "TJ8-1.3.0");
    EXPECT_STREQ(records[1]->serial(), "");
    EXPECT_STREQ(records[1]->manufacturer(), "");
}

TEST(RecordTest, TellTheSpeedAndRevisionOfEveryLink)
{
    EmulatedCameras const cameras({"ordinary,vendor=1234,product=0001,speed=full,usb=0110",
                                   "ordinary,vendor=1234,product=0002,speed=high,usb=0210",
                                   "ordinary,vendor=1234,product=0003,speed=super"});
    ListPointer const list = listDevices();
    auto const records = expectList(*list, cameras, 3);
    EXPECT_EQ(records[0]->usbSpeed(), UsbSpeedFull);
    EXPECT_EQ(records[0]->usbRevision(), 0x0110);
    EXPECT_EQ(records[1]->usbSpeed(), UsbSpeedHigh);
    EXPECT_EQ(records[1]->usbRevision(), 0x0210);
    EXPECT_EQ(records[2]->usbSpeed(), UsbSpeedSuper);
    EXPECT_EQ(records[2]->usbRevision(), 0x0300);
}

TEST(RecordTest, OfAMachineWithoutCamerasAreNone)
{
    EXPECT_EQ(listDevices()->size(), 0);
    EXPECT_EQ(runTool("list").output, "No camera.\n");
    EXPECT_EQ(readTool("list --json"), Json::array());
}

} // namespace
