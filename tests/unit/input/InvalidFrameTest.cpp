// SPDX-License-Identifier: MIT
#include "input/InputMethod.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace
{

using namespace ImageAcquisition;

TEST(InvalidFrameTest, OfTheProcessHasOneByteThatReadsZero)
{
    IFrame* const frame = IFrame::invalid();
    EXPECT_TRUE(frame->isInvalid());
    EXPECT_FALSE(frame->isCorrupted());
    EXPECT_EQ(frame->allocSize(), 1u);
    EXPECT_EQ(frame->bytesUsed(), 1u);
    EXPECT_EQ(frame->size(), 1u);
    EXPECT_EQ(frame->counter(), 0u);
    EXPECT_EQ(frame->timeStamp().seconds, 0);
    EXPECT_EQ(frame->timeStamp().microseconds, 0);
    ASSERT_NE(frame->bytePtr(), nullptr);
    EXPECT_EQ(*frame->bytePtr(), 0);
}

TEST(InvalidFrameTest, OfTheProcessIsTheOneInstance)
{
    InputMethod::InvalidFrame& instance = InputMethod::InvalidFrame::getUniqueInstance();
    EXPECT_EQ(IFrame::invalid(), &instance);
    EXPECT_EQ(&InputMethod::InvalidFrame::getUniqueInstance(), &instance);
}

TEST(InvalidFrameTest, HasAZeroedBufferOfItsSize)
{
    InputMethod::InvalidFrame frame(1000);
    EXPECT_EQ(frame.allocSize(), 1000u);
    EXPECT_EQ(frame.bytesUsed(), 1000u);
    EXPECT_EQ(frame.size(), 1000u);
    EXPECT_TRUE(std::all_of(frame.bytePtr(), frame.bytePtr() + frame.allocSize(),
                            [](unsigned char byte) { return byte == 0; }));
    InputMethod::InvalidFrame const& asConst = frame;
    EXPECT_EQ(asConst.bytePtr(), frame.bytePtr());
}

TEST(InvalidFrameTest, MayBeEmpty)
{
    InputMethod::InvalidFrame const frame(0);
    EXPECT_TRUE(frame.isInvalid());
    EXPECT_EQ(frame.size(), 0u);
}

} // namespace
