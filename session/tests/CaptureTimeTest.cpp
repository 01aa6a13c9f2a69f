// SPDX-License-Identifier: MIT
#include "CaptureTime.h"

#include <gtest/gtest.h>

#include <climits>

namespace
{

using namespace ImageAcquisition;
using namespace ImageAcquisition::Session;
using namespace std::chrono;

template <typename Clock>
FrameTimeStamp stampOf(time_point<Clock> time)
{
    auto const whole = duration_cast<microseconds>(time.time_since_epoch()).count();
    return {whole / 1000000, whole % 1000000};
}

TEST(CaptureTimeTest, IsTheStampByTheMonotonicClock)
{
    auto const now = steady_clock::now();
    auto const captured = now - 30ms;
    EXPECT_LT(captured - capturedAt(stampOf(captured), now), 2us);
    EXPECT_LT(capturedAt(stampOf(captured), now) - captured, 2us);
}

TEST(CaptureTimeTest, IsFoundOutWhenTheStampIsByTheTimeOfDay)
{
    auto const now = steady_clock::now();
    auto const captured = capturedAt(stampOf(system_clock::now() - 30ms), now);
    EXPECT_GE(now - captured, 29ms);
    EXPECT_LT(now - captured, 1s);
}

TEST(CaptureTimeTest, IsWhenTheFrameCameWhereTheStampSaysNothing)
{
    auto const now = steady_clock::now();
    EXPECT_EQ(capturedAt({}, now), now);
    EXPECT_EQ(capturedAt(stampOf(now + 1h), now), now);
    EXPECT_EQ(capturedAt(stampOf(system_clock::now() - 1h), now), now);
    EXPECT_EQ(capturedAt({LLONG_MAX, LLONG_MAX}, now), now);
    EXPECT_EQ(capturedAt({LLONG_MIN, LLONG_MIN}, now), now);
}

TEST(CaptureTimeTest, IsNeverInTheFuture)
{
    auto const now = steady_clock::now();
    EXPECT_EQ(capturedAt(stampOf(now + 20ms), now), now);
}

} // namespace
