// SPDX-License-Identifier: MIT
#include "control/ControlTexts.h"
#include "control/CameraControl.h"

#include <gtest/gtest.h>

using namespace ImageAcquisition;

namespace
{

struct NumberAndText
{
    unsigned int number;
    char const* text;
};

struct IdAndFamily
{
    unsigned int id;
    unsigned int family;
};

TEST(ControlTextsTest, EachTypeHasItsNumberAndText)
{
    NumberAndText const table[] = {
        {0, "UnknownType"}, {1, "BitMask"}, {2, "Boolean"},   {3, "Button"},
        {4, "Int32"},       {5, "Int64"},   {6, "Int64Menu"}, {7, "UInt8"},
        {8, "UInt16"},      {9, "UInt32"},  {10, "String"},   {11, "StringMenu"},
    };
    for (NumberAndText const& row : table) {
        EXPECT_STREQ(controlTypeText(static_cast<ICameraControl::Type>(row.number)), row.text);
    }
    EXPECT_EQ(ICameraControl::Invalid, 0);
    EXPECT_EQ(ICameraControl::BitMask, 1);
    EXPECT_EQ(ICameraControl::Boolean, 2);
    EXPECT_EQ(ICameraControl::Button, 3);
    EXPECT_EQ(ICameraControl::Int32, 4);
    EXPECT_EQ(ICameraControl::Int64, 5);
    EXPECT_EQ(ICameraControl::Int64Menu, 6);
    EXPECT_EQ(ICameraControl::UInt8, 7);
    EXPECT_EQ(ICameraControl::UInt16, 8);
    EXPECT_EQ(ICameraControl::UInt32, 9);
    EXPECT_EQ(ICameraControl::String, 10);
    EXPECT_EQ(ICameraControl::StringMenu, 11);
}

TEST(ControlTextsTest, NumbersThatAreNoTypeAreUnknown)
{
    for (int const number : {12, 13, 100, -1, -2147483647}) {
        EXPECT_STREQ(controlTypeText(static_cast<ICameraControl::Type>(number)), "UnknownType")
            << number;
    }
}

TEST(ControlTextsTest, FamilyTextsAreIndexedByTheNumberOfTheFamily)
{
    char const* const table[] = {"User",  "MPEG",     "Camera",       "FM Tx",
                                 "Flash", "JPEG",     "Image Source", "Image Proc",
                                 "FM Rx", "RF Tuner", "Detect",       "Unknown"};
    unsigned int number = 0;
    for (char const* const text : table) {
        EXPECT_STREQ(controlFamilyText(static_cast<ICameraControl::Family>(number)), text)
            << number;
        ++number;
    }
}

TEST(ControlTextsTest, FamiliesShowTheTextAtTheirNumberAndNotTheirMeaning)
{
    EXPECT_STREQ(ICameraControl::familyString(ICameraControl::Focus), "MPEG");
    EXPECT_STREQ(ICameraControl::familyString(ICameraControl::AutoControl), "Camera");
    EXPECT_STREQ(ICameraControl::familyString(ICameraControl::ImageGeometry), "Flash");
    EXPECT_STREQ(ICameraControl::familyString(ICameraControl::ImageQuality), "FM Rx");
    EXPECT_STREQ(CameraControl::familyString(ICameraControl::ImageQuality), "FM Rx");
}

TEST(ControlTextsTest, FamiliesBeyondTheTextsAreUnknown)
{
    for (ICameraControl::Family const family :
         {ICameraControl::Debug, ICameraControl::Lighting, ICameraControl::Connection,
          ICameraControl::Status, ICameraControl::Advanced, ICameraControl::Unknown}) {
        EXPECT_STREQ(ICameraControl::familyString(family), "Unknown") << family;
    }
    EXPECT_STREQ(ICameraControl::familyString(static_cast<ICameraControl::Family>(12)), "Unknown");
}

TEST(ControlTextsTest, FamiliesAreSingleBits)
{
    EXPECT_EQ(ICameraControl::Focus, 0x00000001u);
    EXPECT_EQ(ICameraControl::AutoControl, 0x00000002u);
    EXPECT_EQ(ICameraControl::ImageGeometry, 0x00000004u);
    EXPECT_EQ(ICameraControl::ImageQuality, 0x00000008u);
    EXPECT_EQ(ICameraControl::Debug, 0x00000010u);
    EXPECT_EQ(ICameraControl::Lighting, 0x00000020u);
    EXPECT_EQ(ICameraControl::Connection, 0x00000040u);
    EXPECT_EQ(ICameraControl::Status, 0x00000080u);
    EXPECT_EQ(ICameraControl::Advanced, 0x00000100u);
    EXPECT_EQ(ICameraControl::Unknown, 0x80000000u);
}

TEST(ControlTextsTest, EachKnownIdHasItsFamily)
{
    IdAndFamily const table[] = {
        {0x00980900, 0x008}, {0x00980901, 0x008}, {0x00980902, 0x008}, {0x00980903, 0x100},
        {0x0098090C, 0x008}, {0x00980910, 0x100}, {0x00980913, 0x100}, {0x00980919, 0x100},
        {0x0098091A, 0x008}, {0x0098091B, 0x008}, {0x009A0901, 0x008}, {0x009A0902, 0x008},
        {0x009A090A, 0x001}, {0x009A090C, 0x001}, {0x08000000, 0x020}, {0x08000001, 0x020},
        {0x08000002, 0x080}, {0x08000003, 0x020}, {0x08000004, 0x002}, {0x08000005, 0x008},
        {0x08000006, 0x008}, {0x08000007, 0x008}, {0x08000008, 0x040}, {0x08000009, 0x001},
        {0x0800000A, 0x001}, {0x0800000B, 0x001}, {0x0800000C, 0x001}, {0x0800000D, 0x002},
        {0x0800000E, 0x001}, {0x0800000F, 0x001}, {0x08000010, 0x001}, {0x08000011, 0x001},
        {0x08000012, 0x008}, {0x08000013, 0x008}, {0x08000014, 0x008}, {0x08000015, 0x001},
        {0x08000016, 0x010}, {0x08000017, 0x004}, {0x08000018, 0x004}, {0x08000019, 0x004},
        {0x0800001A, 0x001}, {0x0800001B, 0x008}, {0x0800001C, 0x100},
    };
    for (IdAndFamily const& row : table) {
        EXPECT_EQ(controlFamilyOf(row.id), row.family) << std::hex << row.id;
    }
}

TEST(ControlTextsTest, AnyOtherIdHasNoFamily)
{
    for (unsigned int const id :
         {0u, 0x009808FFu, 0x00980904u, 0x0098090Bu, 0x0098090Du, 0x0098090Fu, 0x00980911u,
          0x00980912u, 0x00980914u, 0x00980918u, 0x0098091Cu, 0x009A0900u, 0x009A0903u, 0x009A0909u,
          0x009A090Bu, 0x009A090Du, 0x07FFFFFFu, 0x0800001Du, 0xFFFFFFFFu}) {
        EXPECT_EQ(controlFamilyOf(id), ICameraControl::Unknown) << std::hex << id;
    }
}

} // namespace
