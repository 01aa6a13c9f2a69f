// SPDX-License-Identifier: MIT
#include "monitor/SelfPipe.h"

#include "DescriptorCount.h"
#include "DescriptorLimit.h"
#include "monitor/DescriptorSet.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

namespace
{

using namespace ImageAcquisition;

int waitWithoutTime(int fd)
{
    DescriptorSet set;
    set.add(fd);
    timeval noTime{};
    return set.waitReadable(&noTime);
}

TEST(SelfPipe, IsClosedUntilItIsOpened)
{
    SelfPipe pipe;
    EXPECT_EQ(-1, pipe.readingEnd());
    ASSERT_TRUE(pipe.open());
    EXPECT_NE(-1, fcntl(pipe.readingEnd(), F_GETFD));
    pipe.close();
    EXPECT_EQ(-1, pipe.readingEnd());
}

TEST(SelfPipe, MakesBothEndsNonBlocking)
{
    SelfPipe pipe;
    ASSERT_TRUE(pipe.open());
    EXPECT_NE(0, fcntl(pipe.readingEnd(), F_GETFL) & O_NONBLOCK);
    // A writing end that blocks would hang here as soon as the pipe is full.
    for (int i = 0; i < 70000; ++i) {
        pipe.write();
    }
    pipe.close();
}

TEST(SelfPipe, IsNotReadableBeforeItIsWrittenTo)
{
    SelfPipe pipe;
    ASSERT_TRUE(pipe.open());
    EXPECT_EQ(0, waitWithoutTime(pipe.readingEnd()));
    pipe.close();
}

TEST(SelfPipe, StaysReadableOnceItWasWrittenTo)
{
    SelfPipe pipe;
    ASSERT_TRUE(pipe.open());
    pipe.write();
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(1, waitWithoutTime(pipe.readingEnd()));
    }
    pipe.close();
}

TEST(SelfPipe, WritesTheOneByteX)
{
    SelfPipe pipe;
    ASSERT_TRUE(pipe.open());
    pipe.write();
    char bytes[4] = {};
    EXPECT_EQ(1, read(pipe.readingEnd(), bytes, sizeof bytes));
    EXPECT_EQ('x', bytes[0]);
    pipe.close();
}

TEST(SelfPipe, IsFreshAfterItWasOpenedAgain)
{
    SelfPipe pipe;
    ASSERT_TRUE(pipe.open());
    pipe.write();
    pipe.close();
    ASSERT_TRUE(pipe.open());
    EXPECT_EQ(0, waitWithoutTime(pipe.readingEnd()));
    pipe.close();
}

TEST(SelfPipe, ClosesEndsThatAreOpenBeforeItOpensNewOnes)
{
    int const before = openDescriptors();
    SelfPipe pipe;
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(pipe.open());
        EXPECT_EQ(before + 2, openDescriptors());
    }
    pipe.close();
    EXPECT_EQ(before, openDescriptors());
}

TEST(SelfPipe, ReportsThatNoPipeCouldBeMade)
{
    SelfPipe pipe;
    {
        DescriptorLimit const none;
        EXPECT_FALSE(pipe.open());
        EXPECT_EQ(-1, pipe.readingEnd());
    }
    EXPECT_TRUE(pipe.open());
    pipe.close();
}

TEST(SelfPipe, DoesNothingWhenItIsWrittenToOrClosedWhileClosed)
{
    int const before = openDescriptors();
    SelfPipe pipe;
    pipe.write();
    pipe.close();
    pipe.close();
    EXPECT_EQ(before, openDescriptors());
}

TEST(SelfPipe, LeavesItsDescriptorsToItsOwner)
{
    int const free = dup(STDERR_FILENO);
    ASSERT_NE(-1, free);
    close(free);
    {
        SelfPipe pipe;
        ASSERT_TRUE(pipe.open());
        ASSERT_EQ(free, pipe.readingEnd());
    }
    EXPECT_EQ(0, close(free));
    // The writing end is the next descriptor that was free.
    int next = free + 1;
    EXPECT_EQ(0, close(next));
}

} // namespace
