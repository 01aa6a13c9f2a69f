// SPDX-License-Identifier: MIT
#include "serial/SystemTool.h"

#include "ProcessCensus.h"
#include "Stopwatch.h"
#include "ThreadCount.h"
#include "ToolFolder.h"

#include <gtest/gtest.h>

namespace
{

using ImageAcquisition::SystemTool;

/// A tool that does not end gets a second in these tests.
class SystemToolTest : public testing::Test
{
protected:
    SystemToolTest() { SystemTool::msTimeout = 1000; }
    ~SystemToolTest() override { SystemTool::msTimeout = 30000; }

    static std::string run(char const* program, QStringList const& arguments = {})
    {
        return SystemTool::run(program, arguments).toStdString();
    }
    /// For tools that end: on a busy machine even those need a while to start.
    static std::string runPatiently(char const* program, QStringList const& arguments = {})
    {
        SystemTool::msTimeout = 30000;
        return run(program, arguments);
    }

    ToolFolder m_tools;
};

TEST(SystemToolTimeout, IsThirtySeconds)
{
    EXPECT_EQ(30000, SystemTool::msTimeout);
}

TEST_F(SystemToolTest, GivesWhatTheToolPrints)
{
    m_tools.onPath("tool", "echo first; echo second");
    EXPECT_EQ("first\nsecond\n", runPatiently("tool"));
}

TEST_F(SystemToolTest, HandsArgumentsOnAsTheyAre)
{
    m_tools.onPath("tool", "printf '<%s>' \"$@\"");
    EXPECT_EQ("<a b><$HOME><>", runPatiently("tool", {"a b", "$HOME", ""}));
}

TEST_F(SystemToolTest, LeavesOutWhatTheToolPrintsToStandardError)
{
    m_tools.onPath("tool", "echo complaint >&2; echo answer");
    EXPECT_EQ("answer\n", runPatiently("tool"));
}

TEST_F(SystemToolTest, GivesTheOutputOfAToolThatFails)
{
    m_tools.onPath("tool", "echo answer; exit 3");
    EXPECT_EQ("answer\n", runPatiently("tool"));
}

TEST_F(SystemToolTest, GivesTheOutputOfAToolThatASignalEnds)
{
    m_tools.onPath("tool", "echo answer; kill -9 $$");
    EXPECT_EQ("answer\n", runPatiently("tool"));
}

TEST_F(SystemToolTest, GivesZeroBytesToo)
{
    m_tools.onPath("tool", "printf 'a\\000b'");
    EXPECT_EQ(std::string("a\0b", 3), runPatiently("tool"));
}

TEST_F(SystemToolTest, GivesMegabytes)
{
    m_tools.onPath("tool", "head -c 20000000 /dev/zero | tr '\\0' x");
    std::string const output = runPatiently("tool");
    EXPECT_EQ(20000000U, output.size());
    EXPECT_EQ(std::string::npos, output.find_first_not_of('x'));
}

TEST_F(SystemToolTest, GivesNothingWithoutTheTool)
{
    EXPECT_EQ("", runPatiently("tool"));
    EXPECT_EQ("", runPatiently("./tool"));
    EXPECT_EQ(0, childrenOfThisProcess());
}

TEST_F(SystemToolTest, GivesNothingOfAToolThatIsNoProgram)
{
    m_tools.write("tool", "no program");
    EXPECT_EQ("", runPatiently("./tool"));
}

TEST_F(SystemToolTest, LooksForAPlainNameOnThePathOnly)
{
    m_tools.inWorkingDirectory("tool", "echo working directory");
    EXPECT_EQ("", runPatiently("tool"));
}

TEST_F(SystemToolTest, LooksForADottedNameInTheWorkingDirectoryOnly)
{
    m_tools.onPath("tool", "echo path");
    EXPECT_EQ("", runPatiently("./tool"));
    m_tools.inWorkingDirectory("tool", "echo working directory");
    EXPECT_EQ("working directory\n", runPatiently("./tool"));
}

TEST_F(SystemToolTest, EndsAToolThatDoesNotEndAndGivesNothing)
{
    m_tools.onPath("tool", "echo $$ >\"$WORK/pids\"; echo answer; exec sleep 600");
    Stopwatch const watch;
    EXPECT_EQ("", run("tool"));
    EXPECT_GE(watch.seconds(), 1);
    EXPECT_LT(watch.seconds(), 10);
    EXPECT_TRUE(allEnd(m_tools.read("pids")));
    EXPECT_EQ(0, childrenOfThisProcess());
}

TEST_F(SystemToolTest, EndsTheChildrenOfAToolThatDoesNotEnd)
{
    m_tools.onPath("tool", "echo $$ >\"$WORK/pids\"; sleep 600 & echo $! >>\"$WORK/pids\"; wait");
    EXPECT_EQ("", run("tool"));
    std::string const processes = m_tools.read("pids");
    EXPECT_NE(std::string::npos, processes.find('\n', processes.find('\n') + 1)) << processes;
    EXPECT_TRUE(allEnd(processes));
    EXPECT_EQ(0, childrenOfThisProcess());
}

TEST_F(SystemToolTest, EndsAToolThatIgnoresBeingAskedToEnd)
{
    m_tools.onPath("tool",
                   "trap '' TERM INT HUP; echo $$ >\"$WORK/pids\"; while :; do sleep 1; done");
    EXPECT_EQ("", run("tool"));
    EXPECT_TRUE(allEnd(m_tools.read("pids")));
}

TEST_F(SystemToolTest, EndsAToolThatPrintsForEver)
{
    m_tools.onPath("tool", "echo $$ >\"$WORK/pids\"; while :; do echo line; done");
    Stopwatch const watch;
    EXPECT_EQ("", run("tool"));
    EXPECT_LT(watch.seconds(), 10);
    EXPECT_TRUE(allEnd(m_tools.read("pids")));
}

TEST_F(SystemToolTest, EndsAToolThatComplainsForEver)
{
    m_tools.onPath("tool", "echo $$ >\"$WORK/pids\"; while :; do echo line >&2; done");
    Stopwatch const watch;
    EXPECT_EQ("", run("tool"));
    EXPECT_LT(watch.seconds(), 10);
    EXPECT_TRUE(allEnd(m_tools.read("pids")));
}

TEST_F(SystemToolTest, EndsAToolThatFloodsTheMemoryBeforeItsTimeIsUp)
{
    m_tools.onPath("tool", "exec yes");
    SystemTool::msTimeout = 60000;
    Stopwatch const watch;
    EXPECT_EQ("", run("tool"));
    EXPECT_LT(watch.seconds(), 50);
    EXPECT_EQ(0, childrenOfThisProcess());
}

TEST_F(SystemToolTest, EndsAToolThatClosedItsOutputAndGoesOn)
{
    m_tools.onPath("tool", "echo $$ >\"$WORK/pids\"; exec >&-; exec sleep 600");
    Stopwatch const watch;
    EXPECT_EQ("", run("tool"));
    EXPECT_LT(watch.seconds(), 10);
    EXPECT_TRUE(allEnd(m_tools.read("pids")));
}

TEST_F(SystemToolTest, DoesNotWaitForAChildThatHoldsTheOutputOfAToolThatEnded)
{
    m_tools.onPath("tool", "echo answer; sleep 3 & exit 0");
    Stopwatch const watch;
    EXPECT_EQ("answer\n", runPatiently("tool"));
    EXPECT_LT(watch.seconds(), 2.5);
}

TEST_F(SystemToolTest, LeavesNoDescriptorAndNoThread)
{
    m_tools.onPath("tool", "echo answer");
    m_tools.onPath("hanging", "exec sleep 600");
    std::vector<std::string> const descriptors = descriptorsButSockets();
    int const threads = threadCount();
    run("tool");
    run("hanging");
    run("missing");
    EXPECT_EQ(descriptors, descriptorsButSockets());
    EXPECT_EQ(threads, threadCount());
    EXPECT_EQ(0, childrenOfThisProcess());
}

} // namespace
