// SPDX-License-Identifier: MIT
#include "DriverComparison.h"
#include "VividCamera.h"

#include <IFramePeriod.h>
#include <IFrameSize.h>
#include <IImageFormat.h>

#include <gtest/gtest.h>

using namespace ImageAcquisition;
using namespace KernelTest;

namespace
{

/// The format, size, line length and interval that v4l2-ctl reports as set.
std::string printedSelection()
{
    return v4l2Ctl(firstNode, "--get-fmt-video --get-parm");
}

void expectPrinted(std::string const& text, std::string const& wanted)
{
    EXPECT_NE(text.find(wanted), std::string::npos) << wanted << " is not in\n" << text;
}

std::string printed(char const* label, std::string const& value)
{
    return std::string(label) + value;
}

/// vivid's other inputs have ranges of sizes.
class OtherInput
{
public:
    explicit OtherInput(int number) { select(number); }
    ~OtherInput() { select(0); }
    OtherInput(OtherInput const&) = delete;
    OtherInput& operator=(OtherInput const&) = delete;

private:
    static void select(int number) { v4l2Ctl(firstNode, "-i " + std::to_string(number)); }
};

TEST(VividFormatTest, AreThoseThatV4l2CtlListsInEveryField)
{
    CameraPointer const camera = openCamera();
    std::vector<ListedFormat> const listed = listFormats(firstNode);
    ASSERT_GT(listed.size(), 10U);
    expectListedFormats(*camera, listed);
}

TEST(VividFormatTest, EndWithTheInvalidOne)
{
    CameraPointer const camera = openCamera();
    EXPECT_TRUE(camera->format(camera->formatNumber())->isInvalid());
    EXPECT_TRUE(camera->format(0)->frameSize(camera->format(0)->sizeNumber())->isInvalid());
    EXPECT_FALSE(camera->setCurrentImageFormat(camera->formatNumber(), 0, 0));
    EXPECT_FALSE(camera->setCurrentImageFormat("NONE", 320, 180, 1, 25));
    EXPECT_FALSE(camera->setCurrentImageFormat("YUYV", 321, 180, 1, 25));
    EXPECT_FALSE(camera->setCurrentImageFormat("YUYV", 320, 180, 1, 26));
}

TEST(VividFormatTest, EachOneIsSelectedAndReadBack)
{
    CameraPointer const camera = openCamera();
    for (int i = 0; i < camera->formatNumber(); ++i) {
        IImageFormat const* const format = camera->format(i);
        SCOPED_TRACE(format->description());
        int const size = i % format->sizeNumber();
        int const interval = i % format->frameSize(size)->periodNumber();
        ASSERT_TRUE(camera->setCurrentImageFormat(i, size, interval));
        EXPECT_EQ(camera->currentImageFormat(), format);
        EXPECT_EQ(camera->currentFrameSize(), format->frameSize(size));
        EXPECT_EQ(camera->currentFrameInterval(), format->frameSize(size)->period(interval));
    }
}

TEST(VividFormatTest, EachSizeAndIntervalIsSelectedAndReadBack)
{
    CameraPointer const camera = openCamera();
    IImageFormat const* const format = camera->format(1);
    for (int size = 0; size < format->sizeNumber(); ++size) {
        for (int interval = 0; interval < format->frameSize(size)->periodNumber(); ++interval) {
            ASSERT_TRUE(camera->setCurrentImageFormat(1, size, interval));
            EXPECT_EQ(camera->currentFrameSize(), format->frameSize(size));
            EXPECT_EQ(camera->currentFrameInterval(), format->frameSize(size)->period(interval));
        }
    }
}

TEST(VividFormatTest, WhatIsSelectedByIndexIsWhatV4l2CtlReports)
{
    CameraPointer const camera = openCamera();
    ASSERT_STREQ(camera->format(1)->name(), "UYVY");
    ASSERT_TRUE(camera->setCurrentImageFormat(1, 2, 4));
    std::string const text = printedSelection();
    expectPrinted(text, "Width/Height      : 640/480");
    expectPrinted(text, "Pixel Format      : 'UYVY'");
    expectPrinted(text, printed("Bytes per Line    : ",
                                std::to_string(camera->currentFrameSize()->bytesPerLine())));
    expectPrinted(text, "Frames per second: 10.000 (10/1)");
    EXPECT_EQ(camera->currentFrameSize()->bytesPerLine(), 640 * 2);
}

TEST(VividFormatTest, WhatIsSelectedByNameIsWhatV4l2CtlReports)
{
    CameraPointer const camera = openCamera();
    ASSERT_TRUE(camera->setCurrentImageFormat("GREY", 1280, 720, 2, 25));
    std::string const text = printedSelection();
    expectPrinted(text, "Width/Height      : 1280/720");
    expectPrinted(text, "Pixel Format      : 'GREY'");
    expectPrinted(text, "Frames per second: 12.500 (25/2)");
}

TEST(VividFormatTest, WhatV4l2CtlSelectsIsReadByACameraOpenedLater)
{
    v4l2Ctl(firstNode, "--set-fmt-video=width=640,height=360,pixelformat=NV12 --set-parm=15");
    CameraPointer const camera = openCamera();
    EXPECT_STREQ(camera->currentImageFormat()->name(), "NV12");
    EXPECT_EQ(camera->currentFrameSize()->width(), 640U);
    EXPECT_EQ(camera->currentFrameSize()->height(), 360U);
    EXPECT_EQ(camera->currentFrameInterval()->numerator(), 1U);
    EXPECT_EQ(camera->currentFrameInterval()->denominator(), 15U);
}

TEST(VividFormatTest, WhatV4l2CtlSelectsIsNotSeenByAnOpenCamera)
{
    CameraPointer const camera = openCamera();
    ASSERT_TRUE(selectSmall(*camera));
    v4l2Ctl(firstNode, "--set-fmt-video=width=640,height=360,pixelformat=NV12");
    // libv4l2 answers from its own memory.
    EXPECT_STREQ(camera->currentImageFormat()->name(), "YUYV");
    EXPECT_EQ(camera->currentFrameSize()->width(), 320U);
    ASSERT_TRUE(selectSmall(*camera));
    Stream const stream(*camera, 2);
    EXPECT_EQ(camera->acquireFrame()->bytesUsed(), smallSize);
}

TEST(VividFormatTest, ARangeOfSizesMakesNoListAndNoSelection)
{
    OtherInput const television(1);
    CameraPointer const camera = openCamera();
    ASSERT_GT(camera->formatNumber(), 10);
    for (int i = 0; i < camera->formatNumber(); ++i) {
        EXPECT_EQ(camera->format(i)->sizeNumber(), 0) << i;
    }
    EXPECT_FALSE(camera->currentImageFormat()->isInvalid());
    EXPECT_TRUE(camera->currentFrameSize()->isInvalid());
    EXPECT_TRUE(camera->currentFrameInterval()->isInvalid());
    EXPECT_FALSE(camera->setCurrentImageFormat(0, 0, 0));
}

} // namespace
