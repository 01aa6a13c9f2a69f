// SPDX-License-Identifier: MIT
#include "VividCamera.h"

#include <IFramePeriod.h>
#include <IFrameSize.h>
#include <IImageFormat.h>

#include <gtest/gtest.h>

#include <cerrno>

using namespace ImageAcquisition;
using namespace KernelTest;

namespace
{

// What no call of a camera fails with.
constexpr int earlier = ENOTBLK;

struct Outcome
{
    bool good;
    int error;
};

template <typename Action>
Outcome outcomeOf(Action const& action)
{
    errno = earlier;
    bool const good = action();
    return {good, errno};
}

template <typename Action>
void expectUntouched(char const* name, Action const& action)
{
    Outcome const outcome = outcomeOf(action);
    EXPECT_TRUE(outcome.good) << name;
    EXPECT_EQ(outcome.error, earlier) << name;
}

} // namespace

// Also where libv4l2 converts the pictures, and tries and fails a lot on its way.
TEST(VividErrnoTest, IsUntouchedByEveryCallOfACapture)
{
    for (char const* const format : {"YUYV", "BGR3"}) {
        SCOPED_TRACE(format);
        CameraPointer camera;
        expectUntouched("open", [&] { return (camera = openCamera()) != nullptr; });
        expectUntouched("select", [&] { return selectSmall(*camera, format); });
        expectUntouched("format", [&] { return !camera->currentImageFormat()->isInvalid(); });
        expectUntouched("size", [&] { return !camera->currentFrameSize()->isInvalid(); });
        expectUntouched("interval", [&] { return !camera->currentFrameInterval()->isInvalid(); });
        expectUntouched("setup", [&] { return camera->setup(4) == 0; });
        expectUntouched("start", [&] { return camera->startCapture() == 0; });
        for (int i = 0; i < 10; ++i) {
            IFrame* frame = nullptr;
            expectUntouched("acquire", [&] {
                frame = camera->acquireFrame();
                return !frame->isInvalid();
            });
            expectUntouched("release", [&] { return camera->releaseFrame(frame) == 0; });
        }
        expectUntouched("stop", [&] { return camera->stopCapture() == 0; });
        EXPECT_EQ(outcomeOf([&] { return !camera->acquireFrame()->isInvalid(); }).error, EINVAL)
            << "nothing streams any more";
        expectUntouched("cleanup", [&] { return camera->cleanup() == 0; });
    }
}

TEST(VividErrnoTest, TellsThatAnotherCaptures)
{
    CameraPointer const first = openCamera();
    CameraPointer const second = openCamera();
    ASSERT_TRUE(selectSmall(*first));
    Stream const stream(*first, 4);
    EXPECT_EQ(outcomeOf([&] { return selectSmall(*second, "GREY"); }).error, EBUSY);
    EXPECT_EQ(outcomeOf([&] { return second->setup(4) == 0; }).error, EBUSY);
}

TEST(VividErrnoTest, TellsThatThereIsNoSuchNode)
{
    EXPECT_EQ(outcomeOf([] { return openCamera("/dev/video77") != nullptr; }).error, ENOENT);
}
