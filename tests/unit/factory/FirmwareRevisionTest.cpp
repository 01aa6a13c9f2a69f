// SPDX-License-Identifier: MIT
#include "factory/FirmwareRevision.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

using ImageAcquisition::firmwareRank;
using ImageAcquisition::hasSerialControls;

constexpr long long largestInt = 2147483647;

TEST(FirmwareRevisionTest, RanksMajorMinorAndPatchWithTheWeights100And10And1)
{
    EXPECT_EQ(firmwareRank("TJ8-1.2.9"), 129);
    EXPECT_EQ(firmwareRank("TJ8-1.3.0"), 130);
    EXPECT_EQ(firmwareRank("TJ8-30.0.10"), 3010);
}

TEST(FirmwareRevisionTest, LetsAMinorNumberOfTenOrMoreOverlapTheMajorNumber)
{
    EXPECT_EQ(firmwareRank("TJ8-1.3.0"), firmwareRank("TJ8-0.13.0"));
}

TEST(FirmwareRevisionTest, HasSerialControlsFromRank130On)
{
    EXPECT_FALSE(hasSerialControls(129));
    EXPECT_TRUE(hasSerialControls(130));
    EXPECT_FALSE(hasSerialControls(0));
}

TEST(FirmwareRevisionTest, CountsNumbersThatTheTextLacksAsZero)
{
    EXPECT_EQ(firmwareRank("TJ8-1"), 100);
    EXPECT_EQ(firmwareRank("TJ8-1."), 100);
    EXPECT_EQ(firmwareRank("TJ8-1.3"), 130);
    EXPECT_EQ(firmwareRank("TJ8-1.3."), 130);
    EXPECT_EQ(firmwareRank("TJ8-1.3.beta"), 130);
    EXPECT_EQ(firmwareRank("TJ8-1..9"), 100);
    EXPECT_EQ(firmwareRank("TJ8-1-3.9"), 100);
}

TEST(FirmwareRevisionTest, IgnoresWhatFollowsThePatchNumber)
{
    EXPECT_EQ(firmwareRank("TJ8-1.3.4-rc2"), 134);
    EXPECT_EQ(firmwareRank("TJ8-1.3.4.9"), 134);
}

TEST(FirmwareRevisionTest, GivesRankZeroToTextsOfAnotherForm)
{
    for (char const* const text : {"", static_cast<char const*>(nullptr), "TJ8", "TJ8-",
                                   "tj8-1.3.0", "1.3.0", " TJ8-1.3.0"}) {
        EXPECT_EQ(firmwareRank(text), 0) << (text == nullptr ? "null" : text);
    }
}

// Numbers are read as scanf reads them, which takes spaces and signs in front of them.
TEST(FirmwareRevisionTest, AcceptsSpacesAndSignsInFrontOfANumber)
{
    EXPECT_EQ(firmwareRank("TJ8- 1. 3.+4"), 134);
    EXPECT_EQ(firmwareRank("TJ8--1.0.0"), -100);
}

TEST(FirmwareRevisionTest, SaturatesNumbersThatDoNotFitAnInt)
{
    EXPECT_EQ(firmwareRank("TJ8-2147483648.0.0"), largestInt * 100);
    EXPECT_EQ(firmwareRank("TJ8-99999999999999999999999.0.0"), largestInt * 100);
    EXPECT_EQ(firmwareRank("TJ8-99999999999999999999999.0.5"), largestInt * 100 + 5);
    EXPECT_EQ((-largestInt - 1) * 100, firmwareRank("TJ8--99999999999999999999999.0.0"));
}

TEST(FirmwareRevisionTest, AddsUpTheLargestNumbersWithoutOverflow)
{
    std::string const largest = std::to_string(largestInt);
    EXPECT_EQ(firmwareRank(("TJ8-" + largest + "." + largest + "." + largest).c_str()),
              largestInt * 111);
}

} // namespace
