// SPDX-License-Identifier: MIT
#include "factory/HelperV4l2.h"

#include "OpenNode.h"
#include "V4l2Hook.h"
#include "VirtualCamera.h"

#include <gtest/gtest.h>

#include <linux/videodev2.h>

#include <cerrno>
#include <vector>

namespace
{

using ImageAcquisition::HelperV4l2;
using VirtualCamera::aCamera;
using VirtualCamera::Call;

/// Gives the results in turn; -1 sets the errno at the same position.
struct Answers
{
    int next()
    {
        errno = errors.at(used);
        return results.at(used++);
    }

    std::vector<int> results;
    std::vector<int> errors;
    std::size_t used = 0;
};

TEST(HelperV4l2Test, HandsTheRequestOnWithoutItsSign)
{
    unsigned long seen = 0;
    V4l2Hook const hook([&seen](int, unsigned long request, void*) {
        seen = request;
        return 0;
    });
    EXPECT_EQ(HelperV4l2::xioctl(3, static_cast<int>(VIDIOC_QUERYCAP), nullptr), 0);
    EXPECT_EQ(seen, VIDIOC_QUERYCAP);
    EXPECT_EQ(HelperV4l2::xioctl(3, VIDIOC_QUERYCAP, nullptr), 0);
    EXPECT_EQ(seen, VIDIOC_QUERYCAP);
}

TEST(HelperV4l2Test, RepeatsAnIoctlThatASignalInterrupted)
{
    auto const camera = aCamera().failing(VIDIOC_QUERYCAP, EINTR, 1).install();
    OpenNode const node;
    v4l2_capability capability{};
    EXPECT_EQ(HelperV4l2::xioctl(node.fd(), VIDIOC_QUERYCAP, &capability), 0);
    EXPECT_EQ(camera.countOf(VIDIOC_QUERYCAP), 2u);
}

TEST(HelperV4l2Test, RepeatsAnIoctlForAsLongAsItIsInterrupted)
{
    Answers answers{{-1, -1, -1, 0}, {EINTR, EINTR, EINTR, 0}};
    V4l2Hook const hook([&answers](int, unsigned long, void*) { return answers.next(); });
    EXPECT_EQ(HelperV4l2::xioctl(3, VIDIOC_QUERYCAP, nullptr), 0);
    EXPECT_EQ(answers.used, 4u);
}

TEST(HelperV4l2Test, ReturnsAnyOtherFailureOfAnIoctlAtOnce)
{
    for (int const error : {EINVAL, EAGAIN, ENODEV, EBUSY, EIO, EBADF}) {
        Answers answers{{-1}, {error}};
        V4l2Hook const hook([&answers](int, unsigned long, void*) { return answers.next(); });
        EXPECT_EQ(HelperV4l2::xioctl(3, VIDIOC_QUERYCAP, nullptr), -1);
        EXPECT_EQ(error, errno);
    }
}

TEST(HelperV4l2Test, ReturnsAPositiveResultOfAnIoctl)
{
    Answers answers{{7}, {EINTR}};
    V4l2Hook const hook([&answers](int, unsigned long, void*) { return answers.next(); });
    EXPECT_EQ(HelperV4l2::xioctl(3, VIDIOC_QUERYCAP, nullptr), 7);
}

TEST(HelperV4l2Test, RepeatsACloseThatASignalInterrupted)
{
    auto const camera = aCamera().failing(Call::Close, EINTR, 1).install();
    int const fd = v4l2_open("/dev/video0", O_RDWR | O_NONBLOCK);
    EXPECT_EQ(HelperV4l2::close(fd), 0);
    EXPECT_EQ(camera.countOf(Call::Close), 2u);
    EXPECT_EQ(camera.accounting().openDescriptors, 0);
}

TEST(HelperV4l2Test, ReturnsAnyOtherFailureOfACloseAtOnce)
{
    Answers answers{{-1}, {EIO}};
    V4l2Hook const hook([&answers](int) { return answers.next(); });
    EXPECT_EQ(HelperV4l2::close(3), -1);
    EXPECT_EQ(errno, EIO);
}

TEST(HelperV4l2Test, RepeatsACloseWithAResultThatIsNeitherSuccessNorFailure)
{
    Answers answers{{1, -2, -1, 0}, {EIO, EIO, EINTR, 0}};
    V4l2Hook const hook([&answers](int) { return answers.next(); });
    EXPECT_EQ(HelperV4l2::close(3), 0);
    EXPECT_EQ(answers.used, 4u);
}

} // namespace
