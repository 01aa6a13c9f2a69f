// SPDX-License-Identifier: MIT
#include "system/KernelText.h"

#include <gtest/gtest.h>

#include <cstring>

namespace
{

using ImageAcquisition::kernelText;

TEST(KernelTextTest, EndsAtTheFirstZero)
{
    unsigned char const field[8] = {'a', 'b', 0, 'c', 0, 0, 0, 0};
    EXPECT_EQ(kernelText(field), "ab");
}

TEST(KernelTextTest, EndsWithTheFieldWhenThereIsNoZero)
{
    struct
    {
        char field[4];
        char behind[4];
    } record;
    std::memcpy(record.field, "full", 4);
    std::memcpy(record.behind, "more", 4);
    EXPECT_EQ(kernelText(record.field), "full");
}

TEST(KernelTextTest, IsEmptyForAnEmptyField)
{
    char const field[4] = {};
    EXPECT_EQ(kernelText(field), "");
}

TEST(KernelTextTest, KeepsBytesAbove127)
{
    unsigned char const field[4] = {0xc3, 0xa4, 0, 0};
    EXPECT_EQ(kernelText(field), "\xc3\xa4");
}

} // namespace
