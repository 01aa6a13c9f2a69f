// SPDX-License-Identifier: MIT
#include "input/InputMethod.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace
{

using namespace ImageAcquisition;

TEST(InvalidFrame, OfTheProcessHasOneByteThatReadsZero)
{
    IFrame* const frame = IFrame::invalid();
    EXPECT_TRUE(frame->isInvalid());
    EXPECT_FALSE(frame->isCorrupted());
    EXPECT_EQ(1u, frame->allocSize());
    EXPECT_EQ(1u, frame->bytesUsed());
    EXPECT_EQ(1u, frame->size());
    EXPECT_EQ(0u, frame->counter());
    EXPECT_EQ(0, frame->timeStamp().seconds);
    EXPECT_EQ(0, frame->timeStamp().microseconds);
    ASSERT_NE(nullptr, frame->bytePtr());
    EXPECT_EQ(0, *frame->bytePtr());
}

TEST(InvalidFrame, OfTheProcessIsTheOneInstance)
{
    InputMethod::InvalidFrame& instance = InputMethod::InvalidFrame::getUniqueInstance();
    EXPECT_EQ(&instance, IFrame::invalid());
    EXPECT_EQ(&instance, &InputMethod::InvalidFrame::getUniqueInstance());
}

TEST(InvalidFrame, HasAZeroedBufferOfItsSize)
{
    InputMethod::InvalidFrame frame(1000);
    EXPECT_EQ(1000u, frame.allocSize());
    EXPECT_EQ(1000u, frame.bytesUsed());
    EXPECT_EQ(1000u, frame.size());
    EXPECT_TRUE(std::all_of(frame.bytePtr(), frame.bytePtr() + frame.allocSize(),
                            [](unsigned char byte) { return byte == 0; }));
    InputMethod::InvalidFrame const& asConst = frame;
    EXPECT_EQ(asConst.bytePtr(), frame.bytePtr());
}

TEST(InvalidFrame, MayBeEmpty)
{
    InputMethod::InvalidFrame const frame(0);
    EXPECT_TRUE(frame.isInvalid());
    EXPECT_EQ(0u, frame.size());
}

} // namespace
