// SPDX-License-Identifier: MIT
#include "LateReplies.h"

#include <gtest/gtest.h>

namespace
{

using std::chrono::milliseconds;

/// The parameter is how many milliseconds the second part comes after the first.
class SplitReplyTest : public LateReplies, public testing::WithParamInterface<int>
{
};

TEST_P(SplitReplyTest, IsTakenWholeOrNotAtAll)
{
    milliseconds const delay(GetParam());
    for (std::size_t place = 1; place < 16; ++place) {
        m_firmware.answerAllPromptly();
        script(SerialAnswer::split(place, delay), How::EveryThird);
        EXPECT_TRUE(writeField(static_cast<std::uint8_t>(100 + place))) << "cut at " << place;
        readAll();
    }
}

TEST_P(SplitReplyTest, HarmsNoOtherWhenEveryOneIsSplit)
{
    milliseconds const delay(GetParam());
    for (std::size_t place = 1; place < 16; place += 3) {
        m_firmware.answerAllPromptly();
        script(SerialAnswer::split(place, delay), How::Often);
        readAll();
        writeField(static_cast<std::uint8_t>(100 + place));
    }
}

INSTANTIATE_TEST_SUITE_P(, SplitReplyTest, testing::Values(20, 60, 100, 140, 180));

} // namespace
