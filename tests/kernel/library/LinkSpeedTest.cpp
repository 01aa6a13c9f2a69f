// SPDX-License-Identifier: MIT
#include "EmulatedCameras.h"
#include "LibraryCamera.h"
#include "PaintedFrames.h"

#include <gtest/gtest.h>

using namespace ImageAcquisition;
using namespace KernelTest;

class LinkSpeedTest : public testing::TestWithParam<char const*>
{
};

TEST_P(LinkSpeedTest, ChangesNothingInTheFrames)
{
    EmulatedCameras const cameras({std::string("ordinary,speed=") + GetParam()});
    CameraPointer const camera = openListed(cameras.videoNode());
    ASSERT_NE(camera, nullptr);
    ASSERT_TRUE(camera->setCurrentImageFormat("YUYV", 320, 240, 1, 30));
    expectFrames(*camera, 320, 240, 15);
}

INSTANTIATE_TEST_SUITE_P(Speeds, LinkSpeedTest, testing::Values("full", "super"));
