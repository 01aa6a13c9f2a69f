// SPDX-License-Identifier: MIT
#include "session/Statistics.h"

#include <gtest/gtest.h>

#include <sstream>

namespace
{

using namespace ImageAcquisition::Session;

Statistics undisturbed()
{
    Statistics statistics;
    statistics.received = 300;
    statistics.rate = 29.97;
    statistics.jitter = Statistics::Duration(0.44);
    statistics.age = Statistics::Duration(3.14);
    statistics.oldest = Statistics::Duration(12);
    return statistics;
}

TEST(StatisticsTest, AreOneLine)
{
    EXPECT_EQ(undisturbed().text(),
              "300 frames, 29.97 a second, jitter 0.4 ms, age 3.1 ms, oldest 12.0 ms");
}

TEST(StatisticsTest, TellWhatWentWrong)
{
    Statistics statistics = undisturbed();
    statistics.lost = 1;
    statistics.damaged = 2;
    statistics.shortened = 3;
    statistics.late = 4;
    statistics.thrownAway = 5;
    statistics.timeOuts = 6;
    statistics.returns = 7;
    statistics.reason = "stopped";
    EXPECT_EQ(statistics.text(), undisturbed().text() +
                                     ", 1 lost, 2 damaged, 3 short, 4 late, 5 thrown away, "
                                     "6 time-outs, 7 returns; stopped");
}

TEST(StatisticsTest, AreWrittenWithoutChangingTheStream)
{
    std::ostringstream out;
    out.width(3);
    out << std::hex << undisturbed() << 255;
    EXPECT_EQ(out.str(), undisturbed().text() + "ff");
}

} // namespace
