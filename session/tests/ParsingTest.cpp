// SPDX-License-Identifier: MIT
#include "Parsing.h"

#include <gtest/gtest.h>

namespace
{

using namespace ImageAcquisition::Session;

TEST(ParsingTest, TakesIntegersInDecimalAndHexadecimalAndNothingElse)
{
    EXPECT_EQ(parseInteger("15"), 15);
    EXPECT_EQ(parseInteger("-15"), -15);
    EXPECT_EQ(parseInteger("0x1F"), 31);
    EXPECT_EQ(parseInteger("-0x10"), -16);
    EXPECT_EQ(parseInteger("9223372036854775807"), 9223372036854775807LL);
    for (char const* const text :
         {"", "-", "--1", "+1", "0x", "1x", " 1", "1 ", "99999999999999999999"}) {
        EXPECT_FALSE(parseInteger(text)) << text;
    }
}

TEST(ParsingTest, KnowsTheUsualWordsForASwitch)
{
    for (char const* const text : {"on", "ON", "true", "yes", "1"}) {
        EXPECT_EQ(parseSwitch(text), true) << text;
    }
    for (char const* const text : {"off", "False", "no", "0"}) {
        EXPECT_EQ(parseSwitch(text), false) << text;
    }
    EXPECT_FALSE(parseSwitch("2"));
    EXPECT_FALSE(parseSwitch(""));
}

TEST(ParsingTest, TakesTwoPositiveNumbersForASize)
{
    auto const size = parseSize("640x480");
    ASSERT_TRUE(size);
    EXPECT_EQ(size->width, 640u);
    EXPECT_EQ(size->height, 480u);
    for (char const* const text :
         {"640", "640x", "x480", "0x480", "640x480x1", "-1x2", "640 x 480"}) {
        EXPECT_FALSE(parseSize(text)) << text;
    }
}

TEST(ParsingTest, TakesAFractionForAnInterval)
{
    auto const interval = parseInterval("1/30");
    ASSERT_TRUE(interval);
    EXPECT_EQ(interval->numerator, 1u);
    EXPECT_EQ(interval->denominator, 30u);
    EXPECT_FALSE(parseInterval("30"));
    EXPECT_FALSE(parseInterval("1/0"));
}

TEST(ParsingTest, TakesAPositiveNumberForAFrameRate)
{
    EXPECT_EQ(parseFrameRate("30"), 30.0);
    EXPECT_EQ(parseFrameRate("29.97"), 29.97);
    for (char const* const text : {"", "0", "-30", "fast", "30fps", "1/30", "inf", "nan", "1e3"}) {
        EXPECT_FALSE(parseFrameRate(text)) << text;
    }
}

} // namespace
