// SPDX-License-Identifier: MIT
// Makes each call to the driver fail in turn, in a run from opening a camera to closing it.
#include "CaptureRun.h"
#include "DescriptorCount.h"
#include "Stopwatch.h"

#include <gtest/gtest.h>

#include <linux/videodev2.h>

#include <cerrno>
#include <cstring>

namespace
{

using namespace ImageAcquisition;
using VirtualCamera::Call;
using VirtualCamera::CallId;
using VirtualCamera::InstalledCamera;

InstalledCamera install(InputMethod::Type method)
{
    return VirtualCamera::aCamera()
        .withFormat("YUYV")
        .withSize(64, 48)
        .withInterval(1, 30)
        .withInterval(1, 15)
        .withSize(32, 24)
        .withInterval(1, 30)
        .withFormat("UYVY")
        .withSize(64, 48)
        .withInterval(1, 30)
        .withControl(VirtualCamera::integerControl(V4L2_CID_GAIN, "Gain").range(0, 9))
        .withControl(VirtualCamera::menuControl(V4L2_CID_POWER_LINE_FREQUENCY, "Power Line")
                         .withItem("Off")
                         .withItem("50 Hz"))
        .paced(VirtualCamera::Pace::Immediate)
        .offeringMmap(method == InputMethod::MemoryMapping)
        .offeringUserPointers(method == InputMethod::UserPointers)
        .install();
}

bool isAnIoctl(CallId const& call)
{
    return call.function == Call::Ioctl;
}

bool isOneOf(CallId const& call, std::initializer_list<CallId> calls)
{
    for (CallId const& one : calls) {
        if (call == one) {
            return true;
        }
    }
    return false;
}

/// A failure of one call, and the run that met it.
struct Failure
{
    CallId call;
    Step step;
    int error;
    InputMethod::Type method;
    CaptureRun const& clean;
    CaptureRun const& run;
};

void expectOpen(Failure const& failure)
{
    CaptureRun const& run = failure.run;
    EXPECT_TRUE(run.opened) << "a camera that cannot be asked is empty, but made";
    if (failure.call == CallId(Call::Open)) {
        EXPECT_EQ(run.formats, 0);
        EXPECT_EQ(run.controls, 0);
        EXPECT_EQ(run.setup, -1);
        EXPECT_EQ(run.start, -1);
        EXPECT_EQ(run.stop, -1);
    } else if (failure.call == CallId(VIDIOC_REQBUFS)) {
        // Only EINVAL says that a way of transfer is missing.
        EXPECT_EQ(failure.clean.formats, run.formats);
        EXPECT_EQ(failure.clean.controls, run.controls);
    } else {
        EXPECT_GE(failure.clean.formats, run.formats);
        EXPECT_GE(failure.clean.sizes, run.sizes);
        EXPECT_GE(failure.clean.periods, run.periods);
        EXPECT_GE(failure.clean.controls, run.controls);
    }
}

void expectInspect(Failure const& failure)
{
    if (failure.call == CallId(VIDIOC_G_FMT)) {
        EXPECT_FALSE(failure.run.formatKnown && failure.run.sizeKnown && failure.run.periodKnown);
    } else {
        EXPECT_EQ(CallId(VIDIOC_G_PARM), failure.call);
        EXPECT_FALSE(failure.run.periodKnown);
    }
    EXPECT_FALSE(failure.run.formatAbsent);
}

void expectSetup(Failure const& failure)
{
    if (failure.call == CallId(VIDIOC_G_FMT)) {
        // The size of an image is then not known; mapped buffers do not need it.
        EXPECT_EQ(failure.run.setup, 0);
    } else {
        EXPECT_TRUE(isOneOf(failure.call, {VIDIOC_REQBUFS, VIDIOC_QUERYBUF, Call::Mmap}));
        EXPECT_EQ(failure.run.setup, -1);
    }
}

void expectFrames(Failure const& failure)
{
    int lost = 0;
    int refused = 0;
    for (std::size_t i = 0; i < CaptureRun::frames; ++i) {
        lost += failure.run.delivered[i] ? 0 : 1;
        refused += failure.run.released[i] == 0 ? 0 : 1;
    }
    // A frame that was read carries no mark of its failure.
    bool const marked = failure.method != InputMethod::Read;
    EXPECT_EQ(failure.step == Step::Acquire && marked ? 1 : 0, lost);
    EXPECT_EQ(failure.step == Step::Release ? 1 : 0, refused);
}

/// That the step which met the failure answers what it promises.
void expectNamedResult(Failure const& failure)
{
    switch (failure.step) {
    case Step::Open:
        return expectOpen(failure);
    case Step::Select:
        EXPECT_FALSE(failure.run.selected);
        return;
    case Step::Inspect:
        return expectInspect(failure);
    case Step::Setup:
        return expectSetup(failure);
    case Step::Start:
        EXPECT_TRUE(isOneOf(failure.call, {VIDIOC_QBUF, VIDIOC_STREAMON}));
        EXPECT_EQ(failure.run.start, -1);
        return;
    case Step::Acquire:
    case Step::Release:
        return expectFrames(failure);
    case Step::Stop:
        EXPECT_EQ(CallId(VIDIOC_STREAMOFF), failure.call);
        EXPECT_EQ(failure.run.stop, -1);
        return;
    case Step::Cleanup:
        EXPECT_EQ(failure.run.cleanup, 0) << "what the driver keeps is not the client's affair";
        return;
    case Step::Close:
        EXPECT_EQ(CallId(Call::Close), failure.call);
        return;
    }
}

/// What is left when everything is over; @p refusedUnmaps of the driver stay.
void expectNothingLeaked(InstalledCamera const& camera, int refusedUnmaps)
{
    VirtualCamera::Accounting const account = camera.accounting();
    EXPECT_EQ(account.openDescriptors, 0);
    EXPECT_EQ(refusedUnmaps, account.liveMappings);
    EXPECT_EQ(account.allocatedBuffers, 0);
    EXPECT_FALSE(account.streaming);
}

struct Case
{
    InputMethod::Type method;
    int error;
};

class CameraFailureTest : public testing::TestWithParam<Case>
{
protected:
    /// How often the call at @p position had been made by then.
    static unsigned useOf(std::vector<VirtualCamera::CallRecord> const& calls, std::size_t position)
    {
        unsigned use = 0;
        for (std::size_t i = 0; i <= position; ++i) {
            use += calls[i].call == calls[position].call ? 1 : 0;
        }
        return use;
    }
};

TEST_P(CameraFailureTest, OfAnyCallGivesTheResultOfItsStepAndLeaksNothing)
{
    auto const [method, error] = GetParam();
    InstalledCamera undisturbed = install(method);
    CaptureRun const clean(undisturbed, method);
    ASSERT_EQ(clean.setup, 0);
    ASSERT_EQ(clean.start, 0);
    ASSERT_TRUE(clean.delivered[CaptureRun::frames - 1]);
    auto const calls = undisturbed.calls();
    ASSERT_EQ(CallId(Call::Close), calls.back().call);
    int const descriptors = openDescriptors();
    for (std::size_t position = 0; position < calls.size(); ++position) {
        CallId const call = calls[position].call;
        unsigned const use = useOf(calls, position);
        Step const step = clean.stepOf(position);
        SCOPED_TRACE(std::string(nameOf(step)) + ": use " + std::to_string(use) + " of " +
                     VirtualCamera::callName(call) + " fails with " + std::strerror(error));
        InstalledCamera camera = install(method);
        camera.fail(call, error, use);
        CaptureRun const run(camera, method);
        if (error == EINTR && (isAnIoctl(call) || call == CallId(Call::Close))) {
            EXPECT_TRUE(run == clean) << "an interrupted call is made again";
        } else if (calls[position].succeeded()) {
            expectNamedResult({call, step, error, method, clean, run});
        }
        expectNothingLeaked(camera, call == CallId(Call::Munmap) ? 1 : 0);
        EXPECT_EQ(openDescriptors(), descriptors);
        ASSERT_FALSE(HasFailure());
    }
}

std::string nameOfCase(testing::TestParamInfo<Case> const& info)
{
    static char const* const methods[] = {"Read", "Mapped", "UserPointer"};
    std::string const error = info.param.error == EIO      ? "EIO"
                              : info.param.error == ENODEV ? "ENODEV"
                              : info.param.error == EBUSY  ? "EBUSY"
                              : info.param.error == EINVAL ? "EINVAL"
                                                           : "EINTR";
    return methods[info.param.method] + error;
}

std::vector<Case> everyCase()
{
    std::vector<Case> cases;
    for (auto const method :
         {InputMethod::MemoryMapping, InputMethod::UserPointers, InputMethod::Read}) {
        for (int const error : {EIO, ENODEV, EBUSY, EINVAL, EINTR}) {
            cases.push_back({method, error});
        }
    }
    return cases;
}

INSTANTIATE_TEST_SUITE_P(EachCall, CameraFailureTest, testing::ValuesIn(everyCase()), nameOfCase);

/// From one call on the device is gone: an unplugged camera fails everything but close and munmap.
TEST(CameraFailureTest, UnpluggingAtAnyMomentLeaksNothingAndDoesNotWait)
{
    InstalledCamera undisturbed = install(InputMethod::MemoryMapping);
    CaptureRun const clean(undisturbed, InputMethod::MemoryMapping);
    unsigned const ioctls = undisturbed.countOf(Call::Ioctl);
    ASSERT_GT(ioctls, 20u);
    int const descriptors = openDescriptors();
    for (unsigned use = 1; use <= ioctls; ++use) {
        SCOPED_TRACE(use);
        InstalledCamera camera = install(InputMethod::MemoryMapping);
        camera.failFrom(Call::Ioctl, ENODEV, use);
        Stopwatch const watch;
        CaptureRun const run(camera, InputMethod::MemoryMapping);
        EXPECT_LT(watch.seconds(), 1);
        EXPECT_FALSE(run == clean && use < ioctls) << "somebody must have noticed";
        expectNothingLeaked(camera, 0);
        EXPECT_EQ(openDescriptors(), descriptors);
        ASSERT_FALSE(HasFailure());
    }
}

} // namespace
