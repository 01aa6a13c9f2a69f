// SPDX-License-Identifier: MIT
#include "Parsing.h"

#include "CameraSelection.h"

#include <gtest/gtest.h>

namespace
{

TEST(ParsingTest, TakesIntegersInDecimalAndHexadecimalAndNothingElse)
{
    EXPECT_EQ(Iacq::parseInteger("15"), 15);
    EXPECT_EQ(Iacq::parseInteger("-15"), -15);
    EXPECT_EQ(Iacq::parseInteger("0x1F"), 31);
    EXPECT_EQ(Iacq::parseInteger("-0x10"), -16);
    EXPECT_EQ(Iacq::parseInteger("9223372036854775807"), 9223372036854775807LL);
    for (char const* const text :
         {"", "-", "--1", "+1", "0x", "1x", " 1", "1 ", "99999999999999999999"}) {
        EXPECT_FALSE(Iacq::parseInteger(text)) << text;
    }
}

TEST(ParsingTest, KnowsTheUsualWordsForASwitch)
{
    for (char const* const text : {"on", "ON", "true", "yes", "1"}) {
        EXPECT_EQ(Iacq::parseSwitch(text), true) << text;
    }
    for (char const* const text : {"off", "False", "no", "0"}) {
        EXPECT_EQ(Iacq::parseSwitch(text), false) << text;
    }
    EXPECT_FALSE(Iacq::parseSwitch("2"));
    EXPECT_FALSE(Iacq::parseSwitch(""));
}

TEST(ParsingTest, TakesTwoPositiveNumbersForASize)
{
    auto const size = Iacq::parseSize("640x480");
    ASSERT_TRUE(size);
    EXPECT_EQ(size->width, 640u);
    EXPECT_EQ(size->height, 480u);
    for (char const* const text :
         {"640", "640x", "x480", "0x480", "640x480x1", "-1x2", "640 x 480"}) {
        EXPECT_FALSE(Iacq::parseSize(text)) << text;
    }
}

TEST(ParsingTest, TakesAFractionForAnInterval)
{
    auto const interval = Iacq::parseInterval("1/30");
    ASSERT_TRUE(interval);
    EXPECT_EQ(interval->numerator, 1u);
    EXPECT_EQ(interval->denominator, 30u);
    EXPECT_FALSE(Iacq::parseInterval("30"));
    EXPECT_FALSE(Iacq::parseInterval("1/0"));
}

TEST(ParsingTest, TakesAPositiveNumberForAFrameRate)
{
    EXPECT_EQ(Iacq::parseFrameRate("30"), 30.0);
    EXPECT_EQ(Iacq::parseFrameRate("29.97"), 29.97);
    for (char const* const text : {"", "0", "-30", "fast", "30fps", "1/30", "inf", "nan", "1e3"}) {
        EXPECT_FALSE(Iacq::parseFrameRate(text)) << text;
    }
}

TEST(ParsingTest, TakesANodesNameFromNodesOnly)
{
    EXPECT_EQ(Iacq::nodeName("video0"), "video0");
    EXPECT_EQ(Iacq::nodeName("/dev/video12"), "video12");
    EXPECT_EQ(Iacq::nodeName("0"), "");
    EXPECT_EQ(Iacq::nodeName("videography"), "");
    EXPECT_EQ(Iacq::nodeName("SN1234"), "");
    EXPECT_EQ(Iacq::nodeName("/dev/null"), "");
    EXPECT_EQ(Iacq::nodeName("/tmp"), "");
}

} // namespace
