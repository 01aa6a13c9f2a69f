// SPDX-License-Identifier: MIT
#include "Names.h"

#include "session/Control.h"

#include <gtest/gtest.h>

namespace
{

using namespace ImageAcquisition::Session;

TEST(NamesTest, ShortNameIsWhatV4l2CtlPrints)
{
    EXPECT_EQ(shortName("Exposure Time, Absolute"), "exposure_time_absolute");
    EXPECT_EQ(shortName("Brightness"), "brightness");
    EXPECT_EQ(shortName("Window 1 x1 (Focus)"), "window_1_x1_focus");
    EXPECT_EQ(shortName("  Odd -- name!"), "odd_name");
    EXPECT_EQ(shortName(""), "");
}

TEST(NamesTest, ComparisonIgnoringCaseLooksAtLettersOnly)
{
    EXPECT_TRUE(equalIgnoringCase("Auto", "aUTO"));
    EXPECT_FALSE(equalIgnoringCase("Auto", "Autos"));
    EXPECT_FALSE(equalIgnoringCase("a b", "a_b"));
}

} // namespace
