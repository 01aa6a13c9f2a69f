// SPDX-License-Identifier: MIT
// Makes each call to the driver fail in turn, in a run from opening a camera to letting go of it.
#include "DescriptorCount.h"
#include "ErrorOf.h"
#include "Stopwatch.h"
#include "StreamedCamera.h"
#include "ThreadCount.h"

#include <gtest/gtest.h>
#include <linux/videodev2.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>

namespace
{

using namespace ImageAcquisition::Session;
using VirtualCamera::Call;
using VirtualCamera::CallId;
using VirtualCamera::CallRecord;

enum class Step { Open, Start, Frames, End };

/// A client's run, and how far it got.
struct StreamRun
{
    static constexpr unsigned int frames = 6;

    StreamRun(StreamedCamera& device, Found const& found)
    {
        error = errorOf([&] { run(device, found); });
        m_ends[static_cast<std::size_t>(Step::End)] = device->calls().size();
    }

    Step stepOf(std::size_t position) const
    {
        std::size_t step = 0;
        while (position >= m_ends[step]) {
            ++step;
        }
        return static_cast<Step>(step);
    }

    std::optional<Error> error; ///< Of opening or starting.
    unsigned int delivered = 0;
    StreamState state = StreamState::Running; ///< After the frames.
    StreamState finalState = StreamState::Running;
    std::optional<Error> streamError;

private:
    void run(StreamedCamera& device, Found const& found)
    {
        Camera camera = Camera::open(found);
        reach(Step::Open, device);
        Stream stream = camera.stream();
        reach(Step::Start, device);
        Frame held;
        for (unsigned int i = 0; i < frames; ++i) {
            device->deliverFrames(1);
            Frame frame = stream.next(5s);
            delivered += frame ? 1 : 0;
            held = std::move(frame);
            if (stream.state() != StreamState::Running) {
                break;
            }
        }
        state = stream.state();
        reach(Step::Frames, device);
        streamError = stream.error();
        stream.stop();
        finalState = stream.state();
    }
    void reach(Step step, StreamedCamera& device)
    {
        m_ends[static_cast<std::size_t>(step)] = device->calls().size();
    }

    std::size_t m_ends[4] = {};
};

/// How often the call at a position had been made by then.
unsigned useOf(std::vector<CallRecord> const& calls, std::size_t position)
{
    unsigned use = 0;
    for (std::size_t i = 0; i <= position; ++i) {
        use += calls[i].call == calls[position].call ? 1 : 0;
    }
    return use;
}

bool isNeededToStart(CallId const& call)
{
    for (CallId const& needed :
         {CallId(VIDIOC_REQBUFS), CallId(VIDIOC_QUERYBUF), CallId(VIDIOC_QBUF),
          CallId(VIDIOC_STREAMON), CallId(Call::Mmap)}) {
        if (call == needed) {
            return true;
        }
    }
    return false;
}

void expectFrames(CallId const& call, int error, StreamRun const& run)
{
    if (call == CallId(VIDIOC_QBUF)) {
        EXPECT_EQ(run.delivered, StreamRun::frames) << "there are other buffers";
        EXPECT_EQ(run.state, StreamState::Running);
        return;
    }
    EXPECT_LT(run.delivered, StreamRun::frames);
    EXPECT_EQ(run.state, error == ENODEV ? StreamState::Unplugged : StreamState::Failed);
    ASSERT_TRUE(run.streamError);
    EXPECT_EQ(run.streamError->systemError(), error);
    EXPECT_EQ(run.finalState, run.state) << "an end is for good";
}

void expectNamedResult(Step step, CallId const& call, int error, StreamRun const& run)
{
    switch (step) {
    case Step::Open:
        return;
    case Step::Start:
        if (isNeededToStart(call)) {
            ASSERT_TRUE(run.error);
            EXPECT_EQ(run.error->systemError(), error);
        } else {
            EXPECT_FALSE(run.error);
            EXPECT_EQ(run.delivered, StreamRun::frames);
        }
        return;
    case Step::Frames:
        expectFrames(call, error, run);
        return;
    case Step::End:
        EXPECT_EQ(run.delivered, StreamRun::frames);
        EXPECT_EQ(run.finalState, StreamState::Stopped);
        return;
    }
}

/// The descriptors of the kinds that a stream uses besides the node, which the camera counts. The
/// simulated machine opens others whenever its own threads get to it.
int pipesAndEvents()
{
    int count = 0;
    for (std::string const& target : descriptorTargets()) {
        count += target.rfind("pipe:", 0) == 0 || target == "anon_inode:[eventfd]" ? 1 : 0;
    }
    return count;
}

class FailingCamera : public testing::Test
{
protected:
    FailingCamera() : m_device(StreamedCamera::onDemand()), m_found(findCamera("/dev/video0"))
    {
        // What a first run leaves open for good belongs to nobody.
        StreamRun const first(m_device, m_found);
        count();
    }

    /// What is there while nothing is open.
    void count()
    {
        m_threads = threadCount();
        m_descriptors = pipesAndEvents();
    }

    void expectNothingLeft(int refusedUnmaps)
    {
        VirtualCamera::Accounting const account = m_device->accounting();
        EXPECT_EQ(account.openDescriptors, 0);
        EXPECT_EQ(account.liveMappings, refusedUnmaps);
        EXPECT_EQ(account.allocatedBuffers, 0);
        EXPECT_FALSE(account.streaming);
        EXPECT_TRUE(awaitThreadCount(m_threads));
        EXPECT_TRUE(await([&] { return pipesAndEvents() <= m_descriptors; }));
    }

    /// The same camera as if just plugged in, with a log of its own.
    void renew()
    {
        m_device.unplug();
        m_device.plug();
        count();
    }

    StreamedCamera m_device;
    Found m_found;

private:
    int m_threads;
    int m_descriptors;
};

class StreamFailureTest : public FailingCamera, public testing::WithParamInterface<int>
{
};

TEST_P(StreamFailureTest, OfAnyCallEndsAsItShouldAndLeavesNothing)
{
    int const error = GetParam();
    m_device->clearLog();
    StreamRun const clean(m_device, m_found);
    ASSERT_EQ(clean.delivered, StreamRun::frames);
    auto const calls = m_device->calls();
    for (std::size_t position = 0; position < calls.size(); ++position) {
        CallId const call = calls[position].call;
        unsigned const use = useOf(calls, position);
        SCOPED_TRACE("use " + std::to_string(use) + " of " + VirtualCamera::callName(call) +
                     " fails with " + std::strerror(error));
        m_device->clearLog();
        m_device->stopFailing();
        m_device->fail(call, error, use);
        StreamRun const run(m_device, m_found);
        bool const isMadeAgain = error == EINTR && !(call == CallId(Call::Mmap));
        if (calls[position].succeeded() && !isMadeAgain) {
            expectNamedResult(clean.stepOf(position), call, error, run);
        }
        bool const isUnmap = call == CallId(Call::Munmap);
        expectNothingLeft(isUnmap ? 1 : 0);
        if (isUnmap) {
            renew();
        }
        ASSERT_FALSE(HasFailure());
    }
}

std::string nameOfError(testing::TestParamInfo<int> const& info)
{
    return info.param == EIO      ? "EIO"
           : info.param == ENODEV ? "ENODEV"
           : info.param == EBUSY  ? "EBUSY"
           : info.param == EINVAL ? "EINVAL"
                                  : "EINTR";
}

INSTANTIATE_TEST_SUITE_P(EachCall, StreamFailureTest,
                         testing::Values(EIO, ENODEV, EBUSY, EINVAL, EINTR), nameOfError);

class StreamEndTest : public FailingCamera
{
};

/// From one call on the camera is gone.
TEST_F(StreamEndTest, ByUnpluggingAtAnyMomentIsNoticedAndLeavesNothing)
{
    m_device->clearLog();
    StreamRun const clean(m_device, m_found);
    unsigned const ioctls = m_device->countOf(Call::Ioctl);
    ASSERT_GT(ioctls, 20u);
    for (unsigned use = 1; use <= ioctls; ++use) {
        SCOPED_TRACE(use);
        m_device->clearLog();
        m_device->stopFailing();
        m_device->failFrom(Call::Ioctl, ENODEV, use);
        Stopwatch const watch;
        StreamRun const run(m_device, m_found);
        EXPECT_LT(watch.seconds(), 1);
        if (run.delivered < StreamRun::frames && !run.error) {
            EXPECT_EQ(run.state, StreamState::Unplugged);
        }
        expectNothingLeft(0);
        ASSERT_FALSE(HasFailure());
    }
}

TEST_F(StreamEndTest, OfEveryBufferEndsTheStream)
{
    Camera camera = Camera::open(m_found);
    Stream stream = camera.stream();
    m_device->failFrom(VIDIOC_QBUF, EIO);
    for (int i = 0; i < 4; ++i) {
        m_device->deliverFrames(1);
        EXPECT_TRUE(stream.next(5s));
    }
    EXPECT_FALSE(stream.next(10s));
    EXPECT_EQ(stream.state(), StreamState::Failed);
    EXPECT_EQ(stream.error()->systemError(), EIO);
}

TEST_F(StreamEndTest, IsNotOfOneBufferLongAgo)
{
    Camera camera = Camera::open(m_found);
    Stream stream = camera.stream();
    m_device->fail(VIDIOC_QBUF, EIO);
    for (int i = 0; i < 5; ++i) {
        m_device->deliverFrames(1);
        EXPECT_TRUE(stream.next(5s));
    }
    EXPECT_FALSE(stream.next(3s)) << "longer than the interfaces wait";
    EXPECT_EQ(stream.state(), StreamState::Running);
}

TEST_F(StreamEndTest, BeforeItsBeginningTellsWhatTheCameraDidNotDo)
{
    Camera camera = Camera::open(m_found);
    m_device->fail(VIDIOC_STREAMON, EIO);
    EXPECT_STREQ(errorOf([&] { camera.stream(); })->what(),
                 "start streaming: /dev/video0: the camera does not start: Input/output error");
    m_device->fail(VIDIOC_REQBUFS, ENOMEM);
    EXPECT_STREQ(errorOf([&] { camera.stream(); })->what(),
                 "start streaming: /dev/video0: the camera grants no buffers: Cannot allocate "
                 "memory");
}

TEST_F(StreamEndTest, OfTheClientInTheMiddleLeavesNothing)
{
    EXPECT_THROW(
        {
            Camera camera = Camera::open(m_found);
            Stream stream = camera.stream();
            m_device->deliverFrames(2);
            Frame const frame = stream.next(5s);
            throw std::runtime_error("the client's");
        },
        std::runtime_error);
    expectNothingLeft(0);
}

TEST_F(StreamEndTest, IsNotToDestroyInAnyOrder)
{
    for (int order = 0; order < 6; ++order) {
        SCOPED_TRACE(order);
        std::optional<Camera> camera(Camera::open(m_found));
        std::optional<Stream> stream(camera->stream());
        m_device->deliverFrames(1);
        std::optional<Frame> frame(stream->next(5s));
        int const places[6][3] = {{0, 1, 2}, {0, 2, 1}, {1, 0, 2}, {1, 2, 0}, {2, 0, 1}, {2, 1, 0}};
        for (int const which : places[order]) {
            EXPECT_GT(m_device->accounting().openDescriptors, 0);
            which == 0 ? camera.reset() : which == 1 ? stream.reset() : frame.reset();
        }
        expectNothingLeft(0);
    }
}

} // namespace
