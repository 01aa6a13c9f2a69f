// SPDX-License-Identifier: MIT
#include "ProgramRun.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <set>

namespace
{

using Json = nlohmann::json;
using testing::HasSubstr;
using testing::StartsWith;

/// A loopback device on video0, and cameras behind it.
Words const behindALoopback = {"--model", "platform", "--model", "webcam", "--model", "vendor"};

TEST(ShowRunTest, FindsCamerasBehindALoopbackByIndexAndSerialNumber)
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

TEST(ShowRunTest, SaysThatALoopbackIsNoneOfTheCameras)
{
    ProgramRun run = runIacq({"show", "2"}, behindALoopback);
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.errors,
              "iacq: find camera '2': no camera fits (there are /dev/video2 'Virtual Webcam' "
              "serial:VC1001 port:1-2, /dev/video4 'Virtual Vendor Camera' serial:VC1002 port:1-3; "
              "left out: /dev/video0 has no USB device behind it)\n");
    run = runIacq({"show", "video0"}, behindALoopback);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.errors, "iacq: find camera 'video0': /dev/video0: has no USB device behind it\n");
}

TEST(ShowRunTest, StillFindsACameraByNodeBesideOneWithoutUsbDevice)
{
    ProgramRun const run =
        runIacq({"show", "video0"}, {"--model", "webcam", "--model", "platform"});
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_THAT(run.output, HasSubstr("    Node: /dev/video0\n"));
}

TEST(ShowRunTest, TakesAnIndexANodeAndASerialNumber)
{
    std::string const byIndex = runIacq({"show", "1", "--json"}).output;
    Json const camera = Json::parse(byIndex);
    EXPECT_EQ(runIacq({"show", "/dev/video2", "--json"}).status, 0);
    Json const bySerial = Json::parse(runIacq({"show", camera.at("serial"), "--json"}).output);
    EXPECT_EQ(bySerial.at("node"), camera.at("node"));
}

TEST(ShowRunTest, ListsFormatsAndWhatIsSet)
{
    Json const camera = Json::parse(runIacq({"show", "0", "--json"}).output);
    ASSERT_FALSE(camera.at("formats").empty());
    EXPECT_EQ(camera.at("formats")[0].at("name"), "YUYV");
    EXPECT_EQ(camera.at("formats")[0].at("sizes")[0].at("width"), 640);
    EXPECT_EQ(camera.at("formats")[0].at("sizes")[0].at("intervals")[0].at("denominator"), 30);
    EXPECT_EQ(camera.at("current").at("format"), "YUYV");
    EXPECT_EQ(camera.at("current").at("size").at("height"), 480);
}

TEST(ShowRunTest, ShowsAControlOfEveryType)
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

TEST(ShowRunTest, RefusesASerialNumberOfSeveralCameras)
{
    ScratchFolder const folder;
    Words const twins = {"--config", folder.write("camera.json", R"({"cameras": [
        {"node": "/dev/video0", "usb": {"port": "1-1", "serial": "TWIN"}},
        {"node": "/dev/video1", "usb": {"port": "1-2", "serial": "TWIN"}}]})")};
    ProgramRun const run = runIacq({"show", "TWIN"}, twins);
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.errors, "iacq: find camera 'TWIN': several cameras fit: /dev/video0 'Virtual "
                          "Camera' serial:TWIN port:1-1, /dev/video1 'Virtual Camera' serial:TWIN "
                          "port:1-2\n");
}

TEST(ShowRunTest, TakesAPortANameAndIds)
{
    for (char const* const text : {"port:1-3", "name:Virtual Vendor Camera", "id:7A76:CA01"}) {
        ProgramRun const run = runIacq({"show", text, "--json"}, behindALoopback);
        ASSERT_EQ(run.status, 0) << run.errors;
        EXPECT_EQ(Json::parse(run.output).at("node"), "/dev/video4") << text;
    }
}

TEST(ShowRunTest, PrintsFormatsAndControlsForPeople)
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

TEST(ShowRunTest, CallsFieldsInThePeoplesWords)
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

class ShowRunTest : public testing::TestWithParam<Absent>
{
};

TEST_P(ShowRunTest, GetsOneLineAndAnExitStatus)
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

INSTANTIATE_TEST_SUITE_P(Names, ShowRunTest,
                         testing::Values(Absent{"7", 3}, Absent{"video9", 3},
                                         Absent{"/dev/video1", 3}, Absent{"/dev/null", 3},
                                         Absent{"no such serial", 3}, Absent{"", 3}));

} // namespace
