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

TEST(UVCStringBuilderTest, KnowsTheLengthsOfTheFormat)
{
    EXPECT_EQ(int(UVCStringBuilder::__baseRequestLength), 8);
    EXPECT_EQ(int(UVCStringBuilder::__maxLength), 8);
    EXPECT_EQ(int(UVCStringBuilder::__CIDLength), 4);
    EXPECT_EQ(int(UVCStringBuilder::__unitLength), 4);
    EXPECT_EQ(int(UVCStringBuilder::__lengthRequestLength), 2);
    EXPECT_EQ(int(UVCStringBuilder::__infoRequestLength), 1);
}

TEST(UVCStringBuilderTest, MapsFourteenV4l2ControlsToTheirSelectors)
{
    std::map<unsigned int, unsigned int> const expected = {
        {0x009A090C, 8},  {0x009A090A, 6},  {0x00980900, 2}, {0x00980901, 3}, {0x00980913, 4},
        {0x00980903, 6},  {0x00980919, 16}, {0x00980902, 7}, {0x0098091B, 8}, {0x00980910, 9},
        {0x0098091A, 10}, {0x0098090C, 11}, {0x009A0901, 2}, {0x009A0902, 4}};
    EXPECT_EQ(UVCStringBuilder::__idMap, expected);
}

TEST(UVCStringBuilderTest, StartsEachKindOfRequestWithItsTypeAndCode)
{
    EXPECT_EQ(UVCStringBuilder::buildSetString(), "2101");
    EXPECT_EQ(UVCStringBuilder::buildGetString(), "A181");
    EXPECT_EQ(UVCStringBuilder::buildMinString(), "A182");
    EXPECT_EQ(UVCStringBuilder::buildMaxString(), "A183");
    EXPECT_EQ(UVCStringBuilder::buildLengthString(), "A185");
    EXPECT_EQ(UVCStringBuilder::buildInfoString(), "A186");
    EXPECT_EQ(UVCStringBuilder::buildDefaultValueString(), "A187");
}

TEST(UVCStringBuilderTest, WritesSelectorAndUnitAsFourLowerCaseDigits)
{
    EXPECT_EQ(UVCStringBuilder::buildCIDString(0x1A), "001a");
    EXPECT_EQ(UVCStringBuilder::buildCIDString(6), "0006");
    EXPECT_EQ(UVCStringBuilder::buildUnitString(3), "0003");
    EXPECT_EQ(UVCStringBuilder::buildUnitString(0xABCD), "abcd");
}

TEST(UVCStringBuilderTest, GivesMoreDigitsToNumbersAboveSixteenBits)
{
    EXPECT_EQ(UVCStringBuilder::buildCIDString(0x10000), "10000");
    QByteArray request;
    ASSERT_TRUE(UVCStringBuilder::buildGetRequest(0x123456, 1, 1, request));
    EXPECT_EQ(bytes("a18112345600010100"), request);
}

TEST(UVCStringBuilderTest, WritesTheLowTwoBytesOfALengthLowestFirst)
{
    EXPECT_EQ(bytes("0400"), UVCStringBuilder::buildDataLengthString(4));
    EXPECT_EQ(bytes("3412"), UVCStringBuilder::buildDataLengthString(0x561234));
    EXPECT_EQ(bytes("ffff"), UVCStringBuilder::buildDataLengthString(-1));
}

TEST(UVCStringBuilderTest, WritesDataLowestByteFirst)
{
    EXPECT_EQ(bytes("88"), UVCStringBuilder::buildDataString(0x1122334455667788, 1));
    EXPECT_EQ(bytes("887766"), UVCStringBuilder::buildDataString(0x1122334455667788, 3));
    EXPECT_EQ(bytes("8877665544332211"), UVCStringBuilder::buildDataString(0x1122334455667788, 8));
    EXPECT_EQ(UVCStringBuilder::buildDataString(0x1122334455667788, 0), QByteArray());
}

TEST(UVCStringBuilderTest, WritesNoDataBeyondTheValue)
{
    EXPECT_EQ(bytes("8877665544332211"), UVCStringBuilder::buildDataString(0x1122334455667788, 9));
    EXPECT_EQ(UVCStringBuilder::buildDataString(1, -1), QByteArray());
}

TEST(UVCStringBuilderTest, BuildsEachReadRequestFromEightBytes)
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

TEST(UVCStringBuilderTest, AsksForLengthAndInfoWithFixedDataLengths)
{
    QByteArray request;
    EXPECT_TRUE(UVCStringBuilder::buildLengthRequest(20, 3, request));
    EXPECT_EQ(bytes("a185001400030200"), request);
    EXPECT_TRUE(UVCStringBuilder::buildInfoRequest(20, 3, request));
    EXPECT_EQ(bytes("a186001400030100"), request);
}

TEST(UVCStringBuilderTest, AppendsTheValueToAWriteRequest)
{
    QByteArray request;
    EXPECT_TRUE(UVCStringBuilder::buildSetRequest(2, 1, 1, 8, request));
    EXPECT_EQ(bytes("210100020001010008"), request);
    EXPECT_TRUE(UVCStringBuilder::buildSetRequest(20, 3, 8, 0x0004000300020001, request));
    EXPECT_EQ(bytes("2101001400030800"
                    "0100020003000400"),
              request);
}

TEST(UVCStringBuilderTest, ReplacesWhatTheRequestHeld)
{
    QByteArray request("earlier packet, longer than the new one");
    EXPECT_TRUE(UVCStringBuilder::buildInfoRequest(6, 1, request));
    EXPECT_EQ(bytes("a186000600010100"), request);
}

TEST(UVCStringBuilderTest, ExtendsTheSignOfOneAndTwoBytesOnly)
{
    EXPECT_EQ(UVCStringBuilder::extractValueFromData(replyWith("ff"), 1, 0), -1);
    EXPECT_EQ(UVCStringBuilder::extractValueFromData(replyWith("ffff"), 2, 0), -1);
    EXPECT_EQ(UVCStringBuilder::extractValueFromData(replyWith("ffffff"), 3, 0), 0xffffff);
    EXPECT_EQ(UVCStringBuilder::extractValueFromData(replyWith("ffffffff"), 4, 0), 4294967295);
    EXPECT_EQ(UVCStringBuilder::extractValueFromData(replyWith("ffffffffffffffff"), 8, 0), -1);
    EXPECT_EQ(UVCStringBuilder::extractValueFromData(replyWith("7f"), 1, 0), 127);
    EXPECT_EQ(UVCStringBuilder::extractValueFromData(replyWith("ff7f"), 2, 0), 32767);
    EXPECT_EQ(UVCStringBuilder::extractValueFromData(replyWith("0080"), 2, 0), -32768);
}

TEST(UVCStringBuilderTest, CountsTheOffsetFromTheFirstDataByte)
{
    QByteArray const reply = replyWith("0100020003000400");
    EXPECT_EQ(UVCStringBuilder::extractValueFromData(reply, 2, 2), 2);
    EXPECT_EQ(UVCStringBuilder::extractValueFromData(reply, 2, 6), 4);
    EXPECT_EQ(UVCStringBuilder::extractValueFromData(reply, 5, 0), 0x0300020001);
}

TEST(UVCStringBuilderTest, GivesZeroForAnEmptyField)
{
    EXPECT_EQ(UVCStringBuilder::extractValueFromData(replyWith("ff"), 0, 0), 0);
}

TEST(UVCStringBuilderTest, EndsTheProcessForAFieldOfMoreThanEightBytes)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    QByteArray const reply = replyWith("112233445566778899");
    EXPECT_DEATH(UVCStringBuilder::extractValueFromData(reply, 9, 0), "9 bytes");
    EXPECT_DEATH(UVCStringBuilder::extractValueFromData(reply, -1, 0), "-1 bytes");
}

TEST(UVCStringBuilderTest, PutsAFieldIntoAValueAndLeavesTheRest)
{
    EXPECT_EQ(UVCStringBuilder::buildSharedValue(0x1111222233334444, 0x55, 2, 2),
              0x1111222200554444U);
    EXPECT_EQ(UVCStringBuilder::buildSharedValue(0x1111222233334444, -1, 2, 6),
              0xFFFF222233334444U);
    EXPECT_EQ(UVCStringBuilder::buildSharedValue(0x1111222233334444, 0xAA, 1, 0),
              0x11112222333344AAU);
    EXPECT_EQ(UVCStringBuilder::buildSharedValue(0x1111222233334444, -2, 8, 0),
              0xFFFFFFFFFFFFFFFEU);
    EXPECT_EQ(UVCStringBuilder::buildSharedValue(0x1111222233334444, 0x55, 0, 3),
              0x1111222233334444U);
}

TEST(UVCStringBuilderTest, DropsTheBytesOfAFieldThatLieBeyondTheValue)
{
    EXPECT_EQ(UVCStringBuilder::buildSharedValue(0x1111222233334444, 0xAABB, 2, 7),
              0xBB11222233334444U);
    EXPECT_EQ(UVCStringBuilder::buildSharedValue(0x1111222233334444, 0xAABB, 2, -1),
              0x11112222333344AAU);
    EXPECT_EQ(UVCStringBuilder::buildSharedValue(0x1111222233334444, 0xAABB, 2, 100),
              0x1111222233334444U);
}

} // namespace
