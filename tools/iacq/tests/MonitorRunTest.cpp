// SPDX-License-Identifier: MIT
#include "ProgramRun.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace
{

using testing::HasSubstr;
using testing::MatchesRegex;

TEST(MonitorCommand, PrintsALineForEachEventUntilItHasSeenEnough)
{
    ProgramRun const run = runIacq({"monitor", "--count", "1", "--timeout", "20"},
                                   {"--model", "webcam", "--unplug-after", "500"});
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_THAT(run.output, MatchesRegex(".*T.* remove /dev/video[0-9]+ video4linux\n"));
}

TEST(MonitorCommand, PrintsOneJsonObjectALine)
{
    ProgramRun const run = runIacq({"monitor", "--json", "--count", "1", "--timeout", "20"},
                                   {"--model", "webcam", "--plug-after", "500"});
    ASSERT_EQ(run.status, 0) << run.errors;
    auto const event = nlohmann::json::parse(run.output);
    EXPECT_EQ(event.at("action"), "add");
    EXPECT_EQ(event.at("type"), 1);
    EXPECT_THAT(event.at("node").get<std::string>(), HasSubstr("/dev/video"));
    EXPECT_EQ(event.at("subsystem"), "video4linux");
}

TEST(MonitorCommand, EndsWhenItsTimeIsUp)
{
    ProgramRun const run = runIacq({"monitor", "--timeout", "0.3"});
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(run.output, "");
}

TEST(MonitorCommand, EndsCleanlyOnCtrlC)
{
    ProgramRun const direct =
        runProgram({"sh", "-c",
                    std::string(IACQ_PROGRAM) +
                        " monitor & sleep 0.5; kill -INT $!; wait $!; echo status $?"});
    EXPECT_EQ(direct.output, "status 0\n") << direct.errors;
}

} // namespace
