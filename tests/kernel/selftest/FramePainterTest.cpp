// SPDX-License-Identifier: MIT
#include "FramePainter.h"

#include "FrameNumbers.h"

#include <gtest/gtest.h>

using namespace UsbCamera;

TEST(FramePainterTest, PaintsTheSamePictureWhateverItPaintedBefore)
{
    FramePainter oneByOne(320, 240);
    for (std::uint32_t const number : someNumbers) {
        EXPECT_EQ(oneByOne.paint(number), FramePainter(320, 240).paint(number)) << number;
    }
}

TEST(FramePainterTest, ShowsItsNumberInBlocks)
{
    for (unsigned const width : {160U, 320U, 640U, 1280U}) {
        FramePainter painter(width, 120);
        for (std::uint32_t const number : someNumbers) {
            EXPECT_EQ(FramePainter::readNumber(painter.paint(number).data(), width), number);
        }
    }
}

TEST(FramePainterTest, ShowsColourBarsBelowTheNumber)
{
    FramePainter painter(640, 480);
    Bytes const& picture = painter.paint(7);
    std::uint8_t const* lastLine = &picture[std::size_t{2} * 640 * 479];
    EXPECT_EQ(Bytes(lastLine, lastLine + 4), (Bytes{235, 128, 235, 128}));
    std::uint8_t const* red = lastLine + std::size_t{2} * 420;
    EXPECT_EQ(Bytes(red, red + 4), (Bytes{81, 90, 81, 240}));
}
