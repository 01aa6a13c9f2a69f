// SPDX-License-Identifier: MIT
// errno where one method, one call or one fault has a rule of its own.
#include "ICameraControlString.h"
#include "OneMethodCamera.h"
#include "ThreadState.h"

#include <gtest/gtest.h>

namespace
{

using namespace ImageAcquisition;
using VirtualCamera::Call;

constexpr auto mapping = InputMethod::MemoryMapping;

TEST(ErrnoFaultTest, OutlastsACleanUpThatFailsToo)
{
    OneMethodCamera opened(mapping);
    opened.node.fail(Call::Mmap, scriptedErrno, 2);
    opened.node.failFrom(Call::Munmap, EINVAL);
    opened.node.failFrom(VIDIOC_REQBUFS, EBUSY, 2);
    Outcome const setup = outcomeOf([&] { return opened.setup(); });
    EXPECT_FALSE(setup.good);
    EXPECT_EQ(setup.error, scriptedErrno);
    EXPECT_EQ(opened.node.countOf(Call::Munmap), 1u);
    EXPECT_EQ(opened.node.countOf(VIDIOC_REQBUFS), 2u);
}

TEST(ErrnoFaultTest, IsUntouchedByACleanUpThatGivesNothingBack)
{
    OneMethodCamera opened(mapping);
    ASSERT_TRUE(opened.setup());
    opened.node.failFrom(Call::Munmap, EINVAL);
    opened.node.failFrom(VIDIOC_REQBUFS, EBUSY);
    Outcome const cleanup = outcomeOf([&] { return opened.camera.cleanup() == 0; });
    EXPECT_TRUE(cleanup.good);
    EXPECT_EQ(cleanup.error, earlierErrno);
}

TEST(ErrnoFaultTest, TellsThatNoPipeCouldBeMade)
{
    OneMethodCamera opened(mapping);
    DescriptorLimit const none;
    Outcome const setup = outcomeOf([&] { return opened.camera.setup(2) == 0; });
    EXPECT_FALSE(setup.good);
    EXPECT_EQ(setup.error, EMFILE);
}

TEST(ErrnoFaultTest, IsUntouchedWhereNoBufferIsGranted)
{
    OneMethodCamera opened(cameraFor(mapping).grantingAtMost(0));
    Outcome const setup = outcomeOf([&] { return opened.setup(); });
    EXPECT_FALSE(setup.good);
    EXPECT_EQ(setup.error, earlierErrno);
}

TEST(ErrnoFaultTest, IsUntouchedByACameraWithoutAnInputMethod)
{
    OneMethodCamera opened(cameraFor(mapping).offeringMmap(false));
    DeviceStub record;
    record.readWrite = false;
    Camera camera(&record);
    ASSERT_TRUE(camera.init());
    ASSERT_EQ(camera.inputMethod(), nullptr);
    EXPECT_EQ(outcomeOf([&] { return camera.setup(2) == 0; }).error, earlierErrno);
    EXPECT_EQ(outcomeOf([&] { return camera.startCapture() == 0; }).error, earlierErrno);
    EXPECT_EQ(outcomeOf([&] { return !camera.acquireFrame()->isInvalid(); }).error, earlierErrno);
    EXPECT_EQ(outcomeOf([&] { return camera.stopCapture() == 0; }).error, earlierErrno);
    EXPECT_EQ(outcomeOf([&] { return camera.cleanup() == 0; }).error, earlierErrno);
}

TEST(ErrnoFaultTest, IsUntouchedByAStopAndByTheWaitThatItEnds)
{
    OneMethodCamera opened(cameraFor(mapping).withoutFrames());
    ASSERT_TRUE(opened.setup());
    ASSERT_EQ(opened.camera.startCapture(), 0);
    Outcome waited{};
    WatchedThread capture([&] { waited = outcomeOf([&] { return opened.acquire(); }); });
    ASSERT_TRUE(capture.awaitSelect());
    // More than the pipe behind it holds: one that is full wakes all the same.
    for (int i = 0; i < 3; ++i) {
        Outcome const stop = outcomeOf([&] { return opened.camera.stopCapture() == 0; });
        EXPECT_TRUE(stop.good);
        EXPECT_EQ(stop.error, earlierErrno);
    }
    capture.join();
    EXPECT_FALSE(waited.good);
}

TEST(ErrnoFaultTest, IsUntouchedByAFrameOfAnUnknownBuffer)
{
    OneMethodCamera opened(cameraFor(mapping).withWrongIndex(0, 77));
    ASSERT_TRUE(opened.setup());
    ASSERT_EQ(opened.camera.startCapture(), 0);
    Outcome const acquired = outcomeOf([&] { return opened.acquire(); });
    EXPECT_FALSE(acquired.good);
    EXPECT_EQ(acquired.error, earlierErrno);
}

TEST(ErrnoFaultTest, TellsAnUnplugging)
{
    OneMethodCamera opened(mapping);
    ASSERT_TRUE(opened.setup());
    ASSERT_EQ(opened.camera.startCapture(), 0);
    ASSERT_TRUE(opened.acquire());
    opened.node.unplug();
    EXPECT_EQ(outcomeOf([&] { return opened.release(); }).error, ENODEV);
    EXPECT_EQ(outcomeOf([&] { return opened.acquire(); }).error, ENODEV);
    EXPECT_EQ(outcomeOf([&] { return opened.gain().setValue(1); }).error, ENODEV);
    EXPECT_EQ(outcomeOf([&] { return opened.gain().value() != 0; }).error, ENODEV);
    EXPECT_EQ(outcomeOf([&] { return opened.camera.stopCapture() == 0; }).error, ENODEV);
    EXPECT_EQ(outcomeOf([&] { return opened.camera.cleanup() == 0; }).error, earlierErrno);
}

TEST(ErrnoFaultTest, TellsWhyAWaitFailed)
{
    OneMethodCamera opened(mapping);
    ASSERT_TRUE(opened.setup());
    ASSERT_EQ(opened.camera.startCapture(), 0);
    // Behind the library's back: select() then refuses the number.
    ASSERT_EQ(::close(opened.camera.fileDescriptor()), 0);
    Outcome const acquired = outcomeOf([&] { return opened.acquire(); });
    EXPECT_FALSE(acquired.good);
    EXPECT_EQ(acquired.error, EBADF);
}

TEST(ErrnoFaultTest, TellsWhyANodeCouldNotBeOpened)
{
    auto const node = cameraFor(mapping).failing(Call::Open, scriptedErrno).install();
    DeviceStub const record;
    Camera camera(&record);
    Outcome const opened = outcomeOf([&] { return camera.init(); });
    EXPECT_TRUE(opened.good);
    EXPECT_EQ(opened.error, scriptedErrno);
    EXPECT_EQ(outcomeOf([&] { return camera.setup(2) == 0; }).error, EBADF);
    EXPECT_EQ(outcomeOf([&] { return !camera.currentFrameSize()->isInvalid(); }).error, EBADF);
}

TEST(ErrnoFaultTest, IsUntouchedByAnOpeningThatAsksUntilTheDriverHasNoMore)
{
    auto const node = cameraFor(mapping).install();
    DeviceStub const record;
    Camera camera(&record);
    Outcome const opened = outcomeOf([&] { return camera.init(); });
    EXPECT_TRUE(opened.good);
    EXPECT_EQ(opened.error, earlierErrno);
}

TEST(ErrnoFaultTest, IsUntouchedByAPrivateControlThatTakesASecondCall)
{
    OneMethodCamera opened(
        cameraFor(mapping).withControl(VirtualCamera::integerControl(0x08000001, "P").range(0, 9)));
    auto& control =
        dynamic_cast<ICameraControlNumeric<int>&>(*opened.camera.controlById(0x08000001));
    Outcome const written = outcomeOf([&] { return control.setValue(4); });
    EXPECT_TRUE(written.good);
    EXPECT_EQ(written.error, earlierErrno);
    Outcome const read = outcomeOf([&] { return control.value() == 4; });
    EXPECT_TRUE(read.good);
    EXPECT_EQ(read.error, earlierErrno);
    EXPECT_EQ(opened.node.countOf(VIDIOC_S_EXT_CTRLS), 1u);
    opened.node.fail(VIDIOC_S_EXT_CTRLS, scriptedErrno);
    EXPECT_EQ(outcomeOf([&] { return control.setValue(5); }).error, scriptedErrno);
}

TEST(ErrnoFaultTest, IsUntouchedByTheRefusalThatTellsTheSizeOfAText)
{
    OneMethodCamera opened(cameraFor(mapping).withControl(
        VirtualCamera::stringControl(V4L2_CID_RDS_TX_PS_NAME, "Text").range(0, 8)));
    auto& text =
        dynamic_cast<ICameraControlString&>(*opened.camera.controlById(V4L2_CID_RDS_TX_PS_NAME));
    Outcome const size = outcomeOf([&] { return text.stringSize() == 9; });
    EXPECT_TRUE(size.good);
    EXPECT_EQ(size.error, earlierErrno);
    EXPECT_EQ(outcomeOf([&] { return text.setValue("four"); }).error, earlierErrno);
    opened.node.fail(VIDIOC_G_EXT_CTRLS, scriptedErrno);
    EXPECT_EQ(outcomeOf([&] { return text.stringSize() == 9; }).error, scriptedErrno);
}

TEST(ErrnoFaultTest, TellsAReadThatFailedFromAZero)
{
    OneMethodCamera opened(mapping);
    EXPECT_EQ(outcomeOf([&] { return opened.gain().value() != 0; }).error, earlierErrno);
    opened.node.failFrom(VIDIOC_G_CTRL, scriptedErrno);
    EXPECT_EQ(outcomeOf([&] { return opened.gain().value() != 0; }).error, scriptedErrno);
    opened.node.failFrom(VIDIOC_QUERYCTRL, scriptedErrno);
    EXPECT_EQ(outcomeOf([&] { return opened.gain().updateState(); }).error, scriptedErrno);
}

} // namespace
