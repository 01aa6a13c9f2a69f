// SPDX-License-Identifier: MIT
#include "FramePainter.h"
#include "JpegFrames.h"
#include "OrdinaryCamera.h"
#include "PaintedFrames.h"
#include "Shell.h"

#include <algorithm>
#include <tuple>

using namespace ImageAcquisition;
using namespace KernelTest;
using UsbCamera::FramePainter;
using UsbCamera::JpegFrames;

using CaptureTest = OrdinaryCamera;

TEST_F(CaptureTest, ThreeHundredFramesWithEveryByteAndNoneLost)
{
    ASSERT_TRUE(m_camera->setCurrentImageFormat("YUYV", 640, 480, 1, 30));
    expectFrames(*m_camera, 640, 480, 300);
}

TEST_F(CaptureTest, EverySizeAndBeginAnewWithEachStart)
{
    for (auto const& [width, height, rate] :
         {std::tuple{160, 120, 60}, {320, 240, 30}, {1280, 960, 10}, {160, 120, 30}}) {
        SCOPED_TRACE(width);
        ASSERT_TRUE(m_camera->setCurrentImageFormat("YUYV", width, height, 1, rate));
        expectFrames(*m_camera, static_cast<unsigned>(width), static_cast<unsigned>(height), 5);
    }
}

TEST_F(CaptureTest, JpegImagesOfEverySizeAsTheCameraMadeThem)
{
    for (auto const& [width, height, count] :
         {std::tuple{640, 480, 20U}, {320, 240, 5U}, {1280, 720, 5U}}) {
        SCOPED_TRACE(width);
        ASSERT_TRUE(m_camera->setCurrentImageFormat("MJPG", width, height, 1, 30));
        JpegFrames images(static_cast<unsigned>(width), static_cast<unsigned>(height));
        Stream const stream(*m_camera, manyBuffers);
        for (unsigned number = 0; number < count; ++number) {
            IFrame* const frame = m_camera->acquireFrame();
            ASSERT_FALSE(frame->isInvalid());
            EXPECT_EQ(frame->counter(), number);
            EXPECT_EQ(JpegFrames::readNumber(frame->bytePtr(), frame->bytesUsed()), number);
            EXPECT_TRUE(bytesOf(*frame) == images.frame(number)) << number;
            EXPECT_EQ(m_camera->releaseFrame(frame), 0);
        }
    }
}

TEST_F(CaptureTest, PicturesThatLibv4l2ConvertsWithTheCamerasLuma)
{
    ASSERT_TRUE(m_camera->setCurrentImageFormat("YU12", 160, 120, 1, 30));
    FramePainter painter(160, 120);
    Stream const stream(*m_camera, manyBuffers);
    for (unsigned number = 0; number < 5; ++number) {
        IFrame* const frame = m_camera->acquireFrame();
        ASSERT_EQ(frame->bytesUsed(), 160 * 120 * 3 / 2U);
        Bytes const& yuyv = painter.paint(number);
        Bytes luma;
        for (std::size_t i = 0; i < yuyv.size(); i += 2) {
            luma.push_back(yuyv[i]);
        }
        EXPECT_TRUE(std::equal(luma.begin(), luma.end(), frame->bytePtr())) << number;
        EXPECT_EQ(m_camera->releaseFrame(frame), 0);
    }
}

TEST_F(CaptureTest, WhatWasSelectedIsWhatTheCameraIsTold)
{
    ASSERT_TRUE(m_camera->setCurrentImageFormat("MJPG", 1280, 720, 1, 10));
    Stream const stream(*m_camera, 4);
    EXPECT_FALSE(m_camera->acquireFrame()->isInvalid());
    std::string committed;
    for (EmulatedCameras::Json const& line : m_cameras.requests()) {
        if (line["kind"] == "streaming" && line["request"] == "SET_CUR" && line["selector"] == 2) {
            committed = line["data"];
        }
    }
    // Behind the hint: the second format, its third size, and 1000000 times 100 ns.
    EXPECT_EQ(committed.substr(4, 12), "020340420f00") << committed;
}

TEST_F(CaptureTest, NothingFromACameraThatHoldsItsFramesBack)
{
    ASSERT_TRUE(m_camera->setCurrentImageFormat("YUYV", 160, 120, 1, 30));
    m_cameras.command("hold 1");
    Stream const stream(*m_camera, 4);
    EXPECT_FALSE(m_camera->acquireFrame()->isInvalid());
    double const begin = monotonicSeconds();
    EXPECT_TRUE(m_camera->acquireFrame()->isInvalid());
    EXPECT_GE(monotonicSeconds() - begin, 1.99);
    m_cameras.command("release");
    IFrame const* const frame = m_camera->acquireFrame();
    EXPECT_EQ(FramePainter::readNumber(frame->bytePtr(), 160), 1U);
}
