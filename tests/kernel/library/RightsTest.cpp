// SPDX-License-Identifier: MIT
#include "FuserFolder.h"
#include "OrdinaryUser.h"
#include "SeenCamera.h"

#include <gtest/gtest.h>

#include <filesystem>

using namespace KernelTest;
using Json = nlohmann::json;

namespace
{

class RightsTest : public testing::Test
{
protected:
    void openToAllNodes() const
    {
        for (std::string const& one : {m_node, usbNode(m_cameras), m_cameras.serialNode()}) {
            openToAll(one);
        }
    }

    Json seenByNobody() const
    {
        return asUser(nobody, [this] { return describeCamera(m_node); });
    }

    FuserFolder const m_folder;
    EmulatedCameras const m_cameras{{"vendor-new"}};
    std::string const m_node = m_cameras.videoNode();
};

TEST_F(RightsTest, OnTheVideoNodeAloneGiveAGenericCameraWithoutFirmwareText)
{
    openToAll(m_node);
    Json const seen = seenByNobody();
    EXPECT_EQ(seen.at("listed"), 1);
    EXPECT_EQ(seen.at("opened"), true);
    EXPECT_EQ(seen.at("vendorsOwn"), true);
    EXPECT_EQ(seen.at("serial"), "VEN001");
    EXPECT_EQ(seen.at("firmware"), "");
    EXPECT_EQ(seen.at("privateControls"), 29);
    EXPECT_GT(seen.at("controls"), 29);
    EXPECT_GT(seen.at("formats"), 0);
    EXPECT_EQ(seen.at("reset"), false);
    EXPECT_EQ(m_cameras.status()["plugs"], 1);
    EXPECT_EQ(m_cameras.status()["serialPackets"], 0);
}

TEST_F(RightsTest, OnTheVideoNodeAloneAreToldByTheTool)
{
    openToAll(m_node);
    CommandResult const list = runToolAsUser(nobody, "list --json");
    ASSERT_EQ(list.status, 0) << list.output;
    EXPECT_EQ(Json::parse(list.output).at(0).at("firmware"), "");
    CommandResult const picture =
        runToolAsUser(nobody, "capture 0 --format YUYV --size 160x120 -o /tmp/by-nobody.ppm");
    EXPECT_EQ(picture.status, 0) << picture.output;
    CommandResult const reset = runToolAsUser(nobody, "reset 0");
    EXPECT_EQ(reset.status, 1);
    EXPECT_NE(reset.output.find("its USB device cannot be opened"), std::string::npos)
        << reset.output;
    EXPECT_EQ(m_cameras.status()["plugs"], 1);
}

TEST_F(RightsTest, OnNoNodeGiveAnEmptyList)
{
    std::filesystem::permissions(m_node, std::filesystem::perms(0600));
    EXPECT_EQ(seenByNobody(), Json({{"listed", 0}}));
}

TEST_F(RightsTest, OnAllNodesAndTheKernelsLogGiveTheSerialLink)
{
    openToAllNodes();
    ReadableLog const log(true);
    Json const seen = seenByNobody();
    ASSERT_EQ(seen.at("opened"), true);
    EXPECT_EQ(seen.at("firmware"), "TJ8-1.3.0");
    EXPECT_EQ(seen.at("controls"), 39);
    EXPECT_EQ(seen.at("privateControls"), 0);
    EXPECT_EQ(seen.at("reset"), true);
    EXPECT_TRUE(waitFor([this] { return m_cameras.status()["plugs"] == 2; }));
    EXPECT_TRUE(m_cameras.waitUntilReady());
}

TEST_F(RightsTest, OnAllNodesButNotTheKernelsLogGiveNoCameraAndResetIt)
{
    openToAllNodes();
    ReadableLog const log(false);
    EXPECT_EQ(seenByNobody(), Json({{"listed", 1}, {"opened", false}}));
    EXPECT_TRUE(waitFor([this] { return m_cameras.status()["plugs"] == 2; }));
    EXPECT_TRUE(m_cameras.waitUntilReady());
}

TEST_F(RightsTest, OnAllNodesButTheTerminalGiveNoCameraAndResetIt)
{
    openToAll(m_node);
    openToAll(usbNode(m_cameras));
    ReadableLog const log(true);
    EXPECT_EQ(seenByNobody(), Json({{"listed", 1}, {"opened", false}}));
    EXPECT_TRUE(waitFor([this] { return m_cameras.status()["plugs"] == 2; }));
    EXPECT_TRUE(m_cameras.waitUntilReady());
}

} // namespace
