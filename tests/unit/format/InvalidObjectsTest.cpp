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

TEST(InvalidObjectsTest, FramePeriodIsZeroOverOne)
{
    IFramePeriod const* const period = IFramePeriod::invalid();
    EXPECT_TRUE(period->isInvalid());
    EXPECT_EQ(period->numerator(), 0u);
    EXPECT_EQ(period->denominator(), 1u);
}

TEST(InvalidObjectsTest, FrameSizeIsZeroInEveryRespect)
{
    IFrameSize const* const size = IFrameSize::invalid();
    EXPECT_TRUE(size->isInvalid());
    EXPECT_EQ(size->width(), 0u);
    EXPECT_EQ(size->height(), 0u);
    EXPECT_EQ(size->bytesPerLine(), 0);
    EXPECT_EQ(size->periodNumber(), 0);
    for (int const index : {-1, 0, 1}) {
        EXPECT_EQ(IFramePeriod::invalid(), size->period(index));
    }
}

TEST(InvalidObjectsTest, ImageFormatIsCalledInvalidAndHasNoSizes)
{
    IImageFormat const* const format = IImageFormat::invalid();
    EXPECT_TRUE(format->isInvalid());
    EXPECT_FALSE(format->isCompressed());
    EXPECT_FALSE(format->isEmulated());
    EXPECT_STREQ(format->name(), "Invalid");
    EXPECT_STREQ(format->description(), "Invalid");
    EXPECT_EQ(format->sizeNumber(), 0);
    for (int const index : {-1, 0, 1}) {
        EXPECT_EQ(IFrameSize::invalid(), format->frameSize(index));
    }
}

TEST(InvalidObjectsTest, AreThoseOfTheirClasses)
{
    InvalidFramePeriod const& period = InvalidFramePeriod::getUniqueInstance();
    InvalidFrameSize const& size = InvalidFrameSize::getUniqueInstance();
    InvalidImageFormat const& format = InvalidImageFormat::getUniqueInstance();
    EXPECT_EQ(IFramePeriod::invalid(), &period);
    EXPECT_EQ(IFrameSize::invalid(), &size);
    EXPECT_EQ(IImageFormat::invalid(), &format);
}

TEST(InvalidObjectsTest, AreOneOfEachKindForAllThreads)
{
    EXPECT_EQ(instancesOfManyThreads(&IFramePeriod::invalid).size(), 1u);
    EXPECT_EQ(instancesOfManyThreads(&IFrameSize::invalid).size(), 1u);
    EXPECT_EQ(instancesOfManyThreads(&IImageFormat::invalid).size(), 1u);
}

} // namespace
