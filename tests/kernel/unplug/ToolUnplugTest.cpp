// SPDX-License-Identifier: MIT
#include "EmulatedCameras.h"
#include "LibraryCamera.h"
#include "Shell.h"
#include "Tool.h"

#include <gtest/gtest.h>

using namespace KernelTest;

TEST(ToolUnplugTest, EndsACaptureWithAMessage)
{
    EmulatedCameras const cameras({"ordinary"}, {"1 unplug frame 5"});
    double const begin = monotonicSeconds();
    CommandResult const result =
        runTool("capture 0 --size 160x120 --format YUYV -n 1000 --output-format raw -o /dev/null");
    EXPECT_LT(monotonicSeconds() - begin, 20);
    EXPECT_EQ(result.status, 4) << result.output;
    EXPECT_NE(result.output.find("the camera is gone"), std::string::npos) << result.output;
    EXPECT_TRUE(cameras.waitUntilGone());
    EXPECT_EQ(runTool("list").output, "No camera.\n");
}
