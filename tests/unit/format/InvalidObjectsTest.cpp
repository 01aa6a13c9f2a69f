// SPDX-License-Identifier: MIT
#include "format/ImageFormat.h"

#include <gtest/gtest.h>

#include <set>
#include <thread>
#include <vector>

namespace
{

using namespace ImageAcquisition;

/// What several threads that all ask at once are given.
template <typename Object>
std::set<Object const*> instancesOfManyThreads(Object const* (*ask)())
{
    std::vector<Object const*> seen(8);
    std::vector<std::thread> threads;
    for (auto& place : seen) {
        threads.emplace_back([&place, ask] { place = ask(); });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    return {seen.begin(), seen.end()};
}

TEST(InvalidFramePeriod, IsZeroOverOne)
{
    IFramePeriod const* const period = IFramePeriod::invalid();
    EXPECT_TRUE(period->isInvalid());
    EXPECT_EQ(0u, period->numerator());
    EXPECT_EQ(1u, period->denominator());
}

TEST(InvalidFrameSize, IsZeroInEveryRespect)
{
    IFrameSize const* const size = IFrameSize::invalid();
    EXPECT_TRUE(size->isInvalid());
    EXPECT_EQ(0u, size->width());
    EXPECT_EQ(0u, size->height());
    EXPECT_EQ(0, size->bytesPerLine());
    EXPECT_EQ(0, size->periodNumber());
    for (int const index : {-1, 0, 1}) {
        EXPECT_EQ(IFramePeriod::invalid(), size->period(index));
    }
}

TEST(InvalidImageFormat, IsCalledInvalidAndHasNoSizes)
{
    IImageFormat const* const format = IImageFormat::invalid();
    EXPECT_TRUE(format->isInvalid());
    EXPECT_FALSE(format->isCompressed());
    EXPECT_FALSE(format->isEmulated());
    EXPECT_STREQ("Invalid", format->name());
    EXPECT_STREQ("Invalid", format->description());
    EXPECT_EQ(0, format->sizeNumber());
    for (int const index : {-1, 0, 1}) {
        EXPECT_EQ(IFrameSize::invalid(), format->frameSize(index));
    }
}

TEST(InvalidObjects, AreThoseOfTheirClasses)
{
    InvalidFramePeriod const& period = InvalidFramePeriod::getUniqueInstance();
    InvalidFrameSize const& size = InvalidFrameSize::getUniqueInstance();
    InvalidImageFormat const& format = InvalidImageFormat::getUniqueInstance();
    EXPECT_EQ(&period, IFramePeriod::invalid());
    EXPECT_EQ(&size, IFrameSize::invalid());
    EXPECT_EQ(&format, IImageFormat::invalid());
}

TEST(InvalidObjects, AreOneOfEachKindForAllThreads)
{
    EXPECT_EQ(1u, instancesOfManyThreads(&IFramePeriod::invalid).size());
    EXPECT_EQ(1u, instancesOfManyThreads(&IFrameSize::invalid).size());
    EXPECT_EQ(1u, instancesOfManyThreads(&IImageFormat::invalid).size());
}

} // namespace
