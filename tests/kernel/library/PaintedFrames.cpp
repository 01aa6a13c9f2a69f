// SPDX-License-Identifier: MIT
#include "PaintedFrames.h"

#include "FramePainter.h"
#include "LibraryCamera.h"
#include "Shell.h"

#include <gtest/gtest.h>

using namespace ImageAcquisition;
using UsbCamera::FramePainter;

namespace KernelTest
{

void expectFrames(IBlockingCamera& camera, unsigned width, unsigned height, unsigned count)
{
    FramePainter painter(width, height);
    double const begin = monotonicSeconds();
    Stream const stream(camera, manyBuffers);
    double last = begin;
    for (unsigned number = 0; number < count; ++number) {
        IFrame* const frame = camera.acquireFrame();
        ASSERT_FALSE(frame->isInvalid()) << number;
        ASSERT_EQ(frame->counter(), number);
        EXPECT_FALSE(frame->isCorrupted());
        EXPECT_EQ(frame->bytesUsed(), width * height * 2);
        ASSERT_TRUE(bytesOf(*frame) == painter.paint(number)) << number;
        EXPECT_GT(stampSeconds(*frame), last);
        last = stampSeconds(*frame);
        EXPECT_EQ(camera.releaseFrame(frame), 0);
    }
    EXPECT_LE(last, monotonicSeconds());
}

} // namespace KernelTest
