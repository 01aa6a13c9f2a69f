// SPDX-License-Identifier: MIT
// What the two methods have in common whose buffers the driver fills.
#include "Stopwatch.h"
#include "Stream.h"
#include "input/InputMethodRead.h"

#include <gtest/gtest.h>

#include <linux/videodev2.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <numeric>
#include <vector>

namespace
{

using namespace ImageAcquisition;
using VirtualCamera::Call;
using VirtualCamera::Pace;

template <typename Method>
class InputMethodStreamTest : public testing::Test
{
protected:
    using OwnStream = Stream<Method>;

    static VirtualCamera::CameraBuilder camera() { return cameraFor<Method>(); }

    static void expectNotToStart()
    {
        OpenNode const node;
        Method method(node.fd());
        ASSERT_EQ(setUp(method, 3), 0);
        EXPECT_EQ(method.startCapture(), -1);
        method.cleanup();
    }
};

using Methods = testing::Types<InputMethodMemoryMapping, InputMethodUserPointers>;
TYPED_TEST_SUITE(InputMethodStreamTest, Methods);

TYPED_TEST(InputMethodStreamTest, AsksForCaptureBuffersOfItsKindOfMemory)
{
    auto const camera = this->camera().install();
    OpenNode const node;
    v4l2_requestbuffers request;
    std::memset(&request, 0xff, sizeof request);
    EXPECT_EQ(TypeParam::requestBuffers(node.fd(), 3, request), 0);
    EXPECT_EQ(request.count, 3u);
    v4l2_requestbuffers expected{};
    expected.count = 3;
    expected.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    expected.memory = isMapped<TypeParam> ? V4L2_MEMORY_MMAP : V4L2_MEMORY_USERPTR;
    auto const sent = camera.calls(VIDIOC_REQBUFS).back().template argument<v4l2_requestbuffers>();
    EXPECT_EQ(std::memcmp(&expected, &sent, sizeof sent), 0);
}

TYPED_TEST(InputMethodStreamTest, ReportsTheErrorOfARefusedRequest)
{
    for (int const error : {EBUSY, ENOMEM}) {
        auto const camera = this->camera().failing(VIDIOC_REQBUFS, error).install();
        OpenNode const node;
        v4l2_requestbuffers request;
        EXPECT_EQ(TypeParam::requestBuffers(node.fd(), 3, request), error);
    }
}

TYPED_TEST(InputMethodStreamTest, DoesNotStartWhenABufferIsRefused)
{
    auto const camera = this->camera().failing(VIDIOC_QBUF, EIO, 2).install();
    this->expectNotToStart();
    EXPECT_EQ(camera.countOf(VIDIOC_QBUF), 2u);
    EXPECT_EQ(camera.countOf(VIDIOC_STREAMON), 0u);
    EXPECT_FALSE(camera.accounting().streaming);
}

TYPED_TEST(InputMethodStreamTest, DoesNotStartWhenTheDriverRefuses)
{
    auto const camera = this->camera().failing(VIDIOC_STREAMON, EIO).install();
    this->expectNotToStart();
    EXPECT_FALSE(camera.accounting().streaming);
}

TYPED_TEST(InputMethodStreamTest, DeliversThePicturesInOrder)
{
    typename TestFixture::OwnStream stream(this->camera().paced(Pace::OnDemand));
    std::int64_t earlier = 0;
    for (unsigned int number = 0; number < 10; ++number) {
        stream.camera.deliverFrames(1);
        IFrame* const frame = stream.method.acquireFrame();
        ASSERT_FALSE(frame->isInvalid());
        EXPECT_EQ(frame->counter(), number);
        EXPECT_EQ(frame->bytesUsed(), smallImageSize);
        EXPECT_EQ(frame->size(), smallImageSize);
        EXPECT_EQ(frame->allocSize(), smallImageSize);
        EXPECT_FALSE(frame->isCorrupted());
        std::int64_t const time =
            frame->timeStamp().seconds * 1000000 + frame->timeStamp().microseconds;
        EXPECT_LE(earlier, time);
        EXPECT_GT(time, 0);
        earlier = time;
        auto const expected = VirtualCamera::testPattern(V4L2_PIX_FMT_YUYV, 64, 48, number);
        ASSERT_EQ(expected.size(), smallImageSize);
        EXPECT_TRUE(std::equal(expected.begin(), expected.end(), frame->bytePtr()));
        EXPECT_EQ(stream.method.releaseFrame(frame), 0);
    }
}

TYPED_TEST(InputMethodStreamTest, ReportsShortFramesByTheirBytes)
{
    typename TestFixture::OwnStream stream(this->camera().withShortFrame(0, 100));
    IFrame* const frame = stream.method.acquireFrame();
    EXPECT_EQ(frame->bytesUsed(), 100u);
    EXPECT_EQ(frame->size(), 100u);
    EXPECT_EQ(frame->allocSize(), smallImageSize);
}

TYPED_TEST(InputMethodStreamTest, HandsOutDamagedFramesMarked)
{
    typename TestFixture::OwnStream stream(this->camera().withCorruptedFrame(0), 1);
    IFrame* const frame = stream.method.acquireFrame();
    EXPECT_FALSE(frame->isInvalid());
    EXPECT_TRUE(frame->isCorrupted());
    EXPECT_EQ(stream.camera.accounting().queuedBuffers, 0);
    EXPECT_EQ(stream.method.releaseFrame(frame), 0);
    EXPECT_EQ(stream.camera.accounting().queuedBuffers, 1);
    EXPECT_FALSE(stream.method.acquireFrame()->isCorrupted());
}

TYPED_TEST(InputMethodStreamTest, GivesBackTheBufferAsItWasDequeued)
{
    typename TestFixture::OwnStream stream(this->camera());
    IFrame* const frame = stream.method.acquireFrame();
    auto const dequeued = stream.camera.calls(VIDIOC_DQBUF).back().template answer<v4l2_buffer>();
    if (!isMapped<TypeParam>) {
        EXPECT_EQ(reinterpret_cast<unsigned long>(frame->bytePtr()), dequeued.m.userptr);
    }
    EXPECT_EQ(stream.method.releaseFrame(frame), 0);
    auto const queued = stream.camera.calls(VIDIOC_QBUF).back().template argument<v4l2_buffer>();
    EXPECT_EQ(std::memcmp(&dequeued, &queued, sizeof queued), 0);
}

TYPED_TEST(InputMethodStreamTest, ReportsThatTheDriverRefusedAFrame)
{
    typename TestFixture::OwnStream stream(this->camera());
    IFrame* const frame = stream.method.acquireFrame();
    stream.camera.fail(VIDIOC_QBUF, EIO);
    EXPECT_EQ(stream.method.releaseFrame(frame), -1);
    EXPECT_EQ(stream.method.releaseFrame(frame), 0);
}

TYPED_TEST(InputMethodStreamTest, RefusesNullAndForeignFramesWithoutTheDriver)
{
    typename TestFixture::OwnStream stream(this->camera());
    InputMethodRead::Frame foreign(10);
    unsigned const before = stream.camera.countOf(Call::Ioctl);
    EXPECT_EQ(stream.method.releaseFrame(nullptr), -1);
    EXPECT_EQ(stream.method.releaseFrame(&foreign), -1);
    EXPECT_EQ(stream.method.releaseFrame(IFrame::invalid()), 0);
    EXPECT_EQ(stream.camera.countOf(Call::Ioctl), before);
}

TYPED_TEST(InputMethodStreamTest, GivesUpAfterTwoSecondsWithoutAFrame)
{
    typename TestFixture::OwnStream stream(this->camera().withoutFrames());
    Stopwatch const watch;
    IFrame* const frame = stream.method.acquireFrame();
    EXPECT_GE(watch.seconds(), 1.99);
    EXPECT_LT(watch.seconds(), 3);
    EXPECT_TRUE(frame->isInvalid());
    EXPECT_EQ(stream.camera.countOf(VIDIOC_DQBUF), 0u);
    EXPECT_EQ(frame->allocSize(), smallImageSize);
    EXPECT_TRUE(std::all_of(frame->bytePtr(), frame->bytePtr() + frame->allocSize(),
                            [](unsigned char byte) { return byte == 0; }));
}

TYPED_TEST(InputMethodStreamTest, GivesUpAtOnceForAnyOtherError)
{
    for (int const error : {EIO, ENODEV, EINVAL, EPIPE}) {
        typename TestFixture::OwnStream stream(this->camera());
        stream.camera.failFrom(VIDIOC_DQBUF, error);
        Stopwatch const watch;
        EXPECT_TRUE(stream.method.acquireFrame()->isInvalid()) << error;
        EXPECT_EQ(stream.camera.countOf(VIDIOC_DQBUF), 1u);
        EXPECT_LT(watch.seconds(), 1);
    }
}

// All frames at once are lent, so that each search begins somewhere else.
TYPED_TEST(InputMethodStreamTest, TakesFramesBackInAnyOrder)
{
    constexpr int buffers = 4;
    typename TestFixture::OwnStream stream(this->camera(), buffers);
    std::vector<unsigned int> order(buffers);
    std::iota(order.begin(), order.end(), 0u);
    do {
        std::vector<IFrame*> lent(buffers);
        for (IFrame*& frame : lent) {
            frame = stream.method.acquireFrame();
            ASSERT_FALSE(frame->isInvalid());
        }
        stream.camera.clearLog();
        std::vector<unsigned int> expected;
        for (unsigned int const position : order) {
            expected.push_back(dynamic_cast<StreamedFrame*>(lent[position])->buffer().index);
            EXPECT_EQ(stream.method.releaseFrame(lent[position]), 0);
        }
        std::vector<unsigned int> queued;
        for (auto const& call : stream.camera.calls(VIDIOC_QBUF)) {
            queued.push_back(call.template argument<v4l2_buffer>().index);
        }
        EXPECT_EQ(queued, expected);
    } while (std::next_permutation(order.begin(), order.end()));
}

} // namespace
