// SPDX-License-Identifier: MIT
#include "EmulatedCameras.h"
#include "FuserFolder.h"
#include "LibraryCamera.h"
#include "Tool.h"
#include "VideoEvents.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

using namespace ImageAcquisition;
using namespace KernelTest;

namespace
{

/// Where an event of a node stands in a list; its size when it does not.
std::size_t placeOf(const VideoEvents& events, const std::string& action, const std::string& node)
{
    const auto place = std::find_if(events.begin(), events.end(), [&](const VideoEvent& event) {
        return event.action == action && event.node == node;
    });
    return static_cast<std::size_t>(place - events.begin());
}

void expectComingBack(const VideoEvents& events, const std::string& node)
{
    const std::size_t removed = placeOf(events, "remove", node);
    const std::size_t added = placeOf(events, "add", node);
    EXPECT_LT(removed, events.size());
    EXPECT_LT(added, events.size());
    EXPECT_LT(removed, added);
}

bool wasReset(const EmulatedCameras& cameras)
{
    const auto all = cameras.requests();
    return std::any_of(all.begin(), all.end(), [](const EmulatedCameras::Json& line) {
        return line["kind"] == "vendor" && line["request"] == "e0";
    });
}

class Reset : public testing::TestWithParam<const char*>
{
protected:
    const FuserFolder folder;
    const EmulatedCameras cameras{{GetParam()}};
};

} // namespace

TEST_P(Reset, IsSeenAsRemovalAndAdditionByBothMonitors)
{
    const std::string node = cameras.videoNode();
    CameraPointer camera = openListed(node);
    ASSERT_NE(camera, nullptr);
    ContinuousWatch continuous;
    BlockingWatch blocking;
    blocking.beginToAsk();
    EXPECT_TRUE(camera->softwareReset());
    EXPECT_TRUE(cameras.waitUntilGone());
    EXPECT_TRUE(camera->acquireFrame()->isInvalid());
    // The numbers of nodes that are held are not given anew.
    camera.reset();
    EXPECT_TRUE(cameras.waitUntilReady());
    EXPECT_EQ(cameras.videoNode(), node);
    for (const auto& events : {std::function([&] { return continuous.events(); }),
                               std::function([&] { return blocking.events(); })}) {
        EXPECT_TRUE(waitFor([&] { return placeOf(events(), "add", node) < events().size(); }));
        expectComingBack(events(), node);
    }
    EXPECT_TRUE(wasReset(cameras));
    EXPECT_EQ(cameras.status()["plugs"], 2);
    EXPECT_NE(openListed(node), nullptr);
}

INSTANTIATE_TEST_SUITE_P(Cameras, Reset, testing::Values("vendor-old", "vendor-new"));

TEST(ResetByTheTool, IsSeenByItsMonitor)
{
    const FuserFolder folder;
    const EmulatedCameras cameras({"vendor-old"});
    const BackgroundCommand monitor(toolPath() + " monitor");
    ASSERT_TRUE(waitFor([&] { return monitor.listensToUdev(); }));
    EXPECT_EQ(runTool("reset 0").status, 0);
    EXPECT_TRUE(waitFor([&] { return cameras.status()["plugs"] == 2; }));
    EXPECT_TRUE(cameras.waitUntilReady());
    const std::string added = " add " + cameras.videoNode() + " video4linux";
    EXPECT_TRUE(waitFor([&] { return monitor.output().find(added) != std::string::npos; }));
    EXPECT_LT(monitor.output().find(" remove /dev/video"), monitor.output().find(added));
}
