// SPDX-License-Identifier: MIT
#include "Client.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace
{

using namespace VirtualCamera;

CameraScript only(std::string const& camera)
{
    return camerasFromJson("{\"cameras\": [" + camera + "]}").at(0);
}

std::string complaintOf(std::string const& text)
{
    try {
        camerasFromJson(text);
    } catch (std::runtime_error const& failure) {
        return failure.what();
    }
    return "none";
}

TEST(JsonTest, TakesDefaultsForWhatIsMissing)
{
    CameraScript const camera = only("{}");
    CameraScript const usual;
    EXPECT_EQ(camera.node, usual.node);
    EXPECT_EQ(camera.card, usual.card);
    EXPECT_TRUE(camera.mmapOffered);
    EXPECT_FALSE(camera.currentInterval);
    EXPECT_FALSE(camera.extensionUnit);
}

TEST(JsonTest, ReadsACamera)
{
    CameraScript const camera = only(R"({
        "node": "/dev/video4", "name": "From JSON", "driverVersion": "5.10.7",
        "capabilities": ["VIDEO_CAPTURE", "DEVICE_CAPS"], "deviceCapabilities": ["META_CAPTURE"],
        "formats": [{"pixelFormat": "YUYV", "flags": ["emulated"],
                     "sizes": [{"width": 640, "height": 480, "intervals": ["1/30", "2/15"]}]},
                    {"pixelFormat": "GREY", "sizeKind": "stepwise",
                     "sizeRange": {"maximumWidth": 99, "intervalKind": "continuous",
                                   "minimumInterval": "1/60", "maximumInterval": "1/1"}}],
        "currentInterval": "1/7",
        "controls": [{"type": "menu", "id": "0x00980918", "name": "Power", "default": 2,
                      "items": [{"index": 0, "label": "Off"}, {"index": 2, "label": "On"}]},
                     {"type": "boolean", "id": 9963788, "name": "White", "flags": ["grabbed"]}],
        "classHeadings": true,
        "extensionUnit": {"guid": "01000000000000000000000000000000",
                          "selectors": [{"selector": 3, "size": 2, "current": "0a0b"}]},
        "mmap": false, "userPointers": true, "mostBuffers": 0, "pace": "immediate",
        "faults": [{"call": "VIDIOC_DQBUF", "errno": "EIO", "use": 3}],
        "frameFaults": [{"frame": 2, "corrupted": true, "bytesUsed": 5,
                         "claimedBytes": 4294967295}],
        "usb": {"port": "1-1"}})");
    EXPECT_EQ(camera.node, "/dev/video4");
    EXPECT_EQ(camera.driverVersion, 0x050a07u);
    EXPECT_EQ(camera.capabilities, V4L2_CAP_VIDEO_CAPTURE | V4L2_CAP_DEVICE_CAPS);
    EXPECT_EQ(camera.formats.at(0).flags, static_cast<unsigned>(V4L2_FMT_FLAG_EMULATED));
    EXPECT_TRUE((camera.formats[0].sizes.at(0).intervals.list.at(1) == Interval{2, 15}));
    EXPECT_EQ(camera.formats.at(1).sizeRange.maximumWidth, 99u);
    EXPECT_TRUE(camera.formats[1].sizeRange.intervals.kind == RangeKind::Continuous);
    EXPECT_TRUE((*camera.currentInterval == Interval{1, 7}));
    EXPECT_EQ(camera.controls.at(0).maximum, 2);
    EXPECT_EQ(camera.controls.at(0).defaultValue, 2);
    EXPECT_EQ(camera.controls.at(1).flags, static_cast<unsigned>(V4L2_CTRL_FLAG_GRABBED));
    EXPECT_EQ(camera.controls.at(1).maximum, 1);
    EXPECT_EQ(camera.controls.at(2).id, static_cast<unsigned>(V4L2_CID_USER_CLASS));
    EXPECT_EQ(camera.extensionUnit->selectors.at(0).current.at(1), 0x0b);
    EXPECT_EQ(camera.mostBuffers, 0u);
    EXPECT_EQ(camera.faults.at(0).error, EIO);
    EXPECT_EQ(camera.frameFaults.at(0).bytesUsed, 5u);
    EXPECT_EQ(camera.frameFaults.at(0).claimedBytes, UINT32_MAX);
}

TEST(JsonTest, GivesCamerasWithoutANodeTheNextFreeOne)
{
    auto const cameras = camerasFromJson(
        R"({"cameras": [{}, {"node": "/dev/video1"}, {}, {"node": "/dev/video3"}, {}]})");
    ASSERT_EQ(cameras.size(), 5u);
    EXPECT_EQ(cameras[0].node, "/dev/video0");
    EXPECT_EQ(cameras[1].node, "/dev/video1");
    EXPECT_EQ(cameras[2].node, "/dev/video2");
    EXPECT_EQ(cameras[3].node, "/dev/video3");
    EXPECT_EQ(cameras[4].node, "/dev/video4");
}

TEST(JsonTest, LeavesANodeToTheCameraThatNamesIt)
{
    auto const cameras = camerasFromJson(R"({"cameras": [{}, {"node": "/dev/video0"}]})");
    EXPECT_EQ(cameras.at(0).node, "/dev/video1");
    EXPECT_EQ(cameras.at(1).node, "/dev/video0");
}

TEST(JsonTest, RefusesTwoCamerasOnOneNode)
{
    EXPECT_EQ(complaintOf(R"({"cameras": [{}, {"node": "/dev/a"}, {"node": "/dev/a"}]})"),
              "configuration.cameras[2].node: /dev/a is taken by cameras[1]");
}

TEST(JsonTest, WritesWhatItReads)
{
    CameraBuilder builder = smallCamera();
    builder
        .withControl(stringControl(V4L2_CID_USER_BASE | 0x1000, "Text").range(1, 5).currently("x"))
        .withControl(
            integerMenuControl(V4L2_CID_USER_BASE | 0x1001, "Menu").withItem(1, std::int64_t{4}))
        .withExtensionUnit({1}, {SelectorScript{}})
        .currentlyEvery(1, 9)
        .withFormat("GREY")
        .withContinuousSizes(1, 2, 3, 4)
        .failing(Call::Mmap, ENOMEM, 2)
        .withoutFrames(7)
        .withOverstatedFrame(8, 9);
    std::string const text = camerasToJson({builder.script()});
    EXPECT_EQ(camerasToJson(camerasFromJson(text)), text);
    CameraScript const again = camerasFromJson(text).at(0);
    EXPECT_EQ(again.controls.at(0).text, "x");
    EXPECT_EQ(again.frameFaults.at(0).frame, 7u);
    EXPECT_EQ(again.frameFaults.at(1).claimedBytes, 9u);
    EXPECT_TRUE(again.pace == Pace::Immediate);
}

TEST(JsonTest, SaysWhereItDoesNotUnderstand)
{
    EXPECT_NE(complaintOf("{").find("parse error"), std::string::npos);
    EXPECT_EQ(complaintOf(R"({"cameras": [{"nodes": "x"}]})"),
              "configuration.cameras[0].nodes: unknown key");
    EXPECT_EQ(complaintOf(R"({"cameras": [{"formats": [{"pixelFormat": "TOOLONG"}]}]})"),
              "configuration.cameras[0].formats[0].pixelFormat: a pixel format has four "
              "characters, unlike \"TOOLONG\"");
    EXPECT_EQ(complaintOf(R"({"cameras": [{"controls": [{"type": "menu", "id": 1}]}]})"),
              "configuration.cameras[0].controls[0]: \"name\" is missing");
    EXPECT_EQ(complaintOf(R"({"cameras": [{"faults": [{"call": "read"}]}]})"),
              "configuration.cameras[0].faults[0]: \"errno\" is missing");
    EXPECT_EQ(complaintOf(R"({"cameras": [{"faults": [{"errno": "EWHAT"}]}]})"),
              "configuration.cameras[0].faults[0].errno: \"EWHAT\" is no errno name");
    EXPECT_NE(complaintOf(R"({"cameras": [{"mmap": 3}]})").find("configuration.cameras[0].mmap: "),
              std::string::npos);
}

} // namespace
