// SPDX-License-Identifier: MIT
#include "ProgramRun.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <pty.h>
#include <unistd.h>

#include <set>

namespace
{

using Json = nlohmann::json;
using testing::HasSubstr;

Words const serialCamera = {"--model", "serial"};

/// Runs a line of a shell in which iacq stands for the tool, on one and the same camera.
ProgramRun runOnOneCamera(std::string const& line)
{
    return runProgram({WITH_VIRTUAL_CAMERA, "--model", "serial", "--", "sh", "-c",
                       "iacq() { " IACQ_PROGRAM " \"$@\"; }; " + line});
}

TEST(SerialRunTest, ShowsLikeAnyOtherCamera)
{
    ProgramRun const run = runIacq({"show", "0", "--json"}, serialCamera);
    ASSERT_EQ(run.status, 0) << run.errors;
    Json const camera = Json::parse(run.output);
    EXPECT_EQ(camera.at("vendorsOwn"), true);
    EXPECT_EQ(camera.at("formats")[0].at("name"), "YUYV");
    Json const& controls = camera.at("controls");
    ASSERT_EQ(controls.size(), 39u);
    EXPECT_EQ(controls[0].at("name"), "Focus");
    std::set<std::string> types;
    for (Json const& control : controls) {
        types.insert(control.at("type"));
    }
    EXPECT_THAT(types, testing::ElementsAre("Boolean", "Int32", "StringMenu"));
}

TEST(SerialRunTest, KeepsWhatIsSet)
{
    ProgramRun const run =
        runOnOneCamera("iacq set 0 focus=321 'Lighting Mode=off' keep_alive=on && "
                       "iacq get 0 Focus lighting_mode keep_alive");
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(run.output, "Focus: 321\nLighting Mode: 0 (Off)\nKeep Alive: on\n");
}

TEST(SerialRunTest, SaysWhyAValueIsRefused)
{
    ProgramRun run = runIacq({"set", "0", "temperature_c=20"}, serialCamera);
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.errors,
                HasSubstr("iacq: set Temperature (C) to '20': /dev/video0: read-only\n"));
    run = runIacq({"set", "0", "focus_strategy=Guess"}, serialCamera);
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.errors, HasSubstr("no such item: 'Guess' (it has "));
}

TEST(SerialRunTest, LetsTheCameraBeResetAndCapturedFrom)
{
    ScratchFolder const folder;
    ProgramRun run = runIacq({"capture", "0", "-o", folder.path("a.png")}, serialCamera);
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_THAT(folder.names(), testing::ElementsAre("a.png"));
    run = runIacq({"reset", "0"}, serialCamera);
    EXPECT_EQ(run.status, 0) << run.errors;
}

TEST(SerialRunTest, LeavesStandardErrorToTheTool)
{
    ProgramRun const run = runOnOneCamera("iacq list && iacq get 0 focus && iacq set 0 focus=5");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.errors, "");
}

TEST(SerialRunTest, TellsItsOwnAccountToWhomAsks)
{
    ProgramRun const run =
        runOnOneCamera("export QT_MESSAGE_PATTERN='%{message}'; iacq get 0 focus");
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.errors, HasSubstr("TriggerThread::connectPort()"));
}

struct Trouble
{
    char const* name;
    char const* arrangement; ///< Done by the shell in a folder that is empty at first.
    char const* reason;
};

void PrintTo(Trouble const& trouble, std::ostream* stream)
{
    *stream << trouble.name;
}

class SerialRunTest : public testing::TestWithParam<Trouble>
{
};

TEST_P(SerialRunTest, TellsTroubleInOneLine)
{
    ScratchFolder const folder;
    ProgramRun const run = runOnOneCamera("cd " + folder.path("") + " && " +
                                          GetParam().arrangement + "; iacq get 0 focus");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.errors,
              "iacq: open the camera: /dev/video0: could not be initialised; the camera "
              "was reset (" +
                  std::string(GetParam().reason) + ")\n");
}

INSTANTIATE_TEST_SUITE_P(
    Reasons, SerialRunTest,
    testing::Values(
        Trouble{"a silent dmesg",
                "printf '#!/bin/sh\n' >dmesg; chmod +x dmesg; export PATH=$PWD:$PATH",
                "dmesg prints nothing, and so names no serial port of it; it may need more rights"},
        Trouble{"no port",
                "printf '#!/bin/sh\necho other\n' >dmesg; chmod +x dmesg; export PATH=$PWD:$PATH",
                "dmesg names no serial port of it"},
        Trouble{"a port that is gone",
                "dmesg | sed 's/ttyACM[0-9]/ttyACM7/' >log; printf '#!/bin/sh\ncat %s/log\n' "
                "\"$PWD\" >dmesg; chmod +x dmesg; export PATH=$PWD:$PATH",
                "its serial port /dev/ttyACM7 is gone or in use, or the camera does not answer "
                "there"}));

TEST(SerialRunTest, ShowsOnATerminalThatOpeningTakesItsTime)
{
    int master = -1;
    int slave = -1;
    char terminal[64];
    ASSERT_EQ(openpty(&master, &slave, terminal, nullptr, nullptr), 0);
    ProgramRun const run = runOnOneCamera(std::string("iacq get 0 focus 2>") + terminal);
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.output, HasSubstr("Focus: "));
    close(slave);
    std::string text;
    char buffer[512];
    for (ssize_t size; (size = read(master, buffer, sizeof buffer)) > 0;) {
        text.append(buffer, static_cast<std::size_t>(size));
    }
    close(master);
    EXPECT_THAT(text, HasSubstr("\riacq: opening /dev/video0 .\033[K"));
    // The last of it takes the line away; nothing of it reaches the output.
    EXPECT_GT(text.rfind("\r\033[K"), text.rfind("opening"));
    EXPECT_EQ(run.output.find('\r'), std::string::npos);
}

} // namespace
