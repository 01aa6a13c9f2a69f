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

} // namespace

TEST(ControlTextsTest, EachTypeHasItsNumberAndText)
{
    NumberAndText const table[] = {
        {0, "UnknownType"}, {1, "BitMask"}, {2, "Boolean"},   {3, "Button"},
        {4, "Int32"},       {5, "Int64"},   {6, "Int64Menu"}, {7, "UInt8"},
        {8, "UInt16"},      {9, "UInt32"},  {10, "String"},   {11, "StringMenu"},
    };
    for (NumberAndText const& row : table) {
        EXPECT_STREQ(row.text, controlTypeText(static_cast<ICameraControl::Type>(row.number)));
    }
    EXPECT_EQ(0, ICameraControl::Invalid);
    EXPECT_EQ(1, ICameraControl::BitMask);
    EXPECT_EQ(2, ICameraControl::Boolean);
    EXPECT_EQ(3, ICameraControl::Button);
    EXPECT_EQ(4, ICameraControl::Int32);
    EXPECT_EQ(5, ICameraControl::Int64);
    EXPECT_EQ(6, ICameraControl::Int64Menu);
    EXPECT_EQ(7, ICameraControl::UInt8);
    EXPECT_EQ(8, ICameraControl::UInt16);
    EXPECT_EQ(9, ICameraControl::UInt32);
    EXPECT_EQ(10, ICameraControl::String);
    EXPECT_EQ(11, ICameraControl::StringMenu);
}

TEST(ControlTextsTest, NumbersThatAreNoTypeAreUnknown)
{
    for (int const number : {12, 13, 100, -1, -2147483647}) {
        EXPECT_STREQ("UnknownType", controlTypeText(static_cast<ICameraControl::Type>(number)))
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
        EXPECT_STREQ(text, controlFamilyText(static_cast<ICameraControl::Family>(number)))
            << number;
        ++number;
    }
}

TEST(ControlTextsTest, FamiliesShowTheTextAtTheirNumberAndNotTheirMeaning)
{
    EXPECT_STREQ("MPEG", ICameraControl::familyString(ICameraControl::Focus));
    EXPECT_STREQ("Camera", ICameraControl::familyString(ICameraControl::AutoControl));
    EXPECT_STREQ("Flash", ICameraControl::familyString(ICameraControl::ImageGeometry));
    EXPECT_STREQ("FM Rx", ICameraControl::familyString(ICameraControl::ImageQuality));
    EXPECT_STREQ("FM Rx", CameraControl::familyString(ICameraControl::ImageQuality));
}

TEST(ControlTextsTest, FamiliesBeyondTheTextsAreUnknown)
{
    for (ICameraControl::Family const family :
         {ICameraControl::Debug, ICameraControl::Lighting, ICameraControl::Connection,
          ICameraControl::Status, ICameraControl::Advanced, ICameraControl::Unknown}) {
        EXPECT_STREQ("Unknown", ICameraControl::familyString(family)) << family;
    }
    EXPECT_STREQ("Unknown", ICameraControl::familyString(static_cast<ICameraControl::Family>(12)));
}

TEST(ControlTextsTest, FamiliesAreSingleBits)
{
    EXPECT_EQ(0x00000001u, ICameraControl::Focus);
    EXPECT_EQ(0x00000002u, ICameraControl::AutoControl);
    EXPECT_EQ(0x00000004u, ICameraControl::ImageGeometry);
    EXPECT_EQ(0x00000008u, ICameraControl::ImageQuality);
    EXPECT_EQ(0x00000010u, ICameraControl::Debug);
    EXPECT_EQ(0x00000020u, ICameraControl::Lighting);
    EXPECT_EQ(0x00000040u, ICameraControl::Connection);
    EXPECT_EQ(0x00000080u, ICameraControl::Status);
    EXPECT_EQ(0x00000100u, ICameraControl::Advanced);
    EXPECT_EQ(0x80000000u, ICameraControl::Unknown);
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
        EXPECT_EQ(row.family, controlFamilyOf(row.id)) << std::hex << row.id;
    }
}

TEST(ControlTextsTest, AnyOtherIdHasNoFamily)
{
    for (unsigned int const id :
         {0u, 0x009808FFu, 0x00980904u, 0x0098090Bu, 0x0098090Du, 0x0098090Fu, 0x00980911u,
          0x00980912u, 0x00980914u, 0x00980918u, 0x0098091Cu, 0x009A0900u, 0x009A0903u, 0x009A0909u,
          0x009A090Bu, 0x009A090Du, 0x07FFFFFFu, 0x0800001Du, 0xFFFFFFFFu}) {
        EXPECT_EQ(ICameraControl::Unknown, controlFamilyOf(id)) << std::hex << id;
    }
}
