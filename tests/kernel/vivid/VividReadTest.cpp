// SPDX-License-Identifier: MIT
#include "Shell.h"
#include "VividTransfer.h"

#include "input/InputMethodRead.h"

using namespace ImageAcquisition;
using namespace KernelTest;

using VividReadTest = VividTransfer;

TEST_F(VividReadTest, FramesAreThoseThatV4l2CtlWrites)
{
    InputMethodRead method(m_fd);
    ASSERT_TRUE(startsWithoutPipe(method, 3));
    for (int i = 0; i < 20; ++i) {
        IFrame* const frame = method.acquireFrame();
        ASSERT_FALSE(frame->isInvalid());
        EXPECT_EQ(frame->bytesUsed(), smallSize);
        EXPECT_TRUE(bytesOf(*frame) == m_wanted) << i;
        EXPECT_EQ(method.releaseFrame(frame), 0);
    }
    expectToEnd(method);
}

TEST_F(VividReadTest, FramesAreThoseThatAPlainReadGives)
{
    CommandResult const result =
        runShell("dd if=/dev/video0 of=/tmp/vivid-read bs=" + std::to_string(smallSize) +
                 " count=1 && cmp /tmp/vivid-read /tmp/vivid-frames");
    EXPECT_EQ(result.status, 0) << result.output;
}

TEST_F(VividReadTest, EachFrameIsFilledAnewAndTheEmptyPoolHasNone)
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

TEST_F(VividReadTest, SetUpFailsWhereThePipeCanBeOpened)
{
    InputMethodRead method(m_fd);
    EXPECT_EQ(method.setup(4, smallSize), -1);
    EXPECT_TRUE(method.acquireFrame()->isInvalid());
    EXPECT_EQ(method.cleanup(), 0);
}
