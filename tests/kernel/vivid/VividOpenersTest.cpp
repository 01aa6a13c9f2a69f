// SPDX-License-Identifier: MIT
#include "Shell.h"
#include "VividCamera.h"

#include <IImageFormat.h>
#include <factory/HelperV4l2.h>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <libv4l2.h>

using namespace ImageAcquisition;
using namespace KernelTest;

namespace
{

/// As many openings of a node as libv4l2 allows one process, which it counts by itself.
class FullTable
{
public:
    FullTable()
    {
        for (int fd; (fd = ::v4l2_open(firstNode, O_RDWR | O_NONBLOCK)) != -1;) {
            m_descriptors.push_back(fd);
        }
    }
    ~FullTable()
    {
        for (int const fd : m_descriptors) {
            HelperV4l2::close(fd);
        }
    }
    FullTable(FullTable const&) = delete;
    FullTable& operator=(FullTable const&) = delete;

    std::size_t size() const { return m_descriptors.size(); }

private:
    std::vector<int> m_descriptors;
};

TEST(VividOpenersTest, TheSecondCannotCaptureWhileTheFirstDoes)
{
    CameraPointer const first = openCamera();
    CameraPointer const second = openCamera();
    ASSERT_TRUE(selectSmall(*first));
    Stream const stream(*first, 4);

    EXPECT_FALSE(selectSmall(*second, "GREY"));
    EXPECT_EQ(second->setup(4), -1);
    EXPECT_EQ(second->startCapture(), -1);
    EXPECT_TRUE(second->acquireFrame()->isInvalid());
    // libv4l2 has no stream of the second to turn off, which it calls a success.
    EXPECT_EQ(second->stopCapture(), 0);
    EXPECT_EQ(second->cleanup(), 0);

    for (int i = 0; i < 10; ++i) {
        IFrame* const frame = first->acquireFrame();
        ASSERT_FALSE(frame->isInvalid()) << "the second disturbed the first, frame " << i;
        EXPECT_EQ(first->releaseFrame(frame), 0);
    }
}

TEST(VividOpenersTest, OneThatOpensWhileAnotherStreamsSeesEverythingAndCapturesLater)
{
    CameraPointer const first = openCamera();
    ASSERT_TRUE(selectSmall(*first));
    CameraPointer second;
    {
        Stream const stream(*first, 4);
        second = openCamera();
        ASSERT_NE(second, nullptr);
        EXPECT_EQ(second->formatNumber(), first->formatNumber());
        EXPECT_EQ(second->controlNumber(), first->controlNumber());
        EXPECT_STREQ(second->currentImageFormat()->name(), "YUYV");
        IFrame* const frame = first->acquireFrame();
        EXPECT_FALSE(frame->isInvalid());
    }
    Stream const stream(*second, 4);
    EXPECT_FALSE(second->acquireFrame()->isInvalid());
}

TEST(VividOpenersTest, AnotherProgramIsKeptOut)
{
    CameraPointer const camera = openCamera();
    ASSERT_TRUE(selectSmall(*camera));
    Stream const stream(*camera, 4);
    CommandResult const other =
        runShell("v4l2-ctl -d /dev/video0 --stream-mmap --stream-count=1 --stream-to=/dev/null");
    EXPECT_NE(other.output.find("Device or resource busy"), std::string::npos) << other.output;
    EXPECT_FALSE(camera->acquireFrame()->isInvalid());
}

TEST(VividOpenersTest, TheSeventeenthOpeningInAProcessIsAnEmptyCamera)
{
    {
        FullTable const table;
        EXPECT_EQ(table.size(), 16U);
        CameraPointer const camera = openCamera();
        ASSERT_NE(camera, nullptr);
        EXPECT_EQ(camera->formatNumber(), 0);
        EXPECT_EQ(camera->controlNumber(), 0);
        EXPECT_EQ(camera->setup(4), -1);
        EXPECT_TRUE(camera->acquireFrame()->isInvalid());
    }
    EXPECT_GT(openCamera()->formatNumber(), 0);
}

} // namespace
