// SPDX-License-Identifier: MIT
#include "Names.h"

#include <gtest/gtest.h>

namespace
{

TEST(NamesTest, ShortNameIsWhatV4l2CtlPrints)
{
    EXPECT_EQ(Iacq::shortName("Exposure Time, Absolute"), "exposure_time_absolute");
    EXPECT_EQ(Iacq::shortName("Brightness"), "brightness");
    EXPECT_EQ(Iacq::shortName("Window 1 x1 (Focus)"), "window_1_x1_focus");
    EXPECT_EQ(Iacq::shortName("  Odd -- name!"), "odd_name");
    EXPECT_EQ(Iacq::shortName(""), "");
}

TEST(NamesTest, ComparisonIgnoringCaseLooksAtLettersOnly)
{
    EXPECT_TRUE(Iacq::equalIgnoringCase("Auto", "aUTO"));
    EXPECT_FALSE(Iacq::equalIgnoringCase("Auto", "Autos"));
    EXPECT_FALSE(Iacq::equalIgnoringCase("a b", "a_b"));
}

} // namespace
