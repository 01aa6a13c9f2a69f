// SPDX-License-Identifier: MIT
#include "format/ImageFormat.h"

#include "OpenNode.h"
#include "V4l2Hook.h"
#include "VirtualCamera.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace
{

using namespace ImageAcquisition;
using VirtualCamera::aCamera;

v4l2_fmtdesc describe(unsigned int pixelformat, unsigned int flags = 0, char const* text = "")
{
    v4l2_fmtdesc description{};
    description.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    description.pixelformat = pixelformat;
    description.flags = flags;
    std::memcpy(description.description, text,
                std::min(std::strlen(text), sizeof description.description));
    return description;
}

v4l2_fmtdesc const yuyv = describe(V4L2_PIX_FMT_YUYV, 0, "YUYV 4:2:2");

TEST(ImageFormatTest, ListsTheBytesOfItsCodeFromTheLowestUp)
{
    EXPECT_EQ(fourCharacterCode(0x56595559), "YUYV");
    EXPECT_EQ(fourCharacterCode(V4L2_PIX_FMT_MJPEG), "MJPG");
    EXPECT_EQ(fourCharacterCode(V4L2_PIX_FMT_Y16), "Y16 ");
    // Big-endian formats have the top bit set, and a code may hold zeros.
    EXPECT_EQ(fourCharacterCode(V4L2_PIX_FMT_Y16_BE), "Y16\xa0");
    EXPECT_EQ(fourCharacterCode('A'), std::string("A\0\0\0", 4));
}

TEST(ImageFormatTest, IsNamedByItsCodeAndDescribedByTheDriver)
{
    ImageFormat const format(-1, yuyv);
    EXPECT_FALSE(format.isInvalid());
    EXPECT_STREQ(format.name(), "YUYV");
    EXPECT_STREQ(format.description(), "YUYV 4:2:2");
}

TEST(ImageFormatTest, ReadsADescriptionWithoutAnEndNoFurtherThanItsField)
{
    std::string const text(sizeof(v4l2_fmtdesc::description), 'd');
    ImageFormat const format(-1, describe(V4L2_PIX_FMT_YUYV, 0, text.c_str()));
    EXPECT_EQ(format.description(), text);
}

TEST(ImageFormatTest, TellsCompressedFromEmulated)
{
    struct
    {
        unsigned int flags;
        bool compressed;
        bool emulated;
    } const cases[] = {{0, false, false},
                       {1, true, false},
                       {2, false, true},
                       {3, true, true},
                       {0xfffffffc, false, false}};
    for (auto const& one : cases) {
        ImageFormat const format(-1, describe(V4L2_PIX_FMT_MJPEG, one.flags));
        EXPECT_EQ(format.isCompressed(), one.compressed) << one.flags;
        EXPECT_EQ(format.isEmulated(), one.emulated) << one.flags;
    }
}

TEST(ImageFormatTest, ListsTheSizesInTheDriversOrder)
{
    auto const camera = aCamera()
                            .withFormat("YUYV")
                            .withSize(320, 240)
                            .withInterval(1, 30)
                            .withSize(1280, 720)
                            .withInterval(1, 5)
                            .withInterval(1, 10)
                            .install();
    OpenNode const node;
    ImageFormat const format(node.fd(), yuyv);
    ASSERT_EQ(format.sizeNumber(), 2);
    EXPECT_EQ(format.frameSize(0)->width(), 320u);
    EXPECT_EQ(format.frameSize(0)->height(), 240u);
    EXPECT_EQ(format.frameSize(0)->periodNumber(), 1);
    EXPECT_EQ(format.frameSize(1)->width(), 1280u);
    EXPECT_EQ(format.frameSize(1)->height(), 720u);
    EXPECT_EQ(format.frameSize(1)->periodNumber(), 2);
}

TEST(ImageFormatTest, GivesTheInvalidSizeOutsideItsList)
{
    auto const camera = aCamera().withFormat("YUYV").withSize(320, 240).install();
    OpenNode const node;
    ImageFormat const format(node.fd(), yuyv);
    EXPECT_FALSE(format.frameSize(0)->isInvalid());
    EXPECT_EQ(IFrameSize::invalid(), format.frameSize(-1));
    EXPECT_EQ(IFrameSize::invalid(), format.frameSize(format.sizeNumber()));
}

TEST(ImageFormatTest, MakesUpNoListFromARangeOfSizes)
{
    for (bool const stepwise : {true, false}) {
        auto builder = aCamera().withFormat("YUYV");
        if (stepwise) {
            builder.withSteppedSizes({16, 640, 16, 16, 480, 16, {}});
        } else {
            builder.withContinuousSizes(16, 640, 16, 480);
        }
        auto const camera = builder.install();
        OpenNode const node;
        ImageFormat const format(node.fd(), yuyv);
        EXPECT_EQ(format.sizeNumber(), 0);
        for (int const index : {-1, 0, 1}) {
            EXPECT_TRUE(format.frameSize(index)->isInvalid());
        }
        EXPECT_EQ(camera.countOf(VIDIOC_ENUM_FRAMESIZES), 1u);
        EXPECT_EQ(camera.countOf(VIDIOC_ENUM_FRAMEINTERVALS), 0u);
    }
}

TEST(ImageFormatTest, HasNoSizesWhenTheDriverListsNone)
{
    auto const camera = aCamera()
                            .withFormat("YUYV")
                            .withSize(320, 240)
                            .failing(VIDIOC_ENUM_FRAMESIZES, EINVAL)
                            .install();
    OpenNode const node;
    EXPECT_EQ(ImageFormat(node.fd(), yuyv).sizeNumber(), 0);
}

TEST(ImageFormatTest, EndsTheListWhereTheDriverFails)
{
    auto const camera = aCamera()
                            .withFormat("YUYV")
                            .withSize(320, 240)
                            .withSize(640, 480)
                            .failing(VIDIOC_ENUM_FRAMESIZES, EIO, 2)
                            .install();
    OpenNode const node;
    EXPECT_EQ(ImageFormat(node.fd(), yuyv).sizeNumber(), 1);
}

TEST(ImageFormatTest, LooksAtTheTypeOfTheFirstAnswerOnly)
{
    V4l2Hook const hook([](int, unsigned long request, void* argument) {
        auto& size = *static_cast<v4l2_frmsizeenum*>(argument);
        if (request != VIDIOC_ENUM_FRAMESIZES || size.index == 2) {
            errno = EINVAL;
            return -1;
        }
        size.type = size.index == 0 ? V4L2_FRMSIZE_TYPE_DISCRETE : V4L2_FRMSIZE_TYPE_CONTINUOUS;
        size.discrete = {100 + size.index, 50};
        return 0;
    });
    ImageFormat const format(3, yuyv);
    ASSERT_EQ(format.sizeNumber(), 2);
    EXPECT_EQ(format.frameSize(1)->width(), 101u);
}

TEST(ImageFormatTest, EndsTheListOfADriverThatNeverDoes)
{
    V4l2Hook const hook([](int, unsigned long request, void* argument) {
        if (request != VIDIOC_ENUM_FRAMESIZES) {
            errno = EINVAL;
            return -1;
        }
        static_cast<v4l2_frmsizeenum*>(argument)->type = V4L2_FRMSIZE_TYPE_DISCRETE;
        return 0;
    });
    EXPECT_EQ(ImageFormat(3, yuyv).sizeNumber(), 4096);
}

TEST(ImageFormatTest, FindsASizeByWidthAndHeight)
{
    auto const camera = aCamera()
                            .withFormat("YUYV")
                            .withSize(640, 480)
                            .withSize(640, 360)
                            .withSize(320, 480)
                            .withSize(640, 360)
                            .install();
    OpenNode const node;
    ImageFormat const format(node.fd(), yuyv);
    EXPECT_EQ(format.frameSizeIndex(640, 480), 0);
    EXPECT_EQ(format.frameSizeIndex(640, 360), 1) << "the first of two equal sizes";
    EXPECT_EQ(format.frameSizeIndex(320, 480), 2);
    EXPECT_EQ(format.frameSizeIndex(480, 640), -1);
    EXPECT_EQ(format.frameSizeIndex(0, 0), -1);
}

} // namespace
