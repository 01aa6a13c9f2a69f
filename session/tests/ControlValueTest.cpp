// SPDX-License-Identifier: MIT
#include "session/ControlValue.h"

#include "ErrorOf.h"

#include <gtest/gtest.h>

#include <limits>

namespace
{

using namespace ImageAcquisition::Session;

TEST(ControlValueTest, RefusesWhatDoesNotFit)
{
    EXPECT_EQ(ControlValue(std::numeric_limits<unsigned int>::max()).text(), "4294967295");
    EXPECT_TRUE(errorOf([] { ControlValue{std::numeric_limits<unsigned long long>::max()}; }));
    EXPECT_EQ(ControlValue(static_cast<char const*>(nullptr)).text(), "");
    EXPECT_NE(ControlValue(1), ControlValue(true));
    EXPECT_EQ(ControlValue(true).text(), "on");
}

} // namespace
