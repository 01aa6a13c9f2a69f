// SPDX-License-Identifier: MIT
#include "system/DescriptorSet.h"

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>

namespace
{

using ImageAcquisition::DescriptorSet;

/// A pipe, its reading end moved to a chosen number.
class Pipe
{
public:
    explicit Pipe(int readingEnd = -1)
    {
        int ends[2] = {-1, -1};
        if (pipe(ends) != 0) {
            return;
        }
        m_reading = ends[0];
        m_writing = ends[1];
        if (readingEnd != -1) {
            m_reading = dup2(ends[0], readingEnd);
            close(ends[0]);
        }
    }
    Pipe(Pipe const&) = delete;
    Pipe& operator=(Pipe const&) = delete;
    ~Pipe()
    {
        close(m_reading);
        close(m_writing);
    }

    int readingEnd() const { return m_reading; }
    void fill() const { EXPECT_EQ(write(m_writing, "x", 1), 1); }

private:
    int m_reading = -1;
    int m_writing = -1;
};

class DescriptorSetTest : public testing::TestWithParam<int>
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &m_earlier), 0);
        rlimit raised = m_earlier;
        raised.rlim_cur = static_cast<rlim_t>(GetParam()) + 16;
        if (raised.rlim_max < raised.rlim_cur) {
            GTEST_SKIP() << "the process may not have descriptor " << GetParam();
        }
        ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &raised), 0);
    }
    void TearDown() override { setrlimit(RLIMIT_NOFILE, &m_earlier); }

    static timeval noTime() { return {}; }

private:
    rlimit m_earlier{};
};

TEST_P(DescriptorSetTest, AreWaitedFor)
{
    Pipe const pipe(GetParam());
    ASSERT_EQ(pipe.readingEnd(), GetParam());
    DescriptorSet set;
    set.add(pipe.readingEnd());
    timeval none = noTime();
    EXPECT_EQ(set.waitReadable(&none), 0);
    EXPECT_FALSE(set.isReady(pipe.readingEnd()));
    pipe.fill();
    EXPECT_EQ(set.waitReadable(&none), 1);
    EXPECT_TRUE(set.isReady(pipe.readingEnd()));
}

TEST_P(DescriptorSetTest, AreToldFromSmallOnesInTheSameSet)
{
    Pipe const small;
    Pipe const large(GetParam());
    ASSERT_EQ(large.readingEnd(), GetParam());
    for (bool const smallFirst : {true, false}) {
        DescriptorSet set;
        set.add(smallFirst ? small.readingEnd() : large.readingEnd());
        set.add(smallFirst ? large.readingEnd() : small.readingEnd());
        if (smallFirst) {
            small.fill();
        }
        timeval none = noTime();
        EXPECT_EQ(set.waitReadable(&none), 1);
        EXPECT_TRUE(set.isReady(small.readingEnd()));
        EXPECT_FALSE(set.isReady(large.readingEnd()));
    }
}

INSTANTIATE_TEST_SUITE_P(Sizes, DescriptorSetTest,
                         testing::Values(FD_SETSIZE - 1, FD_SETSIZE, FD_SETSIZE + 1, 1088, 4000));

TEST(DescriptorSetTest, LeavesNegativeDescriptorsOut)
{
    Pipe const pipe;
    DescriptorSet set;
    set.add(-1);
    set.add(-2147483647 - 1);
    set.add(pipe.readingEnd());
    pipe.fill();
    timeval none{};
    EXPECT_EQ(set.waitReadable(&none), 1);
    EXPECT_FALSE(set.isReady(-1));
    EXPECT_TRUE(set.isReady(pipe.readingEnd()));
}

TEST(DescriptorSetTest, WaitsForTheTimeAloneWhenItIsEmpty)
{
    DescriptorSet set;
    set.add(-1);
    timeval aMillisecond{0, 1000};
    EXPECT_EQ(set.waitReadable(&aMillisecond), 0);
}

TEST(DescriptorSetTest, CanBeWaitedForAgain)
{
    Pipe const pipe;
    DescriptorSet set;
    set.add(pipe.readingEnd());
    timeval none{};
    EXPECT_EQ(set.waitReadable(&none), 0);
    pipe.fill();
    EXPECT_EQ(set.waitReadable(&none), 1);
    EXPECT_EQ(set.waitReadable(&none), 1);
}

TEST(DescriptorSetTest, WaitsWithoutLimitWhenNoTimeIsGiven)
{
    Pipe const pipe;
    pipe.fill();
    DescriptorSet set;
    set.add(pipe.readingEnd());
    EXPECT_EQ(set.waitReadable(nullptr), 1);
}

TEST(DescriptorSetTest, ReportsAFailedWaitAndNothingReady)
{
    int closed = -1;
    {
        Pipe const pipe;
        closed = pipe.readingEnd();
    }
    DescriptorSet set;
    set.add(closed);
    timeval none{};
    errno = 0;
    EXPECT_EQ(set.waitReadable(&none), -1);
    EXPECT_EQ(errno, EBADF);
    EXPECT_FALSE(set.isReady(closed));
}

TEST(DescriptorSetTest, KnowsNothingReadyThatWasNotAdded)
{
    Pipe const added;
    Pipe const other;
    added.fill();
    other.fill();
    DescriptorSet set;
    set.add(added.readingEnd());
    timeval none{};
    EXPECT_EQ(set.waitReadable(&none), 1);
    EXPECT_FALSE(set.isReady(other.readingEnd()));
    EXPECT_FALSE(set.isReady(100000));
}

} // namespace
