// SPDX-License-Identifier: MIT
// Buffers of the user-pointer method: asking, making, giving back.
#include "input/InputMethodUserPointers.h"

#include "DescriptorCount.h"
#include "Stream.h"

#include <gtest/gtest.h>

#include <linux/videodev2.h>

#include <cerrno>

namespace
{

using namespace ImageAcquisition;
using VirtualCamera::Call;

VirtualCamera::CameraBuilder userPointerCamera()
{
    return cameraFor<InputMethodUserPointers>();
}

TEST(InputMethodUserPointersSetupTest, IsSupportedUnlessTheDriverAnswersEinval)
{
    {
        auto const camera = smallCamera().install();
        OpenNode const node;
        EXPECT_FALSE(InputMethodUserPointers::supported(node.fd()));
        EXPECT_EQ(camera.countOf(VIDIOC_REQBUFS), 1u);
    }
    for (int const error : {0, EBUSY, EIO, ENODEV, ENOTTY}) {
        auto camera = userPointerCamera().install();
        if (error != 0) {
            camera.fail(VIDIOC_REQBUFS, error);
        }
        OpenNode const node;
        EXPECT_TRUE(InputMethodUserPointers::supported(node.fd())) << error;
        auto const calls = camera.calls(VIDIOC_REQBUFS);
        ASSERT_EQ(calls.size(), 2u);
        EXPECT_EQ(calls[0].argument<v4l2_requestbuffers>().count, 4u);
        EXPECT_EQ(calls[1].argument<v4l2_requestbuffers>().count, 0u);
        EXPECT_EQ(camera.accounting().allocatedBuffers, 0);
    }
}

TEST(InputMethodUserPointersSetupTest, FailsToSetUpWithAPipeBeforeItTouchesTheDevice)
{
    auto const camera = userPointerCamera().install();
    OpenNode const node;
    InputMethodUserPointers method(node.fd());
    EXPECT_EQ(method.setup(3, smallImageSize), -1);
    EXPECT_EQ(camera.countOf(Call::Ioctl), 0u);
    EXPECT_EQ(IFrame::invalid(), method.acquireFrame());
    EXPECT_EQ(method.cleanup(), 0);
}

TEST(InputMethodUserPointersSetupTest, LosesNoDescriptorByFailingSetups)
{
    auto const camera = userPointerCamera().install();
    OpenNode const node;
    int const before = openDescriptors();
    {
        InputMethodUserPointers method(node.fd());
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ(method.setup(3, smallImageSize), -1);
            EXPECT_EQ(openDescriptors(), before + 2);
        }
    }
    EXPECT_EQ(openDescriptors(), before);
}

TEST(InputMethodUserPointersSetupTest, SetsUpWithoutAPipe)
{
    auto const camera = userPointerCamera().install();
    OpenNode const node;
    InputMethodUserPointers method(node.fd());
    EXPECT_EQ(setUp(method, 3), 0);
    EXPECT_EQ(camera.accounting().allocatedBuffers, 3);
    EXPECT_EQ(method.cleanup(), 0);
    EXPECT_EQ(camera.accounting().allocatedBuffers, 0);
}

TEST(InputMethodUserPointersSetupTest, MakesTheBuffersThatItAskedForWhateverWasGranted)
{
    struct
    {
        unsigned int most;
        unsigned int fewest;
        int started;
    } const cases[] = {{32, 0, 0}, {2, 0, -1}, {32, 5, 0}};
    for (auto const& one : cases) {
        auto const camera =
            userPointerCamera().grantingAtMost(one.most).grantingAtLeast(one.fewest).install();
        OpenNode const node;
        InputMethodUserPointers method(node.fd());
        ASSERT_EQ(setUp(method, 3), 0);
        EXPECT_EQ(method.startCapture(), one.started);
        EXPECT_EQ(camera.countOf(VIDIOC_QBUF), 3u);
        method.stopCapture();
        method.cleanup();
    }
}

TEST(InputMethodUserPointersSetupTest, TakesANegativeCountForNone)
{
    auto const camera = userPointerCamera().install();
    OpenNode const node;
    for (int const count : {0, -1, -2147483647 - 1}) {
        InputMethodUserPointers method(node.fd());
        EXPECT_EQ(setUp(method, count), 0);
        auto const sent = camera.calls(VIDIOC_REQBUFS).back().argument<v4l2_requestbuffers>();
        EXPECT_EQ(sent.count, 0u);
        EXPECT_EQ(method.startCapture(), -1);
        EXPECT_EQ(camera.countOf(VIDIOC_QBUF), 0u);
        method.cleanup();
    }
}

TEST(InputMethodUserPointersSetupTest, MakesItsInvalidFrameEvenWithoutBuffers)
{
    auto const camera = userPointerCamera().install();
    OpenNode const node;
    InputMethodUserPointers method(node.fd());
    ASSERT_EQ(setUp(method, 0), 0);
    IFrame* const frame = method.acquireFrame();
    EXPECT_TRUE(frame->isInvalid());
    EXPECT_EQ(frame->allocSize(), smallImageSize);
    EXPECT_EQ(method.releaseFrame(frame), 0);
    EXPECT_EQ(method.cleanup(), 0);
    EXPECT_EQ(IFrame::invalid(), method.acquireFrame());
}

TEST(InputMethodUserPointersSetupTest, FailsToSetUpWhenTheDriverRefuses)
{
    for (int const error : {EINVAL, EBUSY, EIO}) {
        auto const camera = userPointerCamera().failing(VIDIOC_REQBUFS, error).install();
        OpenNode const node;
        InputMethodUserPointers method(node.fd());
        EXPECT_EQ(setUp(method, 3), -1);
    }
}

} // namespace
