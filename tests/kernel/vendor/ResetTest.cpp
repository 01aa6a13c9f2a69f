// SPDX-License-Identifier: MIT
#include "EmulatedCameras.h"
#include "FuserFolder.h"
#include "LibraryCamera.h"
#include "Tool.h"
#include "VideoEvents.h"

#include <ICameraControlNumeric.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

using namespace ImageAcquisition;
using namespace KernelTest;

namespace
{

/// Where an event of a node stands in a list; its size when it does not.
std::size_t placeOf(VideoEvents const& events, std::string const& action, std::string const& node)
{
    auto const place = std::find_if(events.begin(), events.end(), [&](VideoEvent const& event) {
        return event.action == action && event.node == node;
    });
    return static_cast<std::size_t>(place - events.begin());
}

void expectComingBack(VideoEvents const& events, std::string const& node)
{
    std::size_t const removed = placeOf(events, "remove", node);
    std::size_t const added = placeOf(events, "add", node);
    EXPECT_LT(removed, events.size());
    EXPECT_LT(added, events.size());
    EXPECT_LT(removed, added);
}

bool wasReset(EmulatedCameras const& cameras)
{
    auto const all = cameras.requests();
    return std::any_of(all.begin(), all.end(), [](EmulatedCameras::Json const& line) {
        return line["kind"] == "vendor" && line["request"] == "e0";
    });
}

class ResetTest : public testing::TestWithParam<char const*>
{
protected:
    FuserFolder const m_folder;
    EmulatedCameras const m_cameras{{GetParam()}};
};

TEST_P(ResetTest, IsSeenAsRemovalAndAdditionByBothMonitors)
{
    std::string const node = m_cameras.videoNode();
    CameraPointer camera = openListed(node);
    ASSERT_NE(camera, nullptr);
    ContinuousWatch continuous;
    BlockingWatch blocking;
    blocking.beginToAsk();
    EXPECT_TRUE(camera->softwareReset());
    EXPECT_TRUE(m_cameras.waitUntilGone());
    EXPECT_TRUE(camera->acquireFrame()->isInvalid());
    // The numbers of nodes that are held are not given anew.
    camera.reset();
    EXPECT_TRUE(m_cameras.waitUntilReady());
    EXPECT_EQ(m_cameras.videoNode(), node);
    for (auto const& events : {std::function([&] { return continuous.events(); }),
                               std::function([&] { return blocking.events(); })}) {
        EXPECT_TRUE(waitFor([&] { return placeOf(events(), "add", node) < events().size(); }));
        expectComingBack(events(), node);
    }
    EXPECT_TRUE(wasReset(m_cameras));
    EXPECT_EQ(m_cameras.status()["plugs"], 2);
    EXPECT_NE(openListed(node), nullptr);
}

TEST_P(ResetTest, ByTheToolIsSeenByItsMonitor)
{
    std::string const node = m_cameras.videoNode();
    BackgroundCommand const monitor(toolPath() + " monitor --json");
    ASSERT_TRUE(waitFor([&] { return monitor.listensToUdev(); }));
    EXPECT_EQ(runTool("reset 0").status, 0);
    EXPECT_TRUE(waitFor([&] { return m_cameras.status()["plugs"] == 2; }));
    EXPECT_TRUE(m_cameras.waitUntilReady());
    EXPECT_TRUE(wasReset(m_cameras));
    auto const events = [&] {
        VideoEvents seen;
        for (std::string const& line : splitLines(monitor.output())) {
            auto const event = nlohmann::json::parse(line, nullptr, false);
            if (event.is_object()) {
                seen.push_back({event.at("action"), event.at("node"), event.at("subsystem"), 0});
            }
        }
        return seen;
    };
    // The tool may hold the node for a moment longer than the camera is gone.
    std::string const present = m_cameras.videoNode();
    EXPECT_TRUE(waitFor([&] { return placeOf(events(), "add", present) < events().size(); }))
        << monitor.output();
    EXPECT_LT(placeOf(events(), "remove", node), placeOf(events(), "add", present));
}

INSTANTIATE_TEST_SUITE_P(Cameras, ResetTest, testing::Values("vendor-old", "vendor-new"));

TEST(ResetTest, UnderACameraGivesItNewNodesThatANewListFinds)
{
    FuserFolder const folder;
    EmulatedCameras const cameras({"vendor-new"});
    std::string const node = cameras.videoNode();
    std::string const terminal = cameras.serialNode();
    CameraPointer const held = openListed(node);
    ASSERT_NE(held, nullptr);
    EXPECT_TRUE(held->softwareReset());
    EXPECT_TRUE(waitFor([&] { return cameras.status()["plugs"] == 2; }));
    EXPECT_TRUE(cameras.waitUntilReady());
    EXPECT_NE(cameras.videoNode(), node);
    // Of two lines in the kernel's log the last one names the present terminal.
    EXPECT_NE(cameras.serialNode(), terminal);
    CameraPointer const camera = openListed(cameras.videoNode());
    ASSERT_NE(camera, nullptr);
    auto& light = dynamic_cast<ICameraControlNumeric<int>&>(*camera->lightIntensityControl());
    EXPECT_TRUE(light.setValue(123));
    EXPECT_EQ(cameras.command("get 3 2"), "7b00");
    auto& lost = dynamic_cast<ICameraControlNumeric<int>&>(*held->lightIntensityControl());
    EXPECT_FALSE(lost.setValue(124));
    EXPECT_EQ(cameras.command("get 3 2"), "7b00");
}

} // namespace
