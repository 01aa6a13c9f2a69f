// SPDX-License-Identifier: MIT
// A program with a stream that forks: the child shares the camera, and must leave it alone.
#include "StreamedCamera.h"
#include "V4l2Hook.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>

namespace
{

using namespace ImageAcquisition::Session;

/// Runs in the child; the number of the first thing that is wrong, or 0.
int faultInChild(Camera& camera, Stream& stream, Frame& frame, std::atomic<int> const& calls)
{
    int const before = calls;
    if (stream.next(-1ms)) {
        return 1;
    }
    if (stream.state() != StreamState::Stopped || stream.error()) {
        return 2;
    }
    if (stream.statistics().reason.empty()) {
        return 3;
    }
    if (waitAny({&stream}, -1ms) != 0) {
        return 5;
    }
    for (Frame const& taken : stream) {
        return taken ? 6 : 7;
    }
    try {
        camera.stream();
        return 8;
    } catch (Error const&) {
    }
    stream.stop();
    {
        Camera const gone(std::move(camera));
        Stream const end(std::move(stream));
        frame.release();
    }
    return calls == before ? 0 : 4;
}

TEST(StreamForkTest, LeavesTheParentsStreamAlone)
{
    StreamedCamera device(StreamedCamera::onDemand());
    std::atomic<int> calls{0};
    V4l2Hook const hook([&](int fd, unsigned long request, void* argument) {
        ++calls;
        return V4l2Hook::realIoctl(fd, request, argument);
    });
    Camera camera = device.open();
    Stream stream = camera.stream();
    device->deliverFrames(1);
    Frame frame = stream.next(5s);
    ASSERT_TRUE(frame);
    pid_t const child = fork();
    if (child == 0) {
        alarm(20);
        _exit(faultInChild(camera, stream, frame, calls));
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status)) << "signal " << WTERMSIG(status);
    EXPECT_EQ(WEXITSTATUS(status), 0);
    EXPECT_EQ(stream.state(), StreamState::Running);
    for (unsigned long long number = 1; number < 10; ++number) {
        device->deliverFrames(1);
        EXPECT_EQ(stream.next(5s).number(), number);
    }
    EXPECT_EQ(frame.bytes().size(), smallImageSize);
}

} // namespace
