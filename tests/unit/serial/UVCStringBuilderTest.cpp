// SPDX-License-Identifier: MIT
#include "serial/UVCStringBuilder.h"

#include <gtest/gtest.h>

namespace
{

using ImageAcquisition::UVCStringBuilder;

QByteArray bytes(char const* hexadecimal)
{
    return QByteArray::fromHex(hexadecimal);
}

/// A reply whose header is of no account.
QByteArray replyWith(char const* data)
{
    return bytes("a18100060001ffff") + bytes(data);
}

TEST(UVCStringBuilder, KnowsTheLengthsOfTheFormat)
{
    EXPECT_EQ(8, int(UVCStringBuilder::__baseRequestLength));
    EXPECT_EQ(8, int(UVCStringBuilder::__maxLength));
    EXPECT_EQ(4, int(UVCStringBuilder::__CIDLength));
    EXPECT_EQ(4, int(UVCStringBuilder::__unitLength));
    EXPECT_EQ(2, int(UVCStringBuilder::__lengthRequestLength));
    EXPECT_EQ(1, int(UVCStringBuilder::__infoRequestLength));
}

TEST(UVCStringBuilder, MapsFourteenV4l2ControlsToTheirSelectors)
{
    std::map<unsigned int, unsigned int> const expected = {
        {0x009A090C, 8},  {0x009A090A, 6},  {0x00980900, 2}, {0x00980901, 3}, {0x00980913, 4},
        {0x00980903, 6},  {0x00980919, 16}, {0x00980902, 7}, {0x0098091B, 8}, {0x00980910, 9},
        {0x0098091A, 10}, {0x0098090C, 11}, {0x009A0901, 2}, {0x009A0902, 4}};
    EXPECT_EQ(expected, UVCStringBuilder::__idMap);
}

TEST(UVCStringBuilder, StartsEachKindOfRequestWithItsTypeAndCode)
{
    EXPECT_EQ("2101", UVCStringBuilder::buildSetString());
    EXPECT_EQ("A181", UVCStringBuilder::buildGetString());
    EXPECT_EQ("A182", UVCStringBuilder::buildMinString());
    EXPECT_EQ("A183", UVCStringBuilder::buildMaxString());
    EXPECT_EQ("A185", UVCStringBuilder::buildLengthString());
    EXPECT_EQ("A186", UVCStringBuilder::buildInfoString());
    EXPECT_EQ("A187", UVCStringBuilder::buildDefaultValueString());
}

TEST(UVCStringBuilder, WritesSelectorAndUnitAsFourLowerCaseDigits)
{
    EXPECT_EQ("001a", UVCStringBuilder::buildCIDString(0x1A));
    EXPECT_EQ("0006", UVCStringBuilder::buildCIDString(6));
    EXPECT_EQ("0003", UVCStringBuilder::buildUnitString(3));
    EXPECT_EQ("abcd", UVCStringBuilder::buildUnitString(0xABCD));
}

TEST(UVCStringBuilder, GivesMoreDigitsToNumbersAboveSixteenBits)
{
    EXPECT_EQ("10000", UVCStringBuilder::buildCIDString(0x10000));
    QByteArray request;
    ASSERT_TRUE(UVCStringBuilder::buildGetRequest(0x123456, 1, 1, request));
    EXPECT_EQ(bytes("a18112345600010100"), request);
}

TEST(UVCStringBuilder, WritesTheLowTwoBytesOfALengthLowestFirst)
{
    EXPECT_EQ(bytes("0400"), UVCStringBuilder::buildDataLengthString(4));
    EXPECT_EQ(bytes("3412"), UVCStringBuilder::buildDataLengthString(0x561234));
    EXPECT_EQ(bytes("ffff"), UVCStringBuilder::buildDataLengthString(-1));
}

TEST(UVCStringBuilder, WritesDataLowestByteFirst)
{
    EXPECT_EQ(bytes("88"), UVCStringBuilder::buildDataString(0x1122334455667788, 1));
    EXPECT_EQ(bytes("887766"), UVCStringBuilder::buildDataString(0x1122334455667788, 3));
    EXPECT_EQ(bytes("8877665544332211"), UVCStringBuilder::buildDataString(0x1122334455667788, 8));
    EXPECT_EQ(QByteArray(), UVCStringBuilder::buildDataString(0x1122334455667788, 0));
}

TEST(UVCStringBuilder, WritesNoDataBeyondTheValue)
{
    EXPECT_EQ(bytes("8877665544332211"), UVCStringBuilder::buildDataString(0x1122334455667788, 9));
    EXPECT_EQ(QByteArray(), UVCStringBuilder::buildDataString(1, -1));
}

TEST(UVCStringBuilder, BuildsEachReadRequestFromEightBytes)
{
    QByteArray request;
    EXPECT_TRUE(UVCStringBuilder::buildGetRequest(6, 1, 4, request));
    EXPECT_EQ(bytes("a181000600010400"), request);
    EXPECT_TRUE(UVCStringBuilder::buildMinRequest(0x1A, 2, 2, request));
    EXPECT_EQ(bytes("a182001a00020200"), request);
    EXPECT_TRUE(UVCStringBuilder::buildMaxRequest(20, 3, 8, request));
    EXPECT_EQ(bytes("a183001400030800"), request);
    EXPECT_TRUE(UVCStringBuilder::buildDefaultValueRequest(9, 3, 6, request));
    EXPECT_EQ(bytes("a187000900030600"), request);
}

TEST(UVCStringBuilder, AsksForLengthAndInfoWithFixedDataLengths)
{
    QByteArray request;
    EXPECT_TRUE(UVCStringBuilder::buildLengthRequest(20, 3, request));
    EXPECT_EQ(bytes("a185001400030200"), request);
    EXPECT_TRUE(UVCStringBuilder::buildInfoRequest(20, 3, request));
    EXPECT_EQ(bytes("a186001400030100"), request);
}

TEST(UVCStringBuilder, AppendsTheValueToAWriteRequest)
{
    QByteArray request;
    EXPECT_TRUE(UVCStringBuilder::buildSetRequest(2, 1, 1, 8, request));
    EXPECT_EQ(bytes("210100020001010008"), request);
    EXPECT_TRUE(UVCStringBuilder::buildSetRequest(20, 3, 8, 0x0004000300020001, request));
    EXPECT_EQ(bytes("2101001400030800"
                    "0100020003000400"),
              request);
}

TEST(UVCStringBuilder, ReplacesWhatTheRequestHeld)
{
    QByteArray request("earlier packet, longer than the new one");
    EXPECT_TRUE(UVCStringBuilder::buildInfoRequest(6, 1, request));
    EXPECT_EQ(bytes("a186000600010100"), request);
}

TEST(UVCStringBuilder, ExtendsTheSignOfOneAndTwoBytesOnly)
{
    EXPECT_EQ(-1, UVCStringBuilder::extractValueFromData(replyWith("ff"), 1, 0));
    EXPECT_EQ(-1, UVCStringBuilder::extractValueFromData(replyWith("ffff"), 2, 0));
    EXPECT_EQ(0xffffff, UVCStringBuilder::extractValueFromData(replyWith("ffffff"), 3, 0));
    EXPECT_EQ(4294967295, UVCStringBuilder::extractValueFromData(replyWith("ffffffff"), 4, 0));
    EXPECT_EQ(-1, UVCStringBuilder::extractValueFromData(replyWith("ffffffffffffffff"), 8, 0));
    EXPECT_EQ(127, UVCStringBuilder::extractValueFromData(replyWith("7f"), 1, 0));
    EXPECT_EQ(32767, UVCStringBuilder::extractValueFromData(replyWith("ff7f"), 2, 0));
    EXPECT_EQ(-32768, UVCStringBuilder::extractValueFromData(replyWith("0080"), 2, 0));
}

TEST(UVCStringBuilder, CountsTheOffsetFromTheFirstDataByte)
{
    QByteArray const reply = replyWith("0100020003000400");
    EXPECT_EQ(2, UVCStringBuilder::extractValueFromData(reply, 2, 2));
    EXPECT_EQ(4, UVCStringBuilder::extractValueFromData(reply, 2, 6));
    EXPECT_EQ(0x0300020001, UVCStringBuilder::extractValueFromData(reply, 5, 0));
}

TEST(UVCStringBuilder, GivesZeroForAnEmptyField)
{
    EXPECT_EQ(0, UVCStringBuilder::extractValueFromData(replyWith("ff"), 0, 0));
}

TEST(UVCStringBuilderDeathTest, EndsTheProcessForAFieldOfMoreThanEightBytes)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    QByteArray const reply = replyWith("112233445566778899");
    EXPECT_DEATH(UVCStringBuilder::extractValueFromData(reply, 9, 0), "9 bytes");
    EXPECT_DEATH(UVCStringBuilder::extractValueFromData(reply, -1, 0), "-1 bytes");
}

TEST(UVCStringBuilder, PutsAFieldIntoAValueAndLeavesTheRest)
{
    EXPECT_EQ(0x1111222200554444U,
              UVCStringBuilder::buildSharedValue(0x1111222233334444, 0x55, 2, 2));
    EXPECT_EQ(0xFFFF222233334444U,
              UVCStringBuilder::buildSharedValue(0x1111222233334444, -1, 2, 6));
    EXPECT_EQ(0x11112222333344AAU,
              UVCStringBuilder::buildSharedValue(0x1111222233334444, 0xAA, 1, 0));
    EXPECT_EQ(0xFFFFFFFFFFFFFFFEU,
              UVCStringBuilder::buildSharedValue(0x1111222233334444, -2, 8, 0));
    EXPECT_EQ(0x1111222233334444U,
              UVCStringBuilder::buildSharedValue(0x1111222233334444, 0x55, 0, 3));
}

TEST(UVCStringBuilder, DropsTheBytesOfAFieldThatLieBeyondTheValue)
{
    EXPECT_EQ(0xBB11222233334444U,
              UVCStringBuilder::buildSharedValue(0x1111222233334444, 0xAABB, 2, 7));
    EXPECT_EQ(0x11112222333344AAU,
              UVCStringBuilder::buildSharedValue(0x1111222233334444, 0xAABB, 2, -1));
    EXPECT_EQ(0x1111222233334444U,
              UVCStringBuilder::buildSharedValue(0x1111222233334444, 0xAABB, 2, 100));
}

} // namespace
