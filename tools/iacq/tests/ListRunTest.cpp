// SPDX-License-Identifier: MIT
#include "ProgramRun.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace
{

using Json = nlohmann::json;
using testing::HasSubstr;

TEST(ListRunTest, NamesAnOrdinaryCameraAndOneOfTheVendors)
{
    ProgramRun const run = runIacq({"list", "--json"});
    ASSERT_EQ(run.status, 0) << run.errors;
    Json const cameras = Json::parse(run.output);
    ASSERT_EQ(cameras.size(), 2u);
    EXPECT_EQ(cameras[0].at("node"), "/dev/video0");
    EXPECT_EQ(cameras[0].at("vendorsOwn"), false);
    EXPECT_EQ(cameras[1].at("node"), "/dev/video2");
    EXPECT_EQ(cameras[1].at("vendorsOwn"), true);
    EXPECT_EQ(cameras[1].at("firmware"), "TJ8-1.2.4");
    EXPECT_EQ(cameras[1].at("usbSpeed"), "high");
}

/// A loopback device on video0, and cameras behind it.
Words const behindALoopback = {"--model", "platform", "--model", "webcam", "--model", "vendor"};

TEST(ListRunTest, LeavesOutANodeWithoutUsbDeviceAndSaysSo)
{
    ProgramRun const run = runIacq({"list", "--json"}, behindALoopback);
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.errors, "iacq: left out: /dev/video0 has no USB device behind it\n");
    Json const cameras = Json::parse(run.output);
    ASSERT_EQ(cameras.size(), 2u);
    EXPECT_EQ(cameras[0].at("index"), 0);
    EXPECT_EQ(cameras[0].at("node"), "/dev/video2");
    EXPECT_EQ(cameras[1].at("index"), 1);
    EXPECT_EQ(cameras[1].at("node"), "/dev/video4");
    EXPECT_THAT(runIacq({"list"}, behindALoopback).output,
                HasSubstr("\n1: Virtual Vendor Camera\n"));
}

TEST(ListRunTest, IsEmptyWithNothingButALoopback)
{
    ProgramRun const run = runIacq({"list", "--json"}, {"--model", "platform"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.output, "[]\n");
    EXPECT_EQ(run.errors, "iacq: left out: /dev/video0 has no USB device behind it\n");
}

TEST(ListRunTest, PrintsEveryFieldOfARecordAsJson)
{
    ScratchFolder const folder;
    ProgramRun const run =
        runIacq({"list", "--json"}, {"--config", folder.write("camera.json", R"({"cameras": [{
            "node": "/dev/video3", "name": "Lab \u001b[2J camera", "driver": "uvcvideo",
            "driverVersion": "6.1.76", "busInfo": "usb-0000:00:14.0-2",
            "capabilities": ["VIDEO_CAPTURE", "STREAMING", "DEVICE_CAPS"],
            "deviceCapabilities": ["VIDEO_CAPTURE", "STREAMING"],
            "usb": {"port": "1-2", "vendorId": "0abc", "productId": "0def", "serial": "S7",
                    "manufacturer": "Maker", "speed": "12"}}]})")});
    ASSERT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(Json::parse(run.output), Json::parse(R"([{
        "index": 0, "node": "/dev/video3", "name": "Lab \u001b[2J camera", "driver": "uvcvideo",
        "driverVersion": "6.1.76", "bus": "usb-0000:00:14.0-2", "vendorId": "0abc",
        "productId": "0def", "manufacturer": "Maker", "serial": "S7", "firmware": "",
        "vendorsOwn": false, "usbRevision": "2.00", "usbSpeed": "full",
        "supports": {"videoCapture": true, "multiplane": false, "streaming": true,
                     "readWrite": false, "asynchIO": false}}])"));
}

TEST(ListRunTest, IsEmptyWithoutCameras)
{
    ScratchFolder const folder;
    Words const none = {"--config", folder.write("camera.json", R"({"cameras": []})")};
    EXPECT_EQ(runIacq({"list"}, none).output, "No camera.\n");
    ProgramRun const run = runIacq({"list", "--json"}, none);
    EXPECT_EQ(run.output, "[]\n");
    EXPECT_EQ(run.status, 0);
}

} // namespace
