// SPDX-License-Identifier: MIT
// Buffers of the user-pointer method: asking, making, giving back.
#include "input/InputMethodUserPointers.h"

#include "DescriptorCount.h"
#include "DescriptorLimit.h"
#include "OpenNode.h"
#include "SmallCamera.h"

#include <gtest/gtest.h>

#include <linux/videodev2.h>

#include <cerrno>
#include <cstring>

namespace
{

using namespace ImageAcquisition;
using VirtualCamera::Call;
using VirtualCamera::CameraBuilder;

CameraBuilder userPointerCamera()
{
    return smallCamera().offeringMmap(false).offeringUserPointers();
}

TEST(InputMethodUserPointers, AsksForUserPointerCaptureBuffers)
{
    auto const camera = userPointerCamera().install();
    OpenNode const node;
    v4l2_requestbuffers request;
    std::memset(&request, 0xff, sizeof request);
    EXPECT_EQ(0, InputMethodUserPointers::requestBuffers(node.fd(), 3, request));
    v4l2_requestbuffers expected{};
    expected.count = 3;
    expected.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    expected.memory = V4L2_MEMORY_USERPTR;
    auto const sent = camera.calls(VIDIOC_REQBUFS).back().argument<v4l2_requestbuffers>();
    EXPECT_EQ(0, std::memcmp(&expected, &sent, sizeof sent));
}

TEST(InputMethodUserPointers, ReportsTheErrorOfARefusedRequest)
{
    auto const camera = userPointerCamera().failing(VIDIOC_REQBUFS, ENOMEM).install();
    OpenNode const node;
    v4l2_requestbuffers request;
    EXPECT_EQ(ENOMEM, InputMethodUserPointers::requestBuffers(node.fd(), 3, request));
}

TEST(InputMethodUserPointers, IsSupportedUnlessTheDriverAnswersEinval)
{
    {
        auto const camera = smallCamera().install();
        OpenNode const node;
        EXPECT_FALSE(InputMethodUserPointers::supported(node.fd()));
        EXPECT_EQ(1u, camera.countOf(VIDIOC_REQBUFS));
    }
    for (int const error : {0, EBUSY, EIO, ENODEV, ENOTTY}) {
        auto camera = userPointerCamera().install();
        if (error != 0) {
            camera.fail(VIDIOC_REQBUFS, error);
        }
        OpenNode const node;
        EXPECT_TRUE(InputMethodUserPointers::supported(node.fd())) << error;
        auto const calls = camera.calls(VIDIOC_REQBUFS);
        ASSERT_EQ(2u, calls.size());
        EXPECT_EQ(4u, calls[0].argument<v4l2_requestbuffers>().count);
        EXPECT_EQ(0u, calls[1].argument<v4l2_requestbuffers>().count);
        EXPECT_EQ(0, camera.accounting().allocatedBuffers);
    }
}

TEST(InputMethodUserPointers, FailsToSetUpWithAPipeBeforeItTouchesTheDevice)
{
    auto const camera = userPointerCamera().install();
    OpenNode const node;
    InputMethodUserPointers method(node.fd());
    EXPECT_EQ(-1, method.setup(3, smallImageSize));
    EXPECT_EQ(0u, camera.countOf(Call::Ioctl));
    EXPECT_EQ(IFrame::invalid(), method.acquireFrame());
    EXPECT_EQ(0, method.cleanup());
}

TEST(InputMethodUserPointers, LosesNoDescriptorByFailingSetups)
{
    auto const camera = userPointerCamera().install();
    OpenNode const node;
    int const before = openDescriptors();
    {
        InputMethodUserPointers method(node.fd());
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ(-1, method.setup(3, smallImageSize));
            EXPECT_EQ(before + 2, openDescriptors());
        }
    }
    EXPECT_EQ(before, openDescriptors());
}

TEST(InputMethodUserPointers, SetsUpWithoutAPipe)
{
    auto const camera = userPointerCamera().install();
    OpenNode const node;
    InputMethodUserPointers method(node.fd());
    {
        DescriptorLimit const none;
        EXPECT_EQ(0, method.setup(3, smallImageSize));
    }
    EXPECT_EQ(3, camera.accounting().allocatedBuffers);
    EXPECT_EQ(0, method.cleanup());
    EXPECT_EQ(0, camera.accounting().allocatedBuffers);
}

TEST(InputMethodUserPointers, MakesTheBuffersThatItAskedForWhateverWasGranted)
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
        {
            DescriptorLimit const none;
            ASSERT_EQ(0, method.setup(3, smallImageSize));
        }
        EXPECT_EQ(one.started, method.startCapture());
        EXPECT_EQ(3u, camera.countOf(VIDIOC_QBUF));
        method.stopCapture();
        method.cleanup();
    }
}

TEST(InputMethodUserPointers, TakesANegativeCountForNone)
{
    auto const camera = userPointerCamera().install();
    OpenNode const node;
    for (int const count : {0, -1, -2147483647 - 1}) {
        InputMethodUserPointers method(node.fd());
        {
            DescriptorLimit const none;
            EXPECT_EQ(0, method.setup(count, smallImageSize));
        }
        auto const sent = camera.calls(VIDIOC_REQBUFS).back().argument<v4l2_requestbuffers>();
        EXPECT_EQ(0u, sent.count);
        EXPECT_EQ(-1, method.startCapture());
        EXPECT_EQ(0u, camera.countOf(VIDIOC_QBUF));
        method.cleanup();
    }
}

TEST(InputMethodUserPointers, MakesItsInvalidFrameEvenWithoutBuffers)
{
    auto const camera = userPointerCamera().install();
    OpenNode const node;
    InputMethodUserPointers method(node.fd());
    {
        DescriptorLimit const none;
        ASSERT_EQ(0, method.setup(0, smallImageSize));
    }
    IFrame* const frame = method.acquireFrame();
    EXPECT_TRUE(frame->isInvalid());
    EXPECT_EQ(smallImageSize, frame->allocSize());
    EXPECT_EQ(0, method.releaseFrame(frame));
    EXPECT_EQ(0, method.cleanup());
    EXPECT_EQ(IFrame::invalid(), method.acquireFrame());
}

TEST(InputMethodUserPointers, FailsToSetUpWhenTheDriverRefuses)
{
    for (int const error : {EINVAL, EBUSY, EIO}) {
        auto const camera = userPointerCamera().failing(VIDIOC_REQBUFS, error).install();
        OpenNode const node;
        InputMethodUserPointers method(node.fd());
        DescriptorLimit const none;
        EXPECT_EQ(-1, method.setup(3, smallImageSize));
    }
}

} // namespace
