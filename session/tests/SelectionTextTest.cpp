// SPDX-License-Identifier: MIT
#include "ErrorOf.h"
#include "session/Selection.h"

#include <gtest/gtest.h>

namespace
{

using namespace ImageAcquisition::Session;

TEST(SelectionTextTest, NamesFormatSizeAndRate)
{
    Selection const wish = Selection::parse("YUYV 640x480@30");
    EXPECT_EQ(wish.format, "YUYV");
    EXPECT_EQ(wish.width, 640u);
    EXPECT_EQ(wish.height, 480u);
    EXPECT_EQ(wish.rate, (FrameRate{30, 1}));
    EXPECT_EQ(wish.text(), "YUYV 640x480@30");
}

TEST(SelectionTextTest, MayLeaveOutAnyPartAndChangeTheirOrder)
{
    EXPECT_EQ(Selection::parse(""), Selection());
    EXPECT_EQ(Selection::parse("MJPG").text(), "MJPG");
    EXPECT_EQ(Selection::parse("640X480").text(), "640x480");
    EXPECT_EQ(Selection::parse("@15").text(), "@15");
    EXPECT_EQ(Selection::parse("YUYV@15").text(), "YUYV@15");
    EXPECT_EQ(Selection::parse(" @15  320x240 yuyv ").text(), "yuyv 320x240@15");
}

TEST(SelectionTextTest, TakesRatesAsDecimalsAndFractions)
{
    EXPECT_EQ(Selection::parse("@29.97").rate, (FrameRate{2997, 100}));
    EXPECT_EQ(Selection::parse("@30000/1001").rate, (FrameRate{30000, 1001}));
    EXPECT_EQ(Selection::parse("@7.5").rate, (FrameRate{15, 2}));
    EXPECT_EQ((FrameRate{30000, 1001}).text(), "29.97");
    EXPECT_EQ((FrameRate{25, 3}).text(), "8.333");
    EXPECT_EQ((FrameRate{60, 2}), (FrameRate{30, 1}));
    EXPECT_NE((FrameRate{30000, 1001}), (FrameRate{30, 1}));
}

TEST(SelectionTextTest, RefusesWhatMakesNoSense)
{
    for (char const* const text : {"YUYV MJPG", "640x480 320x240", "@30@15", "@", "@x", "@0", "@-1",
                                   "@99999999999", "640x4800x", "YUYV2", "0x480", "@1/0"}) {
        auto const error = errorOf([text] { Selection::parse(text); });
        ASSERT_TRUE(error) << text;
        EXPECT_EQ(error->kind(), ErrorKind::BadRequest) << text;
    }
}

} // namespace
