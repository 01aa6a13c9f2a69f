// SPDX-License-Identifier: MIT
#include "PassThrough.h"
#include "Shell.h"
#include "ThreadState.h"
#include "VividTransfer.h"

#include "input/InputMethodMemoryMapping.h"
#include "input/InputMethodUserPointers.h"

#include <set>

using namespace ImageAcquisition;
using namespace KernelTest;

namespace
{

class VividUserPointersTest : public VividTransfer
{
protected:
    PassThrough const m_straight;
};

TEST_F(VividUserPointersTest, AreSupportedByTheDriverItself)
{
    EXPECT_TRUE(InputMethodUserPointers::supported(m_fd));
    EXPECT_TRUE(InputMethodMemoryMapping::supported(m_fd));
}

TEST_F(VividUserPointersTest, FramesAreThoseThatV4l2CtlWrites)
{
    InputMethodUserPointers method(m_fd);
    ASSERT_TRUE(startsWithoutPipe(method, 4));
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
    expectToEnd(method);
}

TEST_F(VividUserPointersTest, WithAllBuffersHeldNoFrameComesWithinTwoSeconds)
{
    InputMethodUserPointers method(m_fd);
    ASSERT_TRUE(startsWithoutPipe(method, 2));
    IFrame* const first = method.acquireFrame();
    ASSERT_FALSE(first->isInvalid());
    ASSERT_FALSE(method.acquireFrame()->isInvalid());
    double const begin = monotonicSeconds();
    EXPECT_TRUE(method.acquireFrame()->isInvalid());
    EXPECT_GE(monotonicSeconds() - begin, 1.99);
    EXPECT_EQ(method.releaseFrame(first), 0);
    EXPECT_EQ(method.acquireFrame(), first);
    expectToEnd(method);
}

TEST_F(VividUserPointersTest, StoppingTheStreamEndsAWaitWithoutAPipe)
{
    InputMethodUserPointers method(m_fd);
    ASSERT_TRUE(startsWithoutPipe(method, 2));
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

TEST_F(VividUserPointersTest, MappingWorksStraightToo)
{
    InputMethodMemoryMapping method(m_fd);
    ASSERT_EQ(method.setup(4, smallSize), 0);
    ASSERT_EQ(method.startCapture(), 0);
    IFrame* const frame = method.acquireFrame();
    EXPECT_TRUE(bytesOf(*frame) == m_wanted);
    EXPECT_EQ(method.releaseFrame(frame), 0);
    expectToEnd(method);
}

} // namespace
