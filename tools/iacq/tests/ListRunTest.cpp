// SPDX-License-Identifier: MIT
#include "ProgramRun.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <set>

namespace
{

using Json = nlohmann::json;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

TEST(ListCommand, NamesAnOrdinaryCameraAndOneOfTheVendors)
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

TEST(ListCommand, LeavesOutANodeWithoutUsbDeviceAndSaysSo)
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

TEST(ListCommand, IsEmptyWithNothingButALoopback)
{
    ProgramRun const run = runIacq({"list", "--json"}, {"--model", "platform"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.output, "[]\n");
    EXPECT_EQ(run.errors, "iacq: left out: /dev/video0 has no USB device behind it\n");
}

TEST(ShowCommand, FindsCamerasBehindALoopbackByIndexAndSerialNumber)
{
    ProgramRun run = runIacq({"show", "1", "--json"}, behindALoopback);
    ASSERT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(run.errors, "");
    Json const camera = Json::parse(run.output);
    EXPECT_EQ(camera.at("index"), 1);
    EXPECT_EQ(camera.at("node"), "/dev/video4");
    run = runIacq({"show", camera.at("serial"), "--json"}, behindALoopback);
    ASSERT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(Json::parse(run.output).at("node"), "/dev/video4");
}

TEST(ShowCommand, SaysThatALoopbackIsNoneOfTheCameras)
{
    ProgramRun run = runIacq({"show", "2"}, behindALoopback);
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.errors, "iacq: no camera '2' among the 2 there are (left out: /dev/video0 has no "
                          "USB device behind it); give an index, a node or a serial number\n");
    run = runIacq({"show", "video0"}, behindALoopback);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.errors, "iacq: /dev/video0 has no USB device behind it\n");
}

TEST(ShowCommand, StillFindsACameraByNodeBesideOneWithoutUsbDevice)
{
    ProgramRun const run =
        runIacq({"show", "video0"}, {"--model", "webcam", "--model", "platform"});
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_THAT(run.output, HasSubstr("    Node: /dev/video0\n"));
}

TEST(ShowCommand, TakesAnIndexANodeAndASerialNumber)
{
    std::string const byIndex = runIacq({"show", "1", "--json"}).output;
    Json const camera = Json::parse(byIndex);
    EXPECT_EQ(runIacq({"show", "/dev/video2", "--json"}).status, 0);
    Json const bySerial = Json::parse(runIacq({"show", camera.at("serial"), "--json"}).output);
    EXPECT_EQ(bySerial.at("node"), camera.at("node"));
}

TEST(ShowCommand, ListsFormatsAndWhatIsSet)
{
    Json const camera = Json::parse(runIacq({"show", "0", "--json"}).output);
    ASSERT_FALSE(camera.at("formats").empty());
    EXPECT_EQ(camera.at("formats")[0].at("name"), "YUYV");
    EXPECT_EQ(camera.at("formats")[0].at("sizes")[0].at("width"), 640);
    EXPECT_EQ(camera.at("formats")[0].at("sizes")[0].at("intervals")[0].at("denominator"), 30);
    EXPECT_EQ(camera.at("current").at("format"), "YUYV");
    EXPECT_EQ(camera.at("current").at("size").at("height"), 480);
}

TEST(ShowCommand, ShowsAControlOfEveryType)
{
    Json const camera =
        Json::parse(runIacq({"show", "0", "--json"}, {"--model", "all-controls"}).output);
    std::set<std::string> types;
    for (Json const& control : camera.at("controls")) {
        types.insert(control.at("type"));
        EXPECT_TRUE(control.contains("value")) << control;
        EXPECT_TRUE(control.at("flags").is_array()) << control;
    }
    EXPECT_THAT(types,
                testing::IsSupersetOf({"Int32", "Int64", "Boolean", "Button", "BitMask",
                                       "StringMenu", "Int64Menu", "String", "UInt8", "UInt16"}));
}

TEST(ListCommand, PrintsEveryFieldOfARecordAsJson)
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

TEST(ListCommand, DoesNotLetACameraSteerTheTerminal)
{
    ScratchFolder const folder;
    ProgramRun const run =
        runIacq({"list"}, {"--config", folder.write("camera.json", R"({"cameras": [{
                              "node": "/dev/video0", "name": "Evil \u001b[2J",
                              "usb": {"port": "1-1"}}]})")});
    EXPECT_THAT(run.output, StartsWith("0: Evil ?[2J\n    node /dev/video0, driver uvcvideo"));
}

/// A camera in whose texts everything tries to make lines of its own or to steer the terminal.
Words const hostileCamera(ScratchFolder const& folder)
{
    return {"--config", folder.write("camera.json", R"({"cameras": [{
        "node": "/dev/video0", "name": "Evil\n1: Fake\u009b2J\u202e", "driver": "d\u007fd",
        "busInfo": "usb\u2028-1",
        "usb": {"port": "1-1", "serial": "S\n7", "manufacturer": "M\u200f"},
        "formats": [{"pixelFormat": "YU\nV", "description": "Y\u009bU",
                     "sizes": [{"width": 64, "height": 48}]}],
        "controls": [
            {"type": "menu", "id": "0x00980900", "name": "Me\nnu\u2066", "maximum": 1,
             "items": [{"index": 0, "label": "A\n9: B"}, {"index": 1, "label": "C\u0085"}]},
            {"type": "string", "id": "0x00980901", "name": "Te\rxt", "maximum": 20,
             "text": "v\n\u061cw"}]}]})")};
}

TEST(HostileTexts, StayInTheirLines)
{
    ScratchFolder const folder;
    Words const camera = hostileCamera(folder);
    EXPECT_EQ(runIacq({"list"}, camera).output,
              "0: Evil?1: Fake?2J?\n"
              "    node /dev/video0, driver d?d 6.1.0, bus usb?-1\n"
              "    USB 1d6b:0104, revision 2.00, speed high, manufacturer M?, serial S?7\n");
    EXPECT_EQ(runIacq({"get", "0", "me_nu", "te_xt"}, camera).output,
              "Me?nu?: 0 (A?9: B)\nTe?xt: v??w\n");
    ProgramRun const run = runIacq({"show", "0"}, camera);
    EXPECT_EQ(run.output.find_first_of("\r\x1b\x7f"), std::string::npos) << run.output;
    for (char const* const text : {"Evil?1: Fake?2J?\n", "    YU?V  Y?U\n", "current: YU?V 64x48",
                                   "\n        0: A?9: B\n        1: C?\n", "  value v??w  "}) {
        EXPECT_THAT(run.output, HasSubstr(text));
    }
}

TEST(HostileTexts, StayInTheLineOfAnError)
{
    ScratchFolder const folder;
    Words const camera = hostileCamera(folder);
    EXPECT_EQ(runIacq({"set", "0", "me_nu=2"}, camera).errors,
              "iacq: Me?nu? was not set: no such item: '2'\n");
    EXPECT_EQ(runIacq({"show", "x\ny\xc2\x9bz"}, camera).errors,
              "iacq: no camera 'x?y?z' among the 1 there are; give an index, a node or a serial "
              "number\n");
    EXPECT_EQ(runIacq({"capture", "0", "-o", "a.raw", "--format", "ABCD"}, camera).errors,
              "iacq: the camera has no format 'ABCD'; it has YU?V\n");
}

TEST(HostileTexts, AreKeptInJsonEscaped)
{
    ScratchFolder const folder;
    Words const camera = hostileCamera(folder);
    ProgramRun const run = runIacq({"list", "--json"}, camera);
    EXPECT_EQ(Json::parse(run.output)[0].at("name"), "Evil\n1: Fake\u009b2J\u202e");
    EXPECT_THAT(run.output, HasSubstr("Evil\\n1: Fake\\u009b2J\\u202e"));
    Json const control = Json::parse(runIacq({"get", "0", "me_nu", "--json"}, camera).output)[0];
    EXPECT_EQ(control.at("items"), Json({"A\n9: B", "C\u0085"}));
}

TEST(ListCommand, IsEmptyWithoutCameras)
{
    ScratchFolder const folder;
    Words const none = {"--config", folder.write("camera.json", R"({"cameras": []})")};
    EXPECT_EQ(runIacq({"list"}, none).output, "No camera.\n");
    ProgramRun const run = runIacq({"list", "--json"}, none);
    EXPECT_EQ(run.output, "[]\n");
    EXPECT_EQ(run.status, 0);
}

TEST(ShowCommand, RefusesASerialNumberOfSeveralCameras)
{
    ScratchFolder const folder;
    Words const twins = {"--config", folder.write("camera.json", R"({"cameras": [
        {"node": "/dev/video0", "usb": {"port": "1-1", "serial": "TWIN"}},
        {"node": "/dev/video1", "usb": {"port": "1-2", "serial": "TWIN"}}]})")};
    ProgramRun const run = runIacq({"show", "TWIN"}, twins);
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.errors, "iacq: several cameras have the serial number 'TWIN'; name one by its "
                          "node\n");
}

TEST(ShowCommand, PrintsFormatsAndControlsForPeople)
{
    ProgramRun const run = runIacq({"show", "0"}, {"--model", "all-controls"});
    ASSERT_EQ(run.status, 0) << run.errors;
    for (char const* const line :
         {"    YUYV  YUYV 4:2:2\n        640x480: 1/30 1/15\n",
          "    MJPG  Motion-JPEG, compressed\n", "    RGB3  RGB3, emulated\n",
          "current: YUYV 640x480 1/30)",
          "    brightness ('Brightness')  Int32  image-quality  -64..64 step 1  value 0\n",
          "Int32  unknown  -100..100 step 5  value 0  [slider]\n",
          "StringMenu  unknown  default 1  value 1 (Third)\n        0: First\n        1: Third\n",
          "Int64Menu  unknown  default 1  value 1\n",
          "  2..8 characters  value text  [has-payload]\n",
          "Boolean  unknown  default on  value on\n", "  value 7  [read-only]\n",
          "  value -  [write-only]\n"}) {
        EXPECT_THAT(run.output, HasSubstr(line));
    }
}

TEST(ShowCommand, CallsFieldsInThePeoplesWords)
{
    ProgramRun const run = runIacq({"show", "0"}, {"--model", "vendor"});
    ASSERT_EQ(run.status, 0) << run.errors;
    for (char const* const text :
         {"    Node: /dev/video0\n", "    Driver: uvcvideo\n", "    Driver version: 6.1.0\n",
          "    Vendor id: ", "    Product id: ", "    Serial number: ",
          "    Firmware revision: TJ8-1.2.4\n", "    USB revision: 2.00\n", "    USB speed: high\n",
          "    Supports: video capture, streaming, read and write\n"}) {
        EXPECT_THAT(run.output, HasSubstr(text));
    }
    std::string const record = run.output.substr(0, run.output.find("Formats"));
    Json const keys = Json::parse(runIacq({"list", "--json"}, {"--model", "vendor"}).output)[0];
    for (auto const& [key, value] : keys.items()) {
        EXPECT_EQ(record.find(" " + key + ":"), std::string::npos) << key;
    }
    for (auto const& [key, value] : keys.at("supports").items()) {
        EXPECT_TRUE(key == "streaming" || record.find(key) == std::string::npos) << key;
    }
}

struct Absent
{
    char const* camera;
    int status;
};

void PrintTo(Absent const& absent, std::ostream* stream)
{
    *stream << '"' << absent.camera << '"';
}

class AbsentCamera : public testing::TestWithParam<Absent>
{
};

TEST_P(AbsentCamera, GetsOneLineAndAnExitStatus)
{
    for (Words const& arguments :
         {Words{"show", GetParam().camera}, Words{"get", GetParam().camera, "brightness"},
          Words{"capture", GetParam().camera, "-o", "/tmp/never.png"}}) {
        ProgramRun const run = runIacq(arguments);
        EXPECT_EQ(run.status, GetParam().status) << run.errors;
        EXPECT_EQ(run.output, "");
        EXPECT_THAT(run.errors, StartsWith("iacq: "));
        EXPECT_EQ(run.errors.find('\n'), run.errors.size() - 1) << run.errors;
    }
}

INSTANTIATE_TEST_SUITE_P(Names, AbsentCamera,
                         testing::Values(Absent{"7", 3}, Absent{"video9", 3},
                                         Absent{"/dev/video1", 3}, Absent{"/dev/null", 3},
                                         Absent{"no such serial", 3}, Absent{"", 3}));

TEST(CommandLine, IsRefusedWithOneLineWhenItMakesNoSense)
{
    for (Words const& arguments :
         {Words{}, Words{"bogus"}, Words{"show"}, Words{"capture", "0"},
          Words{"capture", "0", "-o", "a.png", "--count", "0"}, Words{"monitor", "--count", "x"}}) {
        ProgramRun const run = runProgram([&] {
            Words command = {IACQ_PROGRAM};
            command.insert(command.end(), arguments.begin(), arguments.end());
            return command;
        }());
        EXPECT_EQ(run.status, 2);
        EXPECT_THAT(run.errors, StartsWith("iacq: "));
        EXPECT_EQ(run.errors.find('\n'), run.errors.size() - 1) << run.errors;
    }
}

TEST(CommandLine, FailsWhenStandardOutputCannotBeWritten)
{
    ProgramRun const run = runProgram(
        {"sh", "-c", std::string(WITH_VIRTUAL_CAMERA) + " " + IACQ_PROGRAM + " list >/dev/full"});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.errors, HasSubstr("cannot write standard output"));
}

} // namespace
