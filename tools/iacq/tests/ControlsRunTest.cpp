// SPDX-License-Identifier: MIT
#include "ProgramRun.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace
{

using testing::HasSubstr;
using testing::StartsWith;

Words const allControls = {"--model", "all-controls"};

class AcceptedValue : public testing::TestWithParam<char const*>
{
};

TEST_P(AcceptedValue, IsSet)
{
    ProgramRun const run = runIacq({"set", "0", GetParam()}, allControls);
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(run.errors, "");
}

INSTANTIATE_TEST_SUITE_P(Values, AcceptedValue,
                         testing::Values("integer=-100", "Integer=15", "integer=0x0a",
                                         "boolean=off", "boolean=Yes", "button", "bitmask=0x3",
                                         "menu=Third", "menu=third", "menu=2", "integer_menu=1",
                                         "string=text", "unsigned_8_bits=255",
                                         "unsigned_16_bits=65535", "unsigned_32_bits=4464",
                                         "integer_64_bits=0", "write_only_integer=5",
                                         "White Balance, Automatic=off"));

struct Refused
{
    char const* assignment;
    char const* reason;
    int status;
};

void PrintTo(Refused const& refused, std::ostream* stream)
{
    *stream << refused.assignment;
}

class RefusedValue : public testing::TestWithParam<Refused>
{
};

TEST_P(RefusedValue, SaysWhy)
{
    ProgramRun const run = runIacq({"set", "0", GetParam().assignment}, allControls);
    EXPECT_EQ(run.status, GetParam().status);
    EXPECT_THAT(run.errors, StartsWith("iacq: "));
    EXPECT_THAT(run.errors, HasSubstr(GetParam().reason));
}

INSTANTIATE_TEST_SUITE_P(
    Values, RefusedValue,
    testing::Values(Refused{"integer=101", "101 is outside -100..100", 1},
                    Refused{"integer=many", "'many' is no number", 1},
                    Refused{"integer=99999999999", "is outside -100..100", 1},
                    Refused{"unsigned_8_bits=256", "256 is outside 0..255", 1},
                    Refused{"read_only_integer=3", "read-only", 1},
                    Refused{"disabled_integer=3", "disabled", 1},
                    Refused{"inactive_integer=3", "inactive", 1},
                    Refused{"grabbed_integer=3", "grabbed by another program", 1},
                    Refused{"boolean=maybe", "neither on nor off", 1},
                    Refused{"menu=Second", "no such item: 'Second'", 1},
                    Refused{"menu=3", "no such item: '3'", 1},
                    Refused{"integer_menu=9", "no such item", 1},
                    Refused{"string=much too long for it", "its length 20 is outside 2..8", 1},
                    Refused{"bitmask=-1", "no mask", 1}, Refused{"integer", "needs a value", 1},
                    Refused{"button=1", "give its name alone", 1},
                    Refused{"no_such=1", "the camera has no control 'no_such'", 2}));

TEST(SetCommand, ReachesTheDriver)
{
    ProgramRun run = runIacq({"set", "0", "exposure_time_absolute=200"}, allControls);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.errors, "iacq: Exposure Time, Absolute was not set: inactive\n");
    run = runIacq({"set", "0", "Auto Exposure=Manual Mode", "exposure_time_absolute=200"},
                  allControls);
    EXPECT_EQ(run.status, 0) << run.errors;
}

TEST(SetCommand, SaysThatTheDriverRefused)
{
    ScratchFolder const folder;
    Words const camera = {"--config", folder.write("camera.json", R"({"cameras": [{
        "node": "/dev/video0", "usb": {"port": "1-1"},
        "formats": [{"pixelFormat": "YUYV", "sizes": [{"width": 64, "height": 48}]}],
        "controls": [{"type": "integer", "id": "0x00980900", "name": "Gain=High",
                      "maximum": 9, "writeError": "EIO"}]}]})")};
    ProgramRun const run = runIacq({"set", "0", "Gain=High=3"}, camera);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.errors, "iacq: Gain=High was not set: refused by the driver\n");
}

TEST(SetCommand, ChangesNothingWhenANameIsWrong)
{
    ProgramRun const run = runIacq({"set", "0", "button", "nonsense=1"}, allControls);
    EXPECT_EQ(run.status, 2);
    EXPECT_THAT(run.errors, HasSubstr("no control 'nonsense'"));
}

TEST(SetCommand, WritesNothingWhenOneOfSeveralIsRefused)
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
              "iacq: A was not set: refused by the driver\n");
    ProgramRun const run = runIacq({"set", "0", "a=1", "b=999", "c=3"}, camera);
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.errors,
              "iacq: the camera has no control 'c'; B was not set: 999 is outside 0..9\n");
}

TEST(GetCommand, PrintsValuesByNameAndByShortForm)
{
    ProgramRun const run = runIacq(
        {"get", "0", "Integer", "menu", "string", "boolean", "integer_64_bits"}, allControls);
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(run.output, "Integer: 0\nMenu: 1 (Third)\nString: text\nBoolean: on\n"
                          "Integer 64 Bits: 8589934592\n");
}

TEST(GetCommand, DescribesControlsAsJson)
{
    ProgramRun const run = runIacq({"get", "0", "menu", "--json"}, allControls);
    ASSERT_EQ(run.status, 0) << run.errors;
    auto const controls = nlohmann::json::parse(run.output);
    ASSERT_EQ(controls.size(), 1u);
    EXPECT_EQ(controls[0].at("items"), nlohmann::json({"First", "Third", "Fourth"}));
    EXPECT_EQ(controls[0].at("value").at("label"), "Third");
    EXPECT_EQ(controls[0].at("value").at("position"), 1);
}

TEST(GetCommand, KnowsTheVendorsPrivateControls)
{
    ProgramRun const run = runIacq({"get", "1", "light_mode", "Focus Strategy"});
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_THAT(run.output, HasSubstr("Light Mode: 0 (Off)"));
}

TEST(GetCommand, RefusesAnUnknownName)
{
    ProgramRun const run = runIacq({"get", "0", "no_such"}, allControls);
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.errors, "iacq: the camera has no control 'no_such'\n");
}

TEST(ResetCommand, WorksOnTheVendorsCamerasOnly)
{
    EXPECT_EQ(runIacq({"reset", "1"}).status, 0);
    ProgramRun const run = runIacq({"reset", "0"});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.errors, HasSubstr("no camera that can be reset"));
}

} // namespace
