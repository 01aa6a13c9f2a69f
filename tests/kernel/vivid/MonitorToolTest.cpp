// SPDX-License-Identifier: MIT
#include "BackgroundCommand.h"
#include "EmulatedCameras.h"
#include "Tool.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>

using namespace KernelTest;
using Json = nlohmann::json;

namespace
{

/// `iacq monitor` while a camera comes and goes, which has a node for metadata too.
class MonitorToolTest : public testing::Test
{
protected:
    void start(std::string const& arguments)
    {
        m_command = std::make_unique<BackgroundCommand>(toolPath() + " monitor " + arguments);
        ASSERT_TRUE(waitFor([&] { return m_command->listensToUdev(); })) << m_command->output();
    }

    static void comeAndGo()
    {
        EmulatedCameras const cameras({"ordinary"});
        cameras.command("unplug");
        ASSERT_TRUE(cameras.waitUntilGone());
    }

    /// What it printed. libv4l2 tells on standard error when a node goes that is being looked at.
    std::vector<std::string> lines() const
    {
        std::vector<std::string> printed = splitLines(m_command->output());
        auto const isOther = [](std::string const& line) {
            return line.find("video4linux") == std::string::npos;
        };
        printed.erase(std::remove_if(printed.begin(), printed.end(), isOther), printed.end());
        return printed;
    }

    std::unique_ptr<BackgroundCommand> m_command;
};

TEST_F(MonitorToolTest, PrintsALineForEachEventAndEndsAfterSoMany)
{
    start("--count 2 --timeout 120");
    comeAndGo();
    EXPECT_EQ(m_command->wait(), 0);
    ASSERT_EQ(lines().size(), 2U) << m_command->output();
    EXPECT_NE(lines()[0].find(" add /dev/video0 video4linux"), std::string::npos) << lines()[0];
    EXPECT_NE(lines()[1].find(" remove /dev/video0 video4linux"), std::string::npos) << lines()[1];
}

TEST_F(MonitorToolTest, PrintsObjectsAndEndsWithCtrlC)
{
    start("--json");
    comeAndGo();
    ASSERT_TRUE(waitFor([&] { return lines().size() == 2; })) << m_command->output();
    Json const added = Json::parse(lines()[0]);
    EXPECT_EQ(added.at("action"), "add");
    EXPECT_EQ(added.at("node"), "/dev/video0");
    EXPECT_EQ(added.at("subsystem"), "video4linux");
    EXPECT_EQ(Json::parse(lines()[1]).at("action"), "remove");
    m_command->signal(SIGINT);
    EXPECT_EQ(m_command->wait(), 0);
    EXPECT_EQ(lines().size(), 2U);
}

TEST_F(MonitorToolTest, PassesOverNodesThatAreNoCameras)
{
    start("--count 1 --timeout 120");
    ASSERT_EQ(runShell("modprobe vivid n_devs=1 node_types=0x1 num_inputs=1 input_types=0").status,
              0);
    ASSERT_TRUE(waitFor([] { return runShell("rmmod vivid").status == 0; }));
    EmulatedCameras const cameras({"ordinary"});
    EXPECT_EQ(m_command->wait(), 0);
    ASSERT_EQ(lines().size(), 1U) << m_command->output();
    EXPECT_NE(lines()[0].find(" add " + cameras.videoNode() + " "), std::string::npos)
        << lines()[0];
}

TEST_F(MonitorToolTest, EndsInTimeWhenNothingHappens)
{
    start("--timeout 1");
    EXPECT_EQ(m_command->wait(), 0);
    EXPECT_EQ(m_command->output(), "");
}

} // namespace
