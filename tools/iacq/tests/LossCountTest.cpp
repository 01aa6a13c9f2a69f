// SPDX-License-Identifier: MIT
#include "LossCount.h"

#include <gmock/gmock.h>

namespace
{

std::string textAfter(std::initializer_list<unsigned long long> counters, int dropped = 0)
{
    Iacq::LossCount losses;
    for (unsigned long long const counter : counters) {
        losses.came(counter);
    }
    for (int i = 0; i < dropped; ++i) {
        losses.dropped();
    }
    return losses.text();
}

TEST(LossCountTest, SaysNothingWhereNothingIsLost)
{
    EXPECT_EQ(textAfter({}), "");
    EXPECT_EQ(textAfter({0, 1, 2, 3}), "");
}

TEST(LossCountTest, CountsTheGapsInTheDriversNumbers)
{
    EXPECT_EQ(textAfter({0, 1, 3, 4, 9}), "frames lost: 5 by the driver");
}

// Cameras often begin with a damaged frame, which the driver keeps to itself.
TEST(LossCountTest, BeginsWithTheFirstFrame)
{
    EXPECT_EQ(textAfter({7, 8}), "");
}

TEST(LossCountTest, TakesNumbersThatDoNotGrowForNoNumbers)
{
    EXPECT_EQ(textAfter({0, 0, 0}), "");
    EXPECT_EQ(textAfter({0xffffffff, 0, 1}), "");
    EXPECT_EQ(textAfter({5, 0, 2}), "frames lost: 1 by the driver");
}

TEST(LossCountTest, TellsWhatCouldNotBeWrittenByItself)
{
    EXPECT_EQ(textAfter({0, 1}, 2), "frames lost: 2 by slow writing");
    EXPECT_EQ(textAfter({0, 2}, 3), "frames lost: 1 by the driver, 3 by slow writing");
}

} // namespace
