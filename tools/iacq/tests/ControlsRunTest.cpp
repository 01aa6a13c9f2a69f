// SPDX-License-Identifier: MIT
#include "ProgramRun.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace
{

using testing::HasSubstr;

Words const allControls = {"--model", "all-controls"};

class ControlsRunTest : public testing::TestWithParam<char const*>
{
};

TEST_P(ControlsRunTest, SetTakesWhatTheControlTakes)
{
    ProgramRun const run = runIacq({"set", "0", GetParam()}, allControls);
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(run.errors, "");
}

INSTANTIATE_TEST_SUITE_P(Values, ControlsRunTest,
                         testing::Values("integer=-100", "Integer=15", "integer=0x0a",
                                         "boolean=off", "boolean=Yes", "button", "bitmask=0x3",
                                         "menu=Third", "menu=third", "menu=2", "integer_menu=1",
                                         "string=text", "unsigned_8_bits=255",
                                         "unsigned_16_bits=65535", "unsigned_32_bits=4464",
                                         "integer_64_bits=0", "write_only_integer=5",
                                         "White Balance, Automatic=off"));

TEST(ControlsRunTest, SetReachesTheDriver)
{
    ProgramRun run = runIacq({"set", "0", "exposure_time_absolute=200"}, allControls);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.errors, "iacq: set Exposure Time, Absolute to '200': /dev/video0: inactive\n");
    run = runIacq({"set", "0", "Auto Exposure=Manual Mode", "exposure_time_absolute=200"},
                  allControls);
    EXPECT_EQ(run.status, 0) << run.errors;
}

TEST(ControlsRunTest, SetSaysThatTheDriverRefused)
{
    ScratchFolder const folder;
    Words const camera = {"--config", folder.write("camera.json", R"({"cameras": [{
        "node": "/dev/video0", "usb": {"port": "1-1"},
        "formats": [{"pixelFormat": "YUYV", "sizes": [{"width": 64, "height": 48}]}],
        "controls": [{"type": "integer", "id": "0x00980900", "name": "Gain=High",
                      "maximum": 9, "writeError": "EIO"}]}]})")};
    ProgramRun const run = runIacq({"set", "0", "Gain=High=3"}, camera);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.errors, "iacq: set Gain=High to '3': /dev/video0: refused by the driver: "
                          "Input/output error\n");
}

TEST(ControlsRunTest, SetChangesNothingWhenANameIsWrong)
{
    ProgramRun const run = runIacq({"set", "0", "button", "nonsense=1"}, allControls);
    EXPECT_EQ(run.status, 2);
    EXPECT_THAT(run.errors, HasSubstr("find control 'nonsense': "));
}

TEST(ControlsRunTest, SetWritesNothingWhenOneOfSeveralIsRefused)
{
    // The order of a driver's messages would be that of the writes: the first fails on this driver.
    ScratchFolder const folder;
    Words const camera = {"--config", folder.write("camera.json", R"({"cameras": [{
        "node": "/dev/video0", "usb": {"port": "1-1"},
        "formats": [{"pixelFormat": "YUYV", "sizes": [{"width": 64, "height": 48}]}],
        "controls": [
            {"type": "integer", "id": "0x00980900", "name": "A", "maximum": 9, "writeError": "EIO"},
            {"type": "integer", "id": "0x00980901", "name": "B", "maximum": 9}]}]})")};
    EXPECT_EQ(runIacq({"set", "0", "a=1", "b=2"}, camera).errors,
              "iacq: set A to '1': /dev/video0: refused by the driver: Input/output error\n");
    ProgramRun const run = runIacq({"set", "0", "a=1", "b=999", "c=3"}, camera);
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.errors,
              "iacq: set controls: /dev/video0: set B to '999': 999 is outside 0..9; find control "
              "'c': the camera has no such control (nearest: a, b)\n");
}

TEST(ControlsRunTest, GetPrintsValuesByNameAndByShortForm)
{
    ProgramRun const run = runIacq(
        {"get", "0", "Integer", "menu", "string", "boolean", "integer_64_bits"}, allControls);
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(run.output, "Integer: 0\nMenu: 1 (Third)\nString: text\nBoolean: on\n"
                          "Integer 64 Bits: 8589934592\n");
}

TEST(ControlsRunTest, GetKnowsControlsByTheirPurpose)
{
    ProgramRun const run = runIacq({"get", "0", "exposure"}, {"--model", "webcam"});
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(run.output.rfind("Exposure", 0), 0u) << run.output;
}

TEST(ControlsRunTest, GetDescribesControlsAsJson)
{
    ProgramRun const run = runIacq({"get", "0", "menu", "--json"}, allControls);
    ASSERT_EQ(run.status, 0) << run.errors;
    auto const controls = nlohmann::json::parse(run.output);
    ASSERT_EQ(controls.size(), 1u);
    EXPECT_EQ(controls[0].at("items"), nlohmann::json({"First", "Third", "Fourth"}));
    EXPECT_EQ(controls[0].at("value").at("label"), "Third");
    EXPECT_EQ(controls[0].at("value").at("position"), 1);
}

TEST(ControlsRunTest, GetKnowsTheVendorsPrivateControls)
{
    ProgramRun const run = runIacq({"get", "1", "light_mode", "Focus Strategy"});
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_THAT(run.output, HasSubstr("Light Mode: 0 (Off)"));
}

TEST(ControlsRunTest, GetTellsNoValueThatCannotBeRead)
{
    ScratchFolder const folder;
    Words const camera = {"--config", folder.write("camera.json", R"({"cameras": [{
        "node": "/dev/video0", "usb": {"port": "1-1"},
        "formats": [{"pixelFormat": "YUYV", "sizes": [{"width": 64, "height": 48}]}],
        "controls": [
            {"type": "integer", "id": "0x00980900", "name": "A", "maximum": 9, "readError": "EIO"},
            {"type": "integer", "id": "0x00980901", "name": "B", "maximum": 9}]}]})")};
    ProgramRun const run = runIacq({"get", "0", "a", "b"}, camera);
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(run.output, "A: -\nB: 0\n");
}

TEST(ControlsRunTest, GetRefusesAnUnknownName)
{
    ProgramRun const run = runIacq({"get", "0", "no_such"}, allControls);
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.errors, "iacq: find control 'no_such': /dev/video0: the camera has no such "
                          "control (nearest: boolean, hue, menu)\n");
}

TEST(ControlsRunTest, ResetWorksOnTheVendorsCamerasOnly)
{
    EXPECT_EQ(runIacq({"reset", "1"}).status, 0);
    ProgramRun const run = runIacq({"reset", "0"});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.errors, HasSubstr("no camera that can be reset"));
}

} // namespace
