// SPDX-License-Identifier: MIT
#include "input/InputMethod.h"

#include "DescriptorCount.h"
#include "DescriptorLimit.h"
#include "Interruptions.h"
#include "Stopwatch.h"

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <unistd.h>

#include <optional>

namespace
{

using namespace ImageAcquisition;

/// The base alone.
class PlainInputMethod : public InputMethod
{
public:
    explicit PlainInputMethod(int fd) : InputMethod(Read, fd) {}

    int startCapture() override { return 0; }
    IFrame* acquireFrame() override { return IFrame::invalid(); }
    int releaseFrame(IFrame*) override { return 0; }

    using InputMethod::stopPending;
};

class InputMethodTest : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(pipe(m_ends), 0);
        m_method.emplace(m_ends[0]);
    }
    void TearDown() override
    {
        m_method.reset();
        close(m_ends[0]);
        close(m_ends[1]);
    }

    int device() const { return m_ends[0]; }
    void deliver() const { ASSERT_EQ(write(m_ends[1], "x", 1), 1); }

    /// Waits on a pipe that stands for the device.
    std::optional<PlainInputMethod> m_method;

private:
    int m_ends[2] = {-1, -1};
};

TEST_F(InputMethodTest, NumbersTheMethods)
{
    EXPECT_EQ(InputMethod::Read, 0);
    EXPECT_EQ(InputMethod::MemoryMapping, 1);
    EXPECT_EQ(InputMethod::UserPointers, 2);
    EXPECT_EQ(m_method->type(), InputMethod::Read);
}

TEST_F(InputMethodTest, WaitsAsLongAsItIsToldForADeviceThatDeliversNothing)
{
    ASSERT_EQ(m_method->setup(1, 1), 0);
    Stopwatch const watch;
    EXPECT_FALSE(m_method->dataAvailable(2, 0));
    EXPECT_GE(watch.seconds(), 1.99);
    EXPECT_LT(watch.seconds(), 3);
}

TEST_F(InputMethodTest, TakesTheMicrosecondsOfAWaitIntoAccount)
{
    Stopwatch const watch;
    EXPECT_FALSE(m_method->dataAvailable(0, 50000));
    EXPECT_GE(watch.seconds(), 0.05);
    EXPECT_LT(watch.seconds(), 1);
}

TEST_F(InputMethodTest, EndsAWaitWhenTheDeviceDelivers)
{
    ASSERT_EQ(m_method->setup(1, 1), 0);
    deliver();
    Stopwatch const watch;
    EXPECT_TRUE(m_method->dataAvailable(2, 0));
    EXPECT_LT(watch.seconds(), 1);
}

TEST_F(InputMethodTest, EndsEveryWaitAtOnceAfterAStopUntilCleanup)
{
    ASSERT_EQ(m_method->setup(1, 1), 0);
    EXPECT_FALSE(m_method->stopPending());
    EXPECT_EQ(m_method->stopCapture(), 0);
    Stopwatch const watch;
    for (int i = 0; i < 5; ++i) {
        EXPECT_TRUE(m_method->dataAvailable(2, 0));
        EXPECT_TRUE(m_method->stopPending());
    }
    EXPECT_LT(watch.seconds(), 1);
    EXPECT_EQ(m_method->cleanup(), 0);
    EXPECT_FALSE(m_method->dataAvailable(0, 0));
    EXPECT_FALSE(m_method->stopPending());
}

TEST_F(InputMethodTest, GivesAWaiterTenMillisecondsToLeave)
{
    Stopwatch const watch;
    EXPECT_EQ(m_method->stopCapture(), 0);
    EXPECT_GE(watch.seconds(), 0.01);
}

TEST_F(InputMethodTest, GivesAWaiterItsTenMillisecondsWhateverSignalsCome)
{
    Interruptions const interruptions;
    Stopwatch const watch;
    EXPECT_EQ(m_method->stopCapture(), 0);
    EXPECT_GE(watch.seconds(), 0.01);
    EXPECT_GE(Interruptions::count, 1);
}

TEST_F(InputMethodTest, WaitsForTheDeviceAloneWhileItHasNoPipe)
{
    EXPECT_FALSE(m_method->dataAvailable(0, 1000));
    deliver();
    EXPECT_TRUE(m_method->dataAvailable(2, 0));
}

TEST_F(InputMethodTest, DoesNotWaitForANegativeDevice)
{
    PlainInputMethod without(-1);
    ASSERT_EQ(without.setup(1, 1), 0);
    Stopwatch const watch;
    EXPECT_FALSE(without.dataAvailable(2, 0));
    without.stopCapture();
    EXPECT_FALSE(without.dataAvailable(2, 0)) << "a stop is no data of a device that is not there";
    EXPECT_LT(watch.seconds(), 1);
}

TEST_F(InputMethodTest, ReportsNothingWhenTheWaitFails)
{
    int const closed = dup(device());
    close(closed);
    PlainInputMethod const broken(closed);
    Stopwatch const watch;
    EXPECT_FALSE(broken.dataAvailable(2, 0));
    EXPECT_LT(watch.seconds(), 1);
}

TEST_F(InputMethodTest, WaitsForTheRestOfItsTimeAfterASignal)
{
    Interruptions const interruptions;
    Stopwatch const watch;
    EXPECT_FALSE(m_method->dataAvailable(0, 200000));
    EXPECT_GE(watch.seconds(), 0.19);
    EXPECT_LT(watch.seconds(), 1);
    // The thread sanitizer holds handlers back until the wait is over, and runs only one then.
    EXPECT_GE(Interruptions::count, 1);
}

TEST_F(InputMethodTest, WaitsForADescriptorBeyondAnFdSet)
{
    constexpr int large = FD_SETSIZE + 500;
    rlimit earlier{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &earlier), 0);
    rlimit raised = earlier;
    raised.rlim_cur = large + 1;
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &raised), 0);
    ASSERT_EQ(dup2(device(), large), large);
    PlainInputMethod far(large);
    ASSERT_EQ(far.setup(1, 1), 0);
    EXPECT_FALSE(far.dataAvailable(0, 1000));
    deliver();
    EXPECT_TRUE(far.dataAvailable(2, 0));
    close(large);
    setrlimit(RLIMIT_NOFILE, &earlier);
}

TEST_F(InputMethodTest, FailsToSetUpWithoutAPipe)
{
    DescriptorLimit const none;
    EXPECT_EQ(m_method->setup(1, 1), -1);
}

TEST_F(InputMethodTest, LosesNoDescriptorWhenItIsSetUpAgain)
{
    int const before = openDescriptors();
    for (int i = 0; i < 3; ++i) {
        ASSERT_EQ(m_method->setup(1, 1), 0);
        EXPECT_EQ(openDescriptors(), before + 2);
    }
    EXPECT_EQ(m_method->cleanup(), 0);
    EXPECT_EQ(openDescriptors(), before);
}

TEST_F(InputMethodTest, ForgetsAStopWhenItIsSetUpAgain)
{
    ASSERT_EQ(m_method->setup(1, 1), 0);
    m_method->stopCapture();
    m_method->cleanup();
    ASSERT_EQ(m_method->setup(1, 1), 0);
    EXPECT_FALSE(m_method->dataAvailable(0, 0));
}

TEST_F(InputMethodTest, ClosesItsPipeWithItself)
{
    int const before = openDescriptors();
    {
        PlainInputMethod other(device());
        ASSERT_EQ(other.setup(1, 1), 0);
    }
    EXPECT_EQ(openDescriptors(), before);
}

} // namespace
