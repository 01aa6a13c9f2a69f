// SPDX-License-Identifier: MIT
#pragma once

#include "DriversHabit.h"
#include "EmulatedCameras.h"
#include "FramePainter.h"
#include "LibraryCamera.h"
#include "OrdinaryCamera.h"
#include "Shell.h"
#include "Tool.h"

#include <gtest/gtest.h>

#include <string>

namespace KernelTest
{

constexpr unsigned wholeFrame = 160 * 120 * 2;

/// A camera whose frames 1 and 3 are damaged.
class DamagedFrames : public testing::Test
{
protected:
    explicit DamagedFrames(bool driverKeepsThem) : m_habit(driverKeepsThem) {}

    void SetUp() override
    {
        ASSERT_NE(m_camera, nullptr);
        ASSERT_TRUE(m_camera->setCurrentImageFormat("YUYV", 160, 120, 1, 30));
    }

    /// The next frame, checked for its bytes, which are the beginning of its picture's.
    ImageAcquisition::IFrame* next(unsigned number)
    {
        ImageAcquisition::IFrame* const frame = m_camera->acquireFrame();
        EXPECT_FALSE(frame->isInvalid());
        EXPECT_EQ(frame->counter(), number);
        Bytes wanted = m_painter.paint(number);
        wanted.resize(frame->bytesUsed());
        EXPECT_TRUE(bytesOf(*frame) == wanted) << number;
        return frame;
    }

    static CommandResult captureByTool()
    {
        return runTool("capture 0 --format YUYV --size 160x120 -n 3 --buffers 16 "
                       "-o /tmp/good-%d.raw");
    }

    /// The files that the tool wrote are the frames 0, 2 and 4.
    void expectGoodFiles()
    {
        for (unsigned const file : {1U, 2U, 3U}) {
            Bytes const bytes = fileBytes("/tmp/good-" + std::to_string(file) + ".raw");
            EXPECT_TRUE(bytes == m_painter.paint(2 * (file - 1))) << file;
        }
    }

    DriversHabit const m_habit;
    EmulatedCameras const m_cameras{{"ordinary"}, {"1 corrupt 1", "1 cut 3 10000"}};
    CameraPointer m_camera = openListed(m_cameras.videoNode());
    UsbCamera::FramePainter m_painter{160, 120};
};

} // namespace KernelTest
