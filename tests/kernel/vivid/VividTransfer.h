// SPDX-License-Identifier: MIT
#pragma once

#include "DescriptorLimit.h"
#include "V4l2Ctl.h"
#include "VividCamera.h"

#include "input/InputMethod.h"
#include <factory/HelperV4l2.h>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <libv4l2.h>

namespace KernelTest
{

/// A node of a still picture, opened as a camera opens it, for input methods that a test makes.
class VividTransfer : public testing::Test
{
protected:
    void SetUp() override
    {
        showStillPicture();
        v4l2Ctl(firstNode, "--set-fmt-video=width=320,height=180,pixelformat=YUYV --set-parm=25");
        m_wanted = capturedByV4l2Ctl(firstNode);
        ASSERT_EQ(m_wanted.size(), smallSize);
        m_fd = ::v4l2_open(firstNode, O_RDWR | O_NONBLOCK);
        ASSERT_NE(m_fd, -1);
    }
    void TearDown() override { ImageAcquisition::HelperV4l2::close(m_fd); }

    /// The two methods that get ready only when the wake-up pipe cannot be opened.
    static int setUpWithoutPipe(ImageAcquisition::InputMethod& method, int bufferCount)
    {
        DescriptorLimit const limit;
        return method.setup(bufferCount, smallSize);
    }
    static bool startsWithoutPipe(ImageAcquisition::InputMethod& method, int bufferCount)
    {
        return setUpWithoutPipe(method, bufferCount) == 0 && method.startCapture() == 0;
    }
    static void expectToEnd(ImageAcquisition::InputMethod& method)
    {
        EXPECT_EQ(method.stopCapture(), 0);
        EXPECT_EQ(method.cleanup(), 0);
    }

    Bytes m_wanted;
    int m_fd = -1;
};

} // namespace KernelTest
