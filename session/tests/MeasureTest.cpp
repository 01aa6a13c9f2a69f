// SPDX-License-Identifier: MIT
#include "Measure.h"

#include <gtest/gtest.h>

namespace
{

using namespace ImageAcquisition::Session;
using namespace std::chrono_literals;

/// Frames of a camera that is to send one every 40 ms.
class MeasureTest : public testing::Test
{
protected:
    MeasureTest() { m_measure.begin({25, 1}); }

    /// @param after the frame before.
    unsigned long long came(unsigned long long number, std::chrono::milliseconds after = 40ms)
    {
        m_now += after;
        return m_measure.came({number, m_now, false, false});
    }

    Measure m_measure;
    Measure::Clock::time_point m_now{1h};
};

TEST_F(MeasureTest, CountsNothingAtFirst)
{
    Statistics const none = m_measure.statistics();
    EXPECT_EQ(none.received, 0u);
    EXPECT_EQ(none.rate, 0);
    EXPECT_EQ(none.jitter.count(), 0);
    EXPECT_EQ(none.age.count(), 0);
}

TEST_F(MeasureTest, TakesGapsForLosses)
{
    EXPECT_EQ(came(7), 0u);
    EXPECT_EQ(came(8), 0u);
    EXPECT_EQ(came(11), 2u);
    EXPECT_EQ(came(12), 0u);
    EXPECT_EQ(came(14), 1u);
    EXPECT_EQ(m_measure.statistics().lost, 3u);
    EXPECT_EQ(m_measure.statistics().received, 5u);
}

TEST_F(MeasureTest, TakesRestartsForNoLosses)
{
    came(100);
    EXPECT_EQ(came(0), 0u);
    EXPECT_EQ(came(0), 0u);
    m_measure.begin({25, 1});
    EXPECT_EQ(came(50), 0u);
    EXPECT_EQ(m_measure.statistics().lost, 0u);
}

TEST_F(MeasureTest, CountsDamagedAndShortOnes)
{
    m_measure.came({0, m_now, true, false});
    m_measure.came({1, m_now, true, true});
    m_measure.came({2, m_now, false, false});
    EXPECT_EQ(m_measure.statistics().damaged, 2u);
    EXPECT_EQ(m_measure.statistics().shortened, 1u);
}

TEST_F(MeasureTest, CountsLateOnesByWhatIsSelected)
{
    came(0);
    came(1, 59ms);
    EXPECT_EQ(m_measure.statistics().late, 0u);
    came(2, 61ms);
    EXPECT_EQ(m_measure.statistics().late, 1u);
}

TEST_F(MeasureTest, CountsNoFrameAsLateForThoseThatWereLost)
{
    came(0);
    came(3, 120ms);
    EXPECT_EQ(m_measure.statistics().late, 0u);
    came(5, 110ms);
    EXPECT_EQ(m_measure.statistics().late, 1u);
}

TEST_F(MeasureTest, CountsLateOnesByTheMeanWhereNoRateIsKnown)
{
    m_measure.begin({});
    came(0);
    came(1, 100ms);
    came(2, 100ms);
    EXPECT_EQ(m_measure.statistics().late, 0u);
    came(3, 151ms);
    EXPECT_EQ(m_measure.statistics().late, 1u);
}

TEST_F(MeasureTest, TellsRateAndJitter)
{
    came(0);
    for (unsigned long long number = 1; number <= 10; ++number) {
        came(number, number % 2 == 0 ? 30ms : 50ms);
    }
    EXPECT_NEAR(m_measure.statistics().rate, 25, 1e-6);
    EXPECT_NEAR(m_measure.statistics().jitter.count(), 10, 1e-6);
}

TEST_F(MeasureTest, LeavesTheTimeOutInWhichTheCameraWasAway)
{
    came(0);
    came(1);
    m_measure.begin({25, 1});
    m_measure.cameBack();
    came(0, 1h);
    came(1);
    EXPECT_NEAR(m_measure.statistics().rate, 25, 1e-6);
    EXPECT_EQ(m_measure.statistics().late, 0u);
    EXPECT_EQ(m_measure.statistics().returns, 1u);
}

TEST_F(MeasureTest, TellsTheAgeAtDelivery)
{
    m_measure.handedOut(10ms);
    m_measure.handedOut(30ms);
    m_measure.handedOut(20ms);
    EXPECT_NEAR(m_measure.statistics().age.count(), 20, 1e-6);
    EXPECT_NEAR(m_measure.statistics().oldest.count(), 30, 1e-6);
}

TEST_F(MeasureTest, CountsWhatTheClientDid)
{
    m_measure.threwAway();
    m_measure.timedOut();
    m_measure.timedOut();
    EXPECT_EQ(m_measure.statistics().thrownAway, 1u);
    EXPECT_EQ(m_measure.statistics().timeOuts, 2u);
}

} // namespace
