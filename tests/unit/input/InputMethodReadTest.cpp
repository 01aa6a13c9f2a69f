// SPDX-License-Identifier: MIT
#include "input/InputMethodRead.h"

#include "DescriptorCount.h"
#include "DescriptorLimit.h"
#include "OpenNode.h"
#include "SmallCamera.h"
#include "Stopwatch.h"
#include "input/InputMethodMemoryMapping.h"

#include <gtest/gtest.h>

#include <linux/videodev2.h>

#include <algorithm>
#include <cerrno>

namespace
{

using namespace ImageAcquisition;
using VirtualCamera::Call;
using VirtualCamera::CameraBuilder;
using VirtualCamera::InstalledCamera;
using VirtualCamera::Pace;

CameraBuilder readingCamera()
{
    return smallCamera().offeringMmap(false);
}

/// A camera with a read method that was set up where no pipe could be made.
class Reader
{
public:
    explicit Reader(CameraBuilder const& builder, int buffers = 2)
        : camera(builder.install()), method(node.fd())
    {
        DescriptorLimit const none;
        EXPECT_EQ(method.setup(buffers, smallImageSize), 0);
        EXPECT_EQ(method.startCapture(), 0);
    }

    InstalledCamera camera;
    OpenNode const node;
    InputMethodRead method;
};

TEST(InputMethodReadTest, FailsToSetUpWithAPipeAndKeepsItsPool)
{
    auto const camera = readingCamera().install();
    OpenNode const node;
    InputMethodRead method(node.fd());
    EXPECT_EQ(method.setup(2, smallImageSize), -1);
    EXPECT_EQ(IFrame::invalid(), method.acquireFrame());
    {
        DescriptorLimit const none;
        method.cleanup();
        EXPECT_EQ(method.setup(1, smallImageSize), 0);
    }
    EXPECT_EQ(method.setup(5, 1), -1);
    IFrame* const frame = method.acquireFrame();
    EXPECT_EQ(frame->allocSize(), smallImageSize);
    EXPECT_EQ(IFrame::invalid(), method.acquireFrame()) << "there is still one only";
    EXPECT_EQ(method.releaseFrame(frame), 0);
    EXPECT_EQ(method.cleanup(), 0);
}

TEST(InputMethodReadTest, LosesNoDescriptorByFailingSetups)
{
    auto const camera = readingCamera().install();
    OpenNode const node;
    int const before = openDescriptors();
    {
        InputMethodRead method(node.fd());
        EXPECT_EQ(method.setup(2, smallImageSize), -1);
        EXPECT_EQ(method.setup(2, smallImageSize), -1);
        EXPECT_EQ(openDescriptors(), before + 2);
    }
    EXPECT_EQ(openDescriptors(), before);
}

TEST(InputMethodReadTest, StartsAndSetsUpWithoutTheDevice)
{
    Reader reader(readingCamera());
    EXPECT_EQ(reader.camera.countOf(Call::Ioctl), 0u);
    EXPECT_EQ(reader.method.type(), InputMethod::Read);
}

TEST(InputMethodReadTest, EmptiesThePoolForACountBelowOne)
{
    for (int const count : {0, -1, -2147483647 - 1}) {
        Reader reader(readingCamera());
        {
            DescriptorLimit const none;
            EXPECT_EQ(reader.method.setup(count, smallImageSize), 0);
        }
        EXPECT_EQ(IFrame::invalid(), reader.method.acquireFrame());
        EXPECT_EQ(reader.camera.countOf(Call::Read), 0u);
    }
}

TEST(InputMethodReadTest, ReplacesItsFramesWhenItIsSetUpAgain)
{
    Reader reader(readingCamera(), 1);
    DescriptorLimit const none;
    EXPECT_EQ(reader.method.setup(2, 100), 0);
    IFrame* const frames[] = {reader.method.acquireFrame(), reader.method.acquireFrame()};
    for (IFrame* const frame : frames) {
        EXPECT_EQ(frame->allocSize(), 100u);
        reader.method.releaseFrame(frame);
    }
    EXPECT_EQ(reader.method.setup(1, smallImageSize), 0);
    IFrame* const frame = reader.method.acquireFrame();
    EXPECT_EQ(frame->allocSize(), smallImageSize);
    EXPECT_EQ(IFrame::invalid(), reader.method.acquireFrame());
    reader.method.releaseFrame(frame);
}

TEST(InputMethodReadTest, ReadsAWholePictureWithOneCall)
{
    Reader reader(readingCamera().withStillPattern());
    IFrame* const frame = reader.method.acquireFrame();
    EXPECT_FALSE(frame->isInvalid());
    EXPECT_FALSE(frame->isCorrupted());
    EXPECT_EQ(frame->allocSize(), smallImageSize);
    EXPECT_EQ(frame->bytesUsed(), smallImageSize);
    EXPECT_EQ(frame->size(), smallImageSize);
    EXPECT_EQ(frame->counter(), 0u);
    EXPECT_EQ(frame->timeStamp().seconds, 0);
    EXPECT_EQ(frame->timeStamp().microseconds, 0);
    auto const expected = VirtualCamera::testPattern(V4L2_PIX_FMT_YUYV, 64, 48, 0);
    EXPECT_TRUE(std::equal(expected.begin(), expected.end(), frame->bytePtr()));
    auto const reads = reader.camera.calls(Call::Read);
    EXPECT_EQ(reads.back().length, smallImageSize);
    EXPECT_EQ(reader.method.releaseFrame(frame), 0);
}

TEST(InputMethodReadTest, DoesNotRecordHowMuchCame)
{
    Reader reader(readingCamera().withShortFrame(0, 100));
    IFrame* const frame = reader.method.acquireFrame();
    EXPECT_EQ(reader.camera.calls(Call::Read).back().result, 100);
    EXPECT_EQ(frame->bytesUsed(), smallImageSize);
    EXPECT_EQ(frame->allocSize(), smallImageSize);
    reader.method.releaseFrame(frame);
}

TEST(InputMethodReadTest, HandsOutTheFrameThatWasReleasedLastFirst)
{
    Reader reader(readingCamera(), 3);
    IFrame* const a = reader.method.acquireFrame();
    IFrame* const b = reader.method.acquireFrame();
    IFrame* const c = reader.method.acquireFrame();
    EXPECT_TRUE(a != b && b != c && a != c);
    EXPECT_EQ(reader.method.releaseFrame(a), 0);
    EXPECT_EQ(reader.method.releaseFrame(c), 0);
    EXPECT_EQ(reader.method.releaseFrame(b), 0);
    EXPECT_EQ(reader.method.acquireFrame(), b);
    EXPECT_EQ(reader.method.acquireFrame(), c);
    EXPECT_EQ(reader.method.acquireFrame(), a);
    for (IFrame* const frame : {a, b, c}) {
        reader.method.releaseFrame(frame);
    }
}

TEST(InputMethodReadTest, HandsOutTheInvalidFrameWhenThePoolIsEmpty)
{
    Reader reader(readingCamera(), 1);
    IFrame* const only = reader.method.acquireFrame();
    unsigned const before = reader.camera.countOf(Call::Read);
    EXPECT_EQ(IFrame::invalid(), reader.method.acquireFrame());
    EXPECT_EQ(reader.camera.countOf(Call::Read), before);
    EXPECT_EQ(reader.method.releaseFrame(only), 0);
    EXPECT_EQ(reader.method.acquireFrame(), only);
    reader.method.releaseFrame(only);
}

TEST(InputMethodReadTest, KeepsAnEmptyPlaceForWhatIsNoFrameOfItsKind)
{
    Reader reader(readingCamera(), 1);
    char bytes[10];
    InputMethodMemoryMapping::Frame foreign(sizeof bytes, bytes);
    for (IFrame* const nothing : {static_cast<IFrame*>(nullptr), static_cast<IFrame*>(&foreign)}) {
        EXPECT_EQ(reader.method.releaseFrame(nothing), 0);
        EXPECT_EQ(IFrame::invalid(), reader.method.acquireFrame());
        IFrame* const frame = reader.method.acquireFrame();
        EXPECT_FALSE(frame->isInvalid());
        reader.method.releaseFrame(frame);
    }
}

TEST(InputMethodReadTest, PutsNoInvalidFrameIntoThePool)
{
    Reader reader(readingCamera(), 1);
    InputMethod::InvalidFrame other(5);
    EXPECT_EQ(reader.method.releaseFrame(IFrame::invalid()), 0);
    EXPECT_EQ(reader.method.releaseFrame(&other), 0);
    IFrame* const frame = reader.method.acquireFrame();
    EXPECT_FALSE(frame->isInvalid());
    reader.method.releaseFrame(frame);
}

TEST(InputMethodReadTest, IgnoresAFrameThatIsReleasedTwice)
{
    Reader reader(readingCamera(), 1);
    IFrame* const frame = reader.method.acquireFrame();
    EXPECT_EQ(reader.method.releaseFrame(frame), 0);
    EXPECT_EQ(reader.method.releaseFrame(frame), 0);
    EXPECT_EQ(reader.method.acquireFrame(), frame);
    EXPECT_EQ(IFrame::invalid(), reader.method.acquireFrame());
    reader.method.releaseFrame(frame);
}

TEST(InputMethodReadTest, TakesFramesBackAfterCleanup)
{
    Reader reader(readingCamera(), 2);
    IFrame* const frame = reader.method.acquireFrame();
    EXPECT_EQ(reader.method.cleanup(), 0);
    frame->bytePtr()[0] = 1; // It belongs to whoever holds it.
    EXPECT_EQ(reader.method.releaseFrame(frame), 0);
    EXPECT_EQ(reader.method.releaseFrame(frame), 0);
    EXPECT_EQ(reader.method.cleanup(), 0);
    EXPECT_EQ(IFrame::invalid(), reader.method.acquireFrame());
}

TEST(InputMethodReadTest, HandsOutTheFrameAsItWasWhenNothingCameForTwoSeconds)
{
    Reader reader(readingCamera().withoutFrames(), 1);
    {
        Stopwatch const watch;
        IFrame* const frame = reader.method.acquireFrame();
        EXPECT_GE(watch.seconds(), 1.99);
        EXPECT_LT(watch.seconds(), 3);
        EXPECT_FALSE(frame->isInvalid());
        EXPECT_TRUE(std::all_of(frame->bytePtr(), frame->bytePtr() + frame->allocSize(),
                                [](unsigned char byte) { return byte == 0; }));
        frame->bytePtr()[5] = 42;
        reader.method.releaseFrame(frame);
    }
    IFrame* const frame = reader.method.acquireFrame();
    EXPECT_FALSE(frame->isInvalid());
    EXPECT_EQ(frame->bytePtr()[5], 42);
    reader.method.releaseFrame(frame);
}

TEST(InputMethodReadTest, HandsOutTheFrameAsItWasWhenTheReadFailed)
{
    for (int const error : {EIO, ENODEV, EINVAL, EBUSY, EINTR}) {
        Reader reader(readingCamera().failing(Call::Read, error), 1);
        IFrame* const frame = reader.method.acquireFrame();
        EXPECT_FALSE(frame->isInvalid()) << error;
        EXPECT_EQ(reader.camera.countOf(Call::Read), 1u);
        EXPECT_EQ(frame->bytePtr()[0], 0);
        reader.method.releaseFrame(frame);
    }
}

TEST(InputMethodReadTest, TriesAsOftenAsTheDriverSaysAgain)
{
    Reader reader(readingCamera());
    for (unsigned int use = 1; use <= 50; ++use) {
        reader.camera.fail(Call::Read, EAGAIN, use);
    }
    IFrame* const frame = reader.method.acquireFrame();
    EXPECT_GT(reader.camera.countOf(Call::Read), 50u);
    reader.method.releaseFrame(frame);
}

TEST(InputMethodReadTest, TellsWhetherAnAttemptWasTheLast)
{
    Reader reader(readingCamera());
    InputMethodRead::Frame frame(smallImageSize);
    struct
    {
        int error;
        bool last;
    } const cases[] = {{EAGAIN, false}, {EIO, true}, {EINTR, true}};
    for (auto const& one : cases) {
        reader.camera.fail(Call::Read, one.error);
        EXPECT_EQ(reader.method.acquire(&frame), one.last) << one.error;
    }
    EXPECT_TRUE(reader.method.acquire(&frame));
}

TEST(InputMethodReadTest, EndsTheAttemptsOnceAStopIsPending)
{
    Reader reader(readingCamera());
    // A second setup leaves the pool alone, and opens the pipe that the first could not.
    ASSERT_EQ(reader.method.setup(2, smallImageSize), -1);
    reader.camera.failFrom(Call::Read, EAGAIN);
    EXPECT_EQ(reader.method.stopCapture(), 0);
    Stopwatch const watch;
    IFrame* const frame = reader.method.acquireFrame();
    EXPECT_FALSE(frame->isInvalid());
    EXPECT_EQ(reader.camera.countOf(Call::Read), 1u);
    EXPECT_LT(watch.seconds(), 1);
    reader.method.releaseFrame(frame);
}

TEST(InputMethodReadTest, StopsWithoutTheDevice)
{
    Reader reader(readingCamera());
    Stopwatch const watch;
    EXPECT_EQ(reader.method.stopCapture(), 0);
    EXPECT_GE(watch.seconds(), 0.01);
    EXPECT_EQ(reader.camera.countOf(Call::Ioctl), 0u);
}

} // namespace
