// SPDX-License-Identifier: MIT
#include "DescriptorLimit.h"
#include "PassThrough.h"
#include "Shell.h"
#include "ThreadState.h"
#include "V4l2Ctl.h"
#include "VividCamera.h"

#include <factory/HelperV4l2.h>
#include <input/InputMethodMemoryMapping.h>
#include <input/InputMethodRead.h>
#include <input/InputMethodUserPointers.h>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <libv4l2.h>

#include <set>

using namespace ImageAcquisition;
using namespace KernelTest;

namespace
{

/// The two methods that get ready only when the wake-up pipe cannot be opened.
int setUpWithoutPipe(InputMethod& method, int bufferCount)
{
    DescriptorLimit const limit;
    return method.setup(bufferCount, smallSize);
}

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
    void TearDown() override { HelperV4l2::close(m_fd); }

    Bytes m_wanted;
    int m_fd = -1;
};

using VividRead = VividTransfer;

class VividUserPointers : public VividTransfer
{
protected:
    PassThrough const m_straight;
};

} // namespace

TEST_F(VividRead, FramesAreThoseThatV4l2CtlWrites)
{
    InputMethodRead method(m_fd);
    ASSERT_EQ(setUpWithoutPipe(method, 3), 0);
    ASSERT_EQ(method.startCapture(), 0);
    for (int i = 0; i < 20; ++i) {
        IFrame* const frame = method.acquireFrame();
        ASSERT_FALSE(frame->isInvalid());
        EXPECT_EQ(frame->bytesUsed(), smallSize);
        EXPECT_TRUE(bytesOf(*frame) == m_wanted) << i;
        EXPECT_EQ(method.releaseFrame(frame), 0);
    }
    EXPECT_EQ(method.stopCapture(), 0);
    EXPECT_EQ(method.cleanup(), 0);
}

TEST_F(VividRead, FramesAreThoseThatAPlainReadGives)
{
    CommandResult const result =
        runShell("dd if=/dev/video0 of=/tmp/vivid-read bs=" + std::to_string(smallSize) +
                 " count=1 && cmp /tmp/vivid-read /tmp/vivid-frames");
    EXPECT_EQ(result.status, 0) << result.output;
}

TEST_F(VividRead, EachFrameIsFilledAnewAndTheEmptyPoolHasNone)
{
    InputMethodRead method(m_fd);
    ASSERT_EQ(setUpWithoutPipe(method, 2), 0);
    IFrame* const first = method.acquireFrame();
    IFrame* const second = method.acquireFrame();
    EXPECT_NE(first, second);
    EXPECT_TRUE(bytesOf(*first) == m_wanted);
    EXPECT_TRUE(bytesOf(*second) == m_wanted);
    EXPECT_TRUE(method.acquireFrame()->isInvalid());
    EXPECT_EQ(method.releaseFrame(second), 0);
    std::fill_n(second->bytePtr(), second->allocSize(), static_cast<unsigned char>(0));
    EXPECT_EQ(method.acquireFrame(), second);
    EXPECT_TRUE(bytesOf(*second) == m_wanted);
    EXPECT_EQ(method.releaseFrame(first), 0);
    EXPECT_EQ(method.releaseFrame(second), 0);
    EXPECT_EQ(method.cleanup(), 0);
}

TEST_F(VividRead, SetUpFailsWhereThePipeCanBeOpened)
{
    InputMethodRead method(m_fd);
    EXPECT_EQ(method.setup(4, smallSize), -1);
    EXPECT_TRUE(method.acquireFrame()->isInvalid());
    EXPECT_EQ(method.cleanup(), 0);
}

TEST_F(VividTransfer, Libv4l2OffersMappingAndNoUserPointers)
{
    EXPECT_TRUE(InputMethodMemoryMapping::supported(m_fd));
    EXPECT_FALSE(InputMethodUserPointers::supported(m_fd));
    InputMethodUserPointers method(m_fd);
    EXPECT_EQ(setUpWithoutPipe(method, 4), -1);
}

TEST_F(VividUserPointers, AreSupportedByTheDriverItself)
{
    EXPECT_TRUE(InputMethodUserPointers::supported(m_fd));
    EXPECT_TRUE(InputMethodMemoryMapping::supported(m_fd));
}

TEST_F(VividUserPointers, FramesAreThoseThatV4l2CtlWrites)
{
    InputMethodUserPointers method(m_fd);
    ASSERT_EQ(setUpWithoutPipe(method, 4), 0);
    ASSERT_EQ(method.startCapture(), 0);
    std::set<unsigned char const*> buffers;
    unsigned long long next = 0;
    for (int i = 0; i < 40; ++i) {
        IFrame* const frame = method.acquireFrame();
        ASSERT_FALSE(frame->isInvalid());
        EXPECT_GE(frame->counter(), next);
        next = frame->counter() + 1;
        EXPECT_EQ(frame->bytesUsed(), smallSize);
        EXPECT_LE(stampSeconds(*frame), monotonicSeconds());
        EXPECT_TRUE(bytesOf(*frame) == m_wanted) << i;
        buffers.insert(frame->bytePtr());
        EXPECT_EQ(method.releaseFrame(frame), 0);
    }
    EXPECT_EQ(buffers.size(), 4U);
    EXPECT_EQ(method.stopCapture(), 0);
    EXPECT_EQ(method.cleanup(), 0);
}

TEST_F(VividUserPointers, WithAllBuffersHeldNoFrameComesWithinTwoSeconds)
{
    InputMethodUserPointers method(m_fd);
    ASSERT_EQ(setUpWithoutPipe(method, 2), 0);
    ASSERT_EQ(method.startCapture(), 0);
    IFrame* const first = method.acquireFrame();
    ASSERT_FALSE(first->isInvalid());
    ASSERT_FALSE(method.acquireFrame()->isInvalid());
    double const begin = monotonicSeconds();
    EXPECT_TRUE(method.acquireFrame()->isInvalid());
    EXPECT_GE(monotonicSeconds() - begin, 1.99);
    EXPECT_EQ(method.releaseFrame(first), 0);
    EXPECT_EQ(method.acquireFrame(), first);
    EXPECT_EQ(method.stopCapture(), 0);
    EXPECT_EQ(method.cleanup(), 0);
}

TEST_F(VividUserPointers, StoppingTheStreamEndsAWaitWithoutAPipe)
{
    InputMethodUserPointers method(m_fd);
    ASSERT_EQ(setUpWithoutPipe(method, 2), 0);
    ASSERT_EQ(method.startCapture(), 0);
    ASSERT_FALSE(method.acquireFrame()->isInvalid());
    ASSERT_FALSE(method.acquireFrame()->isInvalid());
    IFrame const* last = nullptr;
    {
        WatchedThread reader([&] { last = method.acquireFrame(); });
        ASSERT_TRUE(reader.awaitSelect());
        EXPECT_EQ(method.stopCapture(), 0);
    }
    EXPECT_TRUE(last->isInvalid());
    EXPECT_EQ(method.cleanup(), 0);
}

TEST_F(VividUserPointers, MappingWorksStraightToo)
{
    InputMethodMemoryMapping method(m_fd);
    ASSERT_EQ(method.setup(4, smallSize), 0);
    ASSERT_EQ(method.startCapture(), 0);
    IFrame* const frame = method.acquireFrame();
    EXPECT_TRUE(bytesOf(*frame) == m_wanted);
    EXPECT_EQ(method.releaseFrame(frame), 0);
    EXPECT_EQ(method.stopCapture(), 0);
    EXPECT_EQ(method.cleanup(), 0);
}
