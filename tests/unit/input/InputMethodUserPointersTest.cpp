// SPDX-License-Identifier: MIT
// Streaming with the user-pointer method, which only sets up where no pipe can be made.
#include "input/InputMethodUserPointers.h"

#include "DescriptorLimit.h"
#include "OpenNode.h"
#include "SmallCamera.h"
#include "Stopwatch.h"
#include "input/InputMethodRead.h"

#include <gtest/gtest.h>

#include <linux/videodev2.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <set>

namespace
{

using namespace ImageAcquisition;
using VirtualCamera::Call;
using VirtualCamera::CameraBuilder;
using VirtualCamera::InstalledCamera;
using VirtualCamera::Pace;

CameraBuilder userPointerCamera()
{
    return smallCamera().offeringMmap(false).offeringUserPointers();
}

class UserPointerStream
{
public:
    explicit UserPointerStream(CameraBuilder const& builder, int buffers = 3)
        : camera(builder.install()), method(node.fd())
    {
        DescriptorLimit const none;
        m_setUp = method.setup(buffers, smallImageSize) == 0 && method.startCapture() == 0;
    }
    UserPointerStream(UserPointerStream const&) = delete;
    UserPointerStream& operator=(UserPointerStream const&) = delete;
    ~UserPointerStream()
    {
        EXPECT_TRUE(m_setUp);
        method.stopCapture();
        method.cleanup();
        EXPECT_EQ(camera.accounting().allocatedBuffers, 0);
    }

    InstalledCamera camera;
    OpenNode const node;
    InputMethodUserPointers method;

private:
    bool m_setUp = false;
};

TEST(InputMethodUserPointersTest, LendsItsBuffersInOrderAndStarts)
{
    UserPointerStream stream(userPointerCamera());
    auto const queued = stream.camera.calls(VIDIOC_QBUF);
    ASSERT_EQ(queued.size(), 3u);
    std::set<unsigned long> addresses;
    for (unsigned int i = 0; i < 3; ++i) {
        auto const buffer = queued[i].argument<v4l2_buffer>();
        EXPECT_EQ(i, buffer.index);
        EXPECT_EQ(buffer.type, static_cast<__u32>(V4L2_BUF_TYPE_VIDEO_CAPTURE));
        EXPECT_EQ(buffer.memory, static_cast<__u32>(V4L2_MEMORY_USERPTR));
        EXPECT_EQ(buffer.length, smallImageSize);
        addresses.insert(buffer.m.userptr);
    }
    EXPECT_EQ(addresses.size(), 3u);
    EXPECT_TRUE(stream.camera.accounting().streaming);
    EXPECT_EQ(stream.method.type(), InputMethod::UserPointers);
}

TEST(InputMethodUserPointersTest, DoesNotStartWhenTheDriverRefuses)
{
    struct
    {
        unsigned long request;
        unsigned use;
    } const cases[] = {{VIDIOC_QBUF, 2}, {VIDIOC_STREAMON, 1}};
    for (auto const& one : cases) {
        auto const camera = userPointerCamera().failing(one.request, EIO, one.use).install();
        OpenNode const node;
        InputMethodUserPointers method(node.fd());
        {
            DescriptorLimit const none;
            ASSERT_EQ(method.setup(3, smallImageSize), 0);
        }
        EXPECT_EQ(method.startCapture(), -1);
        EXPECT_FALSE(camera.accounting().streaming);
        method.cleanup();
    }
}

TEST(InputMethodUserPointersTest, DeliversThePicturesInOrder)
{
    UserPointerStream stream(userPointerCamera().paced(Pace::OnDemand));
    for (unsigned int number = 0; number < 10; ++number) {
        stream.camera.deliverFrames(1);
        IFrame* const frame = stream.method.acquireFrame();
        ASSERT_FALSE(frame->isInvalid());
        EXPECT_EQ(frame->counter(), number);
        EXPECT_EQ(frame->size(), smallImageSize);
        EXPECT_EQ(frame->allocSize(), smallImageSize);
        EXPECT_GT(frame->timeStamp().seconds * 1000000 + frame->timeStamp().microseconds, 0);
        EXPECT_FALSE(frame->isCorrupted());
        auto const expected = VirtualCamera::testPattern(V4L2_PIX_FMT_YUYV, 64, 48, number);
        EXPECT_TRUE(std::equal(expected.begin(), expected.end(), frame->bytePtr()));
        EXPECT_EQ(stream.method.releaseFrame(frame), 0);
    }
}

TEST(InputMethodUserPointersTest, GivesBackTheBufferAsItWasDequeued)
{
    UserPointerStream stream(userPointerCamera());
    IFrame* const frame = stream.method.acquireFrame();
    auto const dequeued = stream.camera.calls(VIDIOC_DQBUF).back().answer<v4l2_buffer>();
    EXPECT_EQ(reinterpret_cast<unsigned long>(frame->bytePtr()), dequeued.m.userptr);
    EXPECT_EQ(stream.method.releaseFrame(frame), 0);
    auto const queued = stream.camera.calls(VIDIOC_QBUF).back().argument<v4l2_buffer>();
    EXPECT_EQ(std::memcmp(&dequeued, &queued, sizeof queued), 0);
}

TEST(InputMethodUserPointersTest, ReportsThatTheDriverRefusedAFrame)
{
    UserPointerStream stream(userPointerCamera());
    IFrame* const frame = stream.method.acquireFrame();
    stream.camera.fail(VIDIOC_QBUF, EIO);
    EXPECT_EQ(stream.method.releaseFrame(frame), -1);
}

TEST(InputMethodUserPointersTest, RefusesNullAndForeignFramesAndTakesInvalidOnes)
{
    UserPointerStream stream(userPointerCamera());
    InputMethodRead::Frame foreign(10);
    unsigned const before = stream.camera.countOf(Call::Ioctl);
    EXPECT_EQ(stream.method.releaseFrame(nullptr), -1);
    EXPECT_EQ(stream.method.releaseFrame(&foreign), -1);
    EXPECT_EQ(stream.method.releaseFrame(IFrame::invalid()), 0);
    EXPECT_EQ(stream.camera.countOf(Call::Ioctl), before);
}

TEST(InputMethodUserPointersTest, FindsTheFrameByItsAddressAndNotByTheIndex)
{
    UserPointerStream stream(userPointerCamera().withWrongIndex(0, 77));
    IFrame* const frame = stream.method.acquireFrame();
    EXPECT_FALSE(frame->isInvalid());
    auto const dequeued = stream.camera.calls(VIDIOC_DQBUF).back().answer<v4l2_buffer>();
    EXPECT_EQ(dequeued.index, 77u);
    EXPECT_EQ(reinterpret_cast<unsigned long>(frame->bytePtr()), dequeued.m.userptr);
}

TEST(InputMethodUserPointersTest, GivesUpAtOnceForABufferThatIsNotItsOwn)
{
    for (bool const wrongLength : {true, false}) {
        auto builder = userPointerCamera();
        if (wrongLength) {
            builder.withWrongLength(0, smallImageSize + 1);
        } else {
            builder.withWrongUserPointer(0, 0x1000);
        }
        UserPointerStream stream(builder);
        Stopwatch const watch;
        IFrame* const frame = stream.method.acquireFrame();
        EXPECT_TRUE(frame->isInvalid());
        EXPECT_EQ(frame->allocSize(), smallImageSize);
        EXPECT_EQ(stream.camera.countOf(VIDIOC_DQBUF), 1u);
        EXPECT_LT(watch.seconds(), 1);
    }
}

TEST(InputMethodUserPointersTest, HandsOutDamagedFramesMarked)
{
    UserPointerStream stream(userPointerCamera().withCorruptedFrame(0));
    IFrame* const frame = stream.method.acquireFrame();
    EXPECT_FALSE(frame->isInvalid());
    EXPECT_TRUE(frame->isCorrupted());
    EXPECT_EQ(stream.method.releaseFrame(frame), 0);
}

TEST(InputMethodUserPointersTest, ReportsShortFramesByTheirBytes)
{
    UserPointerStream stream(userPointerCamera().withShortFrame(0, 100));
    IFrame* const frame = stream.method.acquireFrame();
    EXPECT_EQ(frame->bytesUsed(), 100u);
    EXPECT_EQ(frame->size(), 100u);
    EXPECT_EQ(frame->allocSize(), smallImageSize);
}

TEST(InputMethodUserPointersTest, GivesUpAfterTwoSecondsWithoutAFrame)
{
    UserPointerStream stream(userPointerCamera().withoutFrames());
    Stopwatch const watch;
    EXPECT_TRUE(stream.method.acquireFrame()->isInvalid());
    EXPECT_GE(watch.seconds(), 1.99);
    EXPECT_LT(watch.seconds(), 3);
    EXPECT_EQ(stream.camera.countOf(VIDIOC_DQBUF), 0u);
}

TEST(InputMethodUserPointersTest, TriesAsOftenAsTheDriverSaysAgain)
{
    UserPointerStream stream(userPointerCamera());
    for (unsigned int use = 1; use <= 50; ++use) {
        stream.camera.fail(VIDIOC_DQBUF, EAGAIN, use);
    }
    EXPECT_FALSE(stream.method.acquireFrame()->isInvalid());
    EXPECT_EQ(stream.camera.countOf(VIDIOC_DQBUF), 51u);
}

TEST(InputMethodUserPointersTest, GivesUpAtOnceForAnyOtherError)
{
    for (int const error : {EIO, ENODEV, EINVAL}) {
        UserPointerStream stream(userPointerCamera());
        stream.camera.failFrom(VIDIOC_DQBUF, error);
        EXPECT_TRUE(stream.method.acquireFrame()->isInvalid());
        EXPECT_EQ(stream.camera.countOf(VIDIOC_DQBUF), 1u);
    }
}

TEST(InputMethodUserPointersTest, EndsTheAttemptsOnceAStopIsPending)
{
    UserPointerStream stream(userPointerCamera());
    // A second setup leaves the buffers alone, and opens the pipe that the first could not.
    ASSERT_EQ(stream.method.setup(3, smallImageSize), -1);
    stream.camera.failFrom(VIDIOC_DQBUF, EAGAIN);
    stream.camera.fail(VIDIOC_STREAMOFF, EIO);
    EXPECT_EQ(stream.method.stopCapture(), -1);
    Stopwatch const watch;
    EXPECT_TRUE(stream.method.acquireFrame()->isInvalid());
    EXPECT_EQ(stream.camera.countOf(VIDIOC_DQBUF), 1u);
    EXPECT_LT(watch.seconds(), 1);
}

TEST(InputMethodUserPointersTest, StopsStreaming)
{
    UserPointerStream stream(userPointerCamera());
    EXPECT_EQ(stream.method.stopCapture(), 0);
    EXPECT_FALSE(stream.camera.accounting().streaming);
}

} // namespace
