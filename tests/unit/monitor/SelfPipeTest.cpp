// SPDX-License-Identifier: MIT
#include "monitor/SelfPipe.h"

#include "Await.h"
#include "DescriptorCount.h"
#include "DescriptorLimit.h"
#include "UdevHook.h"
#include "system/DescriptorSet.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <thread>

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

ino_t inodeOf(int fd)
{
    struct stat status = {};
    return fstat(fd, &status) == 0 ? status.st_ino : 0;
}

/// The descriptors of the pipe that one end of is given.
std::vector<int> endsOf(int end)
{
    std::vector<int> ends;
    for (int fd = 0; fd < 1024; ++fd) {
        if (inodeOf(fd) == inodeOf(end)) {
            ends.push_back(fd);
        }
    }
    return ends;
}

TEST(SelfPipeTest, IsClosedUntilItIsOpened)
{
    SelfPipe pipe;
    EXPECT_EQ(pipe.readingEnd(), -1);
    ASSERT_TRUE(pipe.open());
    EXPECT_NE(fcntl(pipe.readingEnd(), F_GETFD), -1);
    pipe.close();
    EXPECT_EQ(pipe.readingEnd(), -1);
}

TEST(SelfPipeTest, MakesBothEndsNonBlocking)
{
    SelfPipe pipe;
    ASSERT_TRUE(pipe.open());
    EXPECT_NE(fcntl(pipe.readingEnd(), F_GETFL) & O_NONBLOCK, 0);
    // A writing end that blocks would hang here as soon as the pipe is full.
    for (int i = 0; i < 70000; ++i) {
        pipe.write();
    }
    pipe.close();
}

TEST(SelfPipeTest, IsNotReadableBeforeItIsWrittenTo)
{
    SelfPipe pipe;
    ASSERT_TRUE(pipe.open());
    EXPECT_EQ(waitWithoutTime(pipe.readingEnd()), 0);
    pipe.close();
}

TEST(SelfPipeTest, StaysReadableOnceItWasWrittenTo)
{
    SelfPipe pipe;
    ASSERT_TRUE(pipe.open());
    pipe.write();
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(waitWithoutTime(pipe.readingEnd()), 1);
    }
    pipe.close();
}

TEST(SelfPipeTest, WritesTheOneByteX)
{
    SelfPipe pipe;
    ASSERT_TRUE(pipe.open());
    pipe.write();
    char bytes[4] = {};
    EXPECT_EQ(read(pipe.readingEnd(), bytes, sizeof bytes), 1);
    EXPECT_EQ(bytes[0], 'x');
    pipe.close();
}

TEST(SelfPipeTest, IsFreshAfterItWasOpenedAgain)
{
    SelfPipe pipe;
    ASSERT_TRUE(pipe.open());
    pipe.write();
    pipe.close();
    ASSERT_TRUE(pipe.open());
    EXPECT_EQ(waitWithoutTime(pipe.readingEnd()), 0);
    pipe.close();
}

TEST(SelfPipeTest, ClosesEndsThatAreOpenBeforeItOpensNewOnes)
{
    int const before = openDescriptors();
    SelfPipe pipe;
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(pipe.open());
        EXPECT_EQ(openDescriptors(), before + 2);
    }
    pipe.close();
    EXPECT_EQ(openDescriptors(), before);
}

TEST(SelfPipeTest, ReportsThatNoPipeCouldBeMade)
{
    SelfPipe pipe;
    {
        DescriptorLimit const none;
        EXPECT_FALSE(pipe.open());
        EXPECT_EQ(pipe.readingEnd(), -1);
    }
    EXPECT_TRUE(pipe.open());
    pipe.close();
}

TEST(SelfPipeTest, DoesNothingWhenItIsWrittenToOrClosedWhileClosed)
{
    int const before = openDescriptors();
    SelfPipe pipe;
    pipe.write();
    pipe.close();
    pipe.close();
    EXPECT_EQ(openDescriptors(), before);
}

TEST(SelfPipeTest, IsNotInheritedByProgramsThatTheProcessStarts)
{
    SelfPipe pipe;
    ASSERT_TRUE(pipe.open());
    std::vector<int> const ends = endsOf(pipe.readingEnd());
    EXPECT_EQ(ends.size(), 2u);
    for (int const end : ends) {
        EXPECT_NE(fcntl(end, F_GETFD) & FD_CLOEXEC, 0) << end;
    }
    pipe.close();
}

TEST(SelfPipeTest, WaitsForAWriterBeforeItClosesItsEnds)
{
    SelfPipe pipe;
    ASSERT_TRUE(pipe.open());
    int const end = pipe.readingEnd();
    ino_t const inode = inodeOf(end);
    HeldThread const held(UdevHook::Place::Write);
    std::thread writer([&] { pipe.write(); });
    ASSERT_TRUE(HeldThread::awaitArrival());

    int const pauses = UdevHook::pauses();
    std::thread closer([&] { pipe.close(); });
    EXPECT_TRUE(await([&] { return UdevHook::pauses() != pauses; })) << "it closed under a writer";
    EXPECT_EQ(pipe.readingEnd(), -1);
    EXPECT_EQ(inodeOf(end), inode);
    HeldThread::release();
    writer.join();
    closer.join();
    EXPECT_NE(inodeOf(end), inode);
}

// A write to a pipe that nobody can read any more ends the process.
TEST(SelfPipeTest, DoesNotEndTheProcessOfAWriterThatComesBetweenItsTwoEnds)
{
    SelfPipe pipe;
    ASSERT_TRUE(pipe.open());
    int const readEnd = pipe.readingEnd();
    std::vector<bool> readable;
    UdevHook hook;
    hook.afterClosing([&] {
        readable.push_back(fcntl(readEnd, F_GETFD) != -1);
        pipe.write();
    });
    pipe.close();
    EXPECT_EQ(readable, (std::vector<bool>{true, false})) << "the writing end goes first";
}

TEST(SelfPipeTest, DoesNotEndTheProcessOfAThreadThatWritesWhileItCloses)
{
    SelfPipe pipe;
    std::atomic<bool> finished{false};
    std::atomic<int> writes{0};
    std::thread writer([&] {
        while (!finished) {
            pipe.write();
            ++writes;
        }
    });
    for (int round = 0; round < 200; ++round) {
        ASSERT_TRUE(pipe.open());
        int const before = writes;
        EXPECT_TRUE(await([&] { return writes != before; }));
        pipe.close();
    }
    finished = true;
    writer.join();
}

TEST(SelfPipeTest, WritesToNothingOnceItIsClosed)
{
    SelfPipe pipe;
    ASSERT_TRUE(pipe.open());
    int const end = pipe.readingEnd();
    pipe.close();
    SelfPipe other;
    ASSERT_TRUE(other.open());
    ASSERT_EQ(other.readingEnd(), end) << "the test needs the same number again";
    pipe.write();
    EXPECT_EQ(waitWithoutTime(other.readingEnd()), 0);
    other.close();
}

TEST(SelfPipeTest, LeavesItsDescriptorsToItsOwner)
{
    int const free = dup(STDERR_FILENO);
    ASSERT_NE(free, -1);
    close(free);
    {
        SelfPipe pipe;
        ASSERT_TRUE(pipe.open());
        ASSERT_EQ(pipe.readingEnd(), free);
    }
    EXPECT_EQ(close(free), 0);
    // The writing end is the next descriptor that was free.
    int next = free + 1;
    EXPECT_EQ(close(next), 0);
}

} // namespace
