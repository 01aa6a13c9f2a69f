// SPDX-License-Identifier: MIT
#include "serial/SystemTool.h"

#include "ProcessCensus.h"
#include "Stopwatch.h"
#include "ThreadCount.h"
#include "ToolFolder.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>

namespace
{

using ImageAcquisition::SystemTool;

struct ToolCase
{
    char const* name;
    char const* script;
    std::string output;
};

void PrintTo(ToolCase const& one, std::ostream* stream)
{
    *stream << one.name;
}

class SystemToolTest : public testing::TestWithParam<ToolCase>
{
protected:
    static std::string run(char const* program, QStringList const& arguments = {},
                           int milliseconds = 30000)
    {
        return SystemTool::run(program, arguments, milliseconds).toStdString();
    }
    /// Runs "tool", which writes the ids of so many processes to "pids" and does not end, with as
    /// short a time as lets it get so far, on a busy machine too. All of them must end with it.
    void expectToEndTheTool(int processes = 1)
    {
        for (int const milliseconds : {1000, 4000, 16000}) {
            Stopwatch const watch;
            EXPECT_EQ(run("tool", {}, milliseconds), "");
            EXPECT_GE(watch.seconds(), milliseconds / 1000.0);
            EXPECT_LT(watch.seconds(), milliseconds / 1000.0 + 10);
            if (wordsIn(m_tools.read("pids")) == processes) {
                break;
            }
        }
        EXPECT_EQ(wordsIn(m_tools.read("pids")), processes);
        EXPECT_TRUE(allEnd(m_tools.read("pids")));
        EXPECT_EQ(childrenOfThisProcess(), 0);
    }

    ToolFolder m_tools;
};

TEST_P(SystemToolTest, GivesWhatTheToolPrintsToStandardOutput)
{
    m_tools.onPath("tool", GetParam().script);
    EXPECT_EQ(run("tool"), GetParam().output);
}

INSTANTIATE_TEST_SUITE_P(
    Tool, SystemToolTest,
    testing::Values(ToolCase{"PrintsLines", "echo first; echo second", "first\nsecond\n"},
                    ToolCase{"PrintsToStandardErrorToo", "echo complaint >&2; echo answer",
                             "answer\n"},
                    ToolCase{"Fails", "echo answer; exit 3", "answer\n"},
                    ToolCase{"IsEndedByASignal", "echo answer; kill -9 $$", "answer\n"},
                    ToolCase{"PrintsAZeroByte", "printf 'a\\000b'", std::string("a\0b", 3)}),
    [](auto const& test) { return std::string(test.param.name); });

TEST_F(SystemToolTest, HandsArgumentsOnAsTheyAre)
{
    m_tools.onPath("tool", "printf '<%s>' \"$@\"");
    EXPECT_EQ(run("tool", {"a b", "$HOME", ""}), "<a b><$HOME><>");
}

TEST_F(SystemToolTest, GivesMegabytes)
{
    m_tools.onPath("tool", "head -c 20000000 /dev/zero | tr '\\0' x");
    std::string const output = run("tool");
    EXPECT_EQ(output.size(), 20000000U);
    EXPECT_EQ(output.find_first_not_of('x'), std::string::npos);
}

TEST_F(SystemToolTest, GivesNothingWithoutTheTool)
{
    EXPECT_EQ(run("tool"), "");
    EXPECT_EQ(run("./tool"), "");
    EXPECT_EQ(childrenOfThisProcess(), 0);
}

TEST_F(SystemToolTest, GivesNothingOfAToolThatIsNoProgram)
{
    m_tools.write("tool", "no program");
    EXPECT_EQ(run("./tool"), "");
}

TEST_F(SystemToolTest, LooksForAPlainNameOnThePathOnly)
{
    m_tools.inWorkingDirectory("tool", "echo working directory");
    EXPECT_EQ(run("tool"), "");
}

TEST_F(SystemToolTest, LooksForADottedNameInTheWorkingDirectoryOnly)
{
    m_tools.onPath("tool", "echo path");
    EXPECT_EQ(run("./tool"), "");
    m_tools.inWorkingDirectory("tool", "echo working directory");
    EXPECT_EQ(run("./tool"), "working directory\n");
}

TEST_F(SystemToolTest, EndsAToolThatDoesNotEndAndGivesNothing)
{
    m_tools.onPath("tool", "echo $$ >\"$WORK/pids\"; echo answer; exec sleep 600");
    expectToEndTheTool();
}

TEST_F(SystemToolTest, EndsTheChildrenOfAToolThatDoesNotEnd)
{
    m_tools.onPath("tool", "echo $$ >\"$WORK/pids\"; sleep 600 & echo $! >>\"$WORK/pids\"; wait");
    expectToEndTheTool(2);
}

TEST_F(SystemToolTest, EndsAToolThatIgnoresBeingAskedToEnd)
{
    m_tools.onPath("tool",
                   "trap '' TERM INT HUP; echo $$ >\"$WORK/pids\"; while :; do sleep 1; done");
    expectToEndTheTool();
}

TEST_F(SystemToolTest, EndsAToolThatPrintsForEver)
{
    m_tools.onPath("tool", "echo $$ >\"$WORK/pids\"; while :; do echo line; done");
    expectToEndTheTool();
}

TEST_F(SystemToolTest, EndsAToolThatClosedItsOutputAndGoesOn)
{
    m_tools.onPath("tool", "echo $$ >\"$WORK/pids\"; exec >&-; exec sleep 600");
    expectToEndTheTool();
}

/// The most memory that this process ever had.
long kilobytesAtPeak()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

TEST_F(SystemToolTest, EndsAToolThatComplainsForEverAndKeepsNoneOfIt)
{
    m_tools.onPath("tool", "echo $$ >\"$WORK/pids\"; exec yes >&2");
    long const before = kilobytesAtPeak();
    expectToEndTheTool();
    EXPECT_LT(kilobytesAtPeak() - before, 64 * 1024);
}

TEST_F(SystemToolTest, EndsAToolThatFloodsTheMemoryBeforeItsTimeIsUp)
{
    m_tools.onPath("tool", "exec yes");
    Stopwatch const watch;
    EXPECT_EQ(run("tool", {}, 60000), "");
    EXPECT_LT(watch.seconds(), 50);
    EXPECT_EQ(childrenOfThisProcess(), 0);
}

TEST_F(SystemToolTest, DoesNotWaitForAChildThatHoldsTheOutputOfAToolThatEnded)
{
    m_tools.onPath("tool", "echo answer; sleep 600 & echo $! >\"$WORK/pids\"");
    Stopwatch const watch;
    EXPECT_EQ(run("tool"), "answer\n");
    EXPECT_LT(watch.seconds(), 25);
    kill(std::stoi(m_tools.read("pids")), SIGKILL);
}

TEST_F(SystemToolTest, LeavesNoDescriptorAndNoThread)
{
    m_tools.onPath("tool", "echo answer");
    m_tools.onPath("hanging", "exec sleep 600");
    std::vector<std::string> const descriptors = descriptorsButSockets();
    int const threads = threadCount();
    EXPECT_EQ(run("tool"), "answer\n");
    EXPECT_EQ(run("missing"), "");
    EXPECT_EQ(run("hanging", {}, 300), "");
    EXPECT_EQ(descriptorsButSockets(), descriptors);
    EXPECT_EQ(threadCount(), threads);
    EXPECT_EQ(childrenOfThisProcess(), 0);
}

} // namespace
