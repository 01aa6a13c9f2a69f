// SPDX-License-Identifier: MIT
#include "ProgramRun.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace
{

using testing::HasSubstr;
using testing::MatchesRegex;

TEST(MonitorRunTest, PrintsALineForEachEventUntilItHasSeenEnough)
{
    ProgramRun const run = runIacq({"monitor", "--count", "1", "--timeout", "20"},
                                   {"--model", "webcam", "--unplug-after", "500"});
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_THAT(run.output, MatchesRegex(".*T.* remove /dev/video[0-9]+ video4linux\n"));
}

TEST(MonitorRunTest, PrintsOneJsonObjectALine)
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

TEST(MonitorRunTest, EndsWhenItsTimeIsUp)
{
    ProgramRun const run = runIacq({"monitor", "--timeout", "0.3"});
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(run.output, "");
}

TEST(MonitorRunTest, PassesOverNodesThatAreNoCameras)
{
    ProgramRun const run =
        runIacq({"monitor", "--timeout", "2"}, {"--model", "platform", "--unplug-after", "500"});
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(run.output, "");
}

bool isBlocked(std::string const& statusFile, int signal)
{
    std::ifstream status(statusFile);
    for (std::string line; std::getline(status, line);) {
        if (line.rfind("SigBlk:", 0) == 0) {
            return (std::stoull(line.substr(7), nullptr, 16) >> (signal - 1) & 1) != 0;
        }
    }
    return false;
}

/// Whether one of a process's threads holds a signal back. The one that waits for it is not shown
/// to do so.
bool holdsBack(pid_t process, int signal)
{
    std::error_code gone;
    std::filesystem::directory_iterator const threads("/proc/" + std::to_string(process) + "/task",
                                                      gone);
    return std::any_of(begin(threads), end(threads), [signal](auto const& thread) {
        return isBlocked(thread.path() / "status", signal);
    });
}

class MonitorRunTest : public testing::TestWithParam<int>
{
};

TEST_P(MonitorRunTest, EndsCleanlyAtASignal)
{
    pid_t const tool = fork();
    if (tool == 0) {
        execl(IACQ_PROGRAM, "iacq", "monitor", nullptr);
        _exit(127);
    }
    int status = 0;
    while (!holdsBack(tool, GetParam()) && waitpid(tool, &status, WNOHANG) == 0) {
        usleep(1000);
    }
    ASSERT_EQ(kill(tool, GetParam()), 0);
    ASSERT_EQ(waitpid(tool, &status, 0), tool);
    EXPECT_TRUE(WIFEXITED(status)) << "ended by signal " << WTERMSIG(status);
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

INSTANTIATE_TEST_SUITE_P(Signals, MonitorRunTest, testing::Values(SIGINT, SIGTERM));

TEST(MonitorRunTest, PrintsEachLineAsItHappens)
{
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    pid_t const wrapper = fork();
    if (wrapper == 0) {
        dup2(ends[1], STDOUT_FILENO);
        execl(WITH_VIRTUAL_CAMERA, "with-virtual-camera", "--model", "webcam", "--unplug-after",
              "300", IACQ_PROGRAM, "monitor", nullptr);
        _exit(127);
    }
    close(ends[1]);
    // The tool goes on for ever, so that this is read before it ends.
    char line[256] = "";
    EXPECT_GT(read(ends[0], line, sizeof line - 1), 0);
    EXPECT_THAT(line, HasSubstr(" remove /dev/video"));
    EXPECT_EQ(line[std::strlen(line) - 1], '\n');
    kill(wrapper, SIGTERM);
    int status = 0;
    waitpid(wrapper, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
    close(ends[0]);
}

TEST(MonitorRunTest, FailsWhenItCannotPrint)
{
    ProgramRun const run =
        runProgram({"bash", "-c",
                    std::string(WITH_VIRTUAL_CAMERA) + " --model webcam --unplug-after 300 " +
                        IACQ_PROGRAM + " monitor --timeout 50 >/dev/full"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.errors, "iacq: cannot write standard output: No space left on device\n");
}

} // namespace
