// SPDX-License-Identifier: MIT
#include "ProgramRun.h"

#include <gmock/gmock.h>

namespace
{

using testing::HasSubstr;
using testing::StartsWith;

TEST(UsageRunTest, IsRefusedWithOneLineWhenItMakesNoSense)
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

TEST(UsageRunTest, FailsWhenStandardOutputCannotBeWritten)
{
    ProgramRun const run = runProgram(
        {"sh", "-c", std::string(WITH_VIRTUAL_CAMERA) + " " + IACQ_PROGRAM + " list >/dev/full"});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.errors, HasSubstr("cannot write standard output"));
}

} // namespace
