// SPDX-License-Identifier: MIT
// errno after each call of a capture: that of the system call that failed, and untouched when none
// did.
#include "Await.h"
#include "IFramePeriod.h"
#include "IFrameSize.h"
#include "IImageFormat.h"
#include "Interruptions.h"
#include "OneMethodCamera.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <thread>

namespace
{

using namespace ImageAcquisition;
using VirtualCamera::Call;
using VirtualCamera::CallId;
using VirtualCamera::CallRecord;
using namespace std::string_literals;

/// A call of the public interface. It answers whether it went well.
struct Step
{
    char const* name;
    std::function<bool(OneMethodCamera&)> run;
};

std::vector<Step> const steps = {
    {"select by position", [](auto& it) { return it.camera.setCurrentImageFormat(0, 0, 0); }},
    {"select by name",
     [](auto& it) { return it.camera.setCurrentImageFormat("YUYV", 64, 48, 1, 30); }},
    {"format", [](auto& it) { return !it.camera.currentImageFormat()->isInvalid(); }},
    {"size", [](auto& it) { return !it.camera.currentFrameSize()->isInvalid(); }},
    {"line", [](auto& it) { return it.camera.format(0)->frameSize(0)->bytesPerLine() != -1; }},
    {"interval", [](auto& it) { return !it.camera.currentFrameInterval()->isInvalid(); }},
    {"setup", [](auto& it) { return it.setup(); }},
    {"start", [](auto& it) { return it.camera.startCapture() == 0; }},
    {"acquire", [](auto& it) { return it.acquire(); }},
    {"release", [](auto& it) { return it.release(); }},
    {"acquire again", [](auto& it) { return it.acquire(); }},
    {"write", [](auto& it) { return it.gain().setValue(3); }},
    {"read", [](auto& it) { return it.gain().value() == 3; }},
    {"stop", [](auto& it) { return it.camera.stopCapture() == 0; }},
    {"cleanup", [](auto& it) { return it.camera.cleanup() == 0; }},
};

/// Makes every call, whatever became of those before it.
std::vector<Outcome> runAll(OneMethodCamera& opened)
{
    std::vector<Outcome> outcomes;
    for (Step const& step : steps) {
        outcomes.push_back(outcomeOf([&] { return step.run(opened); }));
    }
    return outcomes;
}

/// Every call to the driver that a run makes, and which use of its kind it is.
std::vector<std::pair<CallId, unsigned>> callsOfARun(InputMethod::Type method)
{
    OneMethodCamera opened(method);
    runAll(opened);
    std::vector<std::pair<CallId, unsigned>> calls;
    std::map<std::string, unsigned> uses;
    for (CallRecord const& record : opened.node.calls()) {
        calls.emplace_back(record.call, ++uses[VirtualCamera::callName(record.call)]);
    }
    return calls;
}

/// Each input method.
class ErrnoTest : public testing::TestWithParam<InputMethod::Type>
{
};

INSTANTIATE_TEST_SUITE_P(, ErrnoTest,
                         testing::Values(InputMethod::MemoryMapping, InputMethod::UserPointers,
                                         InputMethod::Read),
                         nameOfMethod);

TEST_P(ErrnoTest, IsUntouchedByCallsThatSucceed)
{
    OneMethodCamera opened(GetParam());
    ASSERT_EQ(opened.method(), GetParam());
    std::vector<Outcome> const outcomes = runAll(opened);
    for (std::size_t i = 0; i < steps.size(); ++i) {
        EXPECT_TRUE(outcomes[i].good) << steps[i].name;
        EXPECT_EQ(outcomes[i].error, earlierErrno) << steps[i].name;
    }
}

TEST_P(ErrnoTest, IsThatOfWhateverCallFails)
{
    unsigned int failures = 0;
    for (auto const& [call, use] : callsOfARun(GetParam())) {
        SCOPED_TRACE(callName(call) + " " + std::to_string(use));
        OneMethodCamera opened(GetParam());
        opened.node.fail(call, scriptedErrno, use);
        bool failed = false;
        std::vector<Outcome> const outcomes = runAll(opened);
        for (std::size_t i = 0; i < steps.size(); ++i) {
            auto const [good, error] = outcomes[i];
            // A read that fails makes no frame invalid: errno alone tells.
            bool const silent = call == CallId(Call::Read) && error == scriptedErrno;
            if (good && !silent) {
                EXPECT_EQ(error, earlierErrno) << steps[i].name;
            } else if (!failed) {
                // Buffers of the process need the size: without it none can be lent.
                bool const later = call == CallId(VIDIOC_G_FMT) && steps[i].name == "start"s;
                EXPECT_EQ(error, later ? EINVAL : scriptedErrno) << steps[i].name;
                failed = true;
            }
        }
        failures += failed ? 1 : 0;
    }
    EXPECT_GE(failures, 10u);
}

TEST_P(ErrnoTest, IsUntouchedByAnInterruptionThatIsGotOver)
{
    for (auto const& [call, use] : callsOfARun(GetParam())) {
        if (call.function != Call::Ioctl) {
            continue;
        }
        SCOPED_TRACE(callName(call) + " " + std::to_string(use));
        OneMethodCamera opened(GetParam());
        opened.node.fail(call, EINTR, use);
        std::vector<Outcome> const outcomes = runAll(opened);
        for (std::size_t i = 0; i < steps.size(); ++i) {
            EXPECT_TRUE(outcomes[i].good) << steps[i].name;
            EXPECT_EQ(outcomes[i].error, earlierErrno) << steps[i].name;
        }
    }
}

TEST_P(ErrnoTest, IsUntouchedByATimeOutWhateverWasTriedBefore)
{
    OneMethodCamera opened(cameraFor(GetParam()).withoutFrames());
    ASSERT_TRUE(opened.setup());
    ASSERT_EQ(opened.camera.startCapture(), 0);
    Interruptions const interruptions;
    EXPECT_EQ(outcomeOf([&] { return opened.acquire(); }).error, earlierErrno);
}

TEST_P(ErrnoTest, IsUntouchedByAFrameThatComesAtTheSecondAttempt)
{
    OneMethodCamera opened(GetParam());
    ASSERT_TRUE(opened.setup());
    ASSERT_EQ(opened.camera.startCapture(), 0);
    opened.node.fail(VIDIOC_DQBUF, EAGAIN);
    opened.node.fail(Call::Read, EAGAIN);
    Outcome const outcome = outcomeOf([&] { return opened.acquire(); });
    EXPECT_TRUE(outcome.good);
    EXPECT_EQ(outcome.error, earlierErrno);
}

// The device is ready all the time, but has nothing: what ends this is the number of attempts, or
// the stop.
TEST_P(ErrnoTest, IsUntouchedByAttemptsThatComeToNothing)
{
    OneMethodCamera opened(GetParam());
    ASSERT_TRUE(opened.setup());
    ASSERT_EQ(opened.camera.startCapture(), 0);
    opened.node.failFrom(VIDIOC_DQBUF, EAGAIN);
    opened.node.failFrom(Call::Read, EAGAIN);
    int error = 0;
    std::thread capture([&] { error = outcomeOf([&] { return opened.acquire(); }).error; });
    if (GetParam() != InputMethod::MemoryMapping) {
        // These try for as long as the device says that it is ready.
        EXPECT_TRUE(await([&] {
            return opened.node.countOf(VIDIOC_DQBUF) + opened.node.countOf(Call::Read) > 3;
        }));
        opened.node.stopFailing();
    }
    capture.join();
    EXPECT_EQ(error, earlierErrno);
}

TEST_P(ErrnoTest, IsUntouchedByARefusalOfTheLibrarysOwn)
{
    OneMethodCamera opened(GetParam());
    Camera& camera = opened.camera;
    ASSERT_TRUE(opened.setup());
    opened.node.clearLog();
    Step const refused[] = {
        {"negative", [](auto& it) { return it.camera.setCurrentImageFormat(-1, 0, 0); }},
        {"too large", [](auto& it) { return it.camera.setCurrentImageFormat(9, 0, 0); }},
        {"unknown", [](auto& it) { return it.camera.setCurrentImageFormat("NONE", 1, 1, 1, 1); }},
        {"out of range", [](auto& it) { return it.gain().setValue(10); }},
        {"null", [](auto& it) { return it.camera.releaseFrame(nullptr) == 0; }},
    };
    for (Step const& step : refused) {
        EXPECT_EQ(outcomeOf([&] { return step.run(opened); }).error, earlierErrno) << step.name;
    }
    EXPECT_EQ(outcomeOf([&] { return camera.releaseFrame(IFrame::invalid()) == 0; }).error,
              earlierErrno);
    EXPECT_TRUE(opened.node.calls().empty());
}

// Two methods refuse wherever a pipe can be made, which nobody has to fail for.
TEST_P(ErrnoTest, IsUntouchedByASetupThatIsRefusedForItsMethod)
{
    OneMethodCamera opened(GetParam());
    bool const possible = GetParam() == InputMethod::MemoryMapping;
    Outcome const outcome = outcomeOf([&] { return opened.camera.setup(2) == 0; });
    EXPECT_EQ(outcome.good, possible);
    EXPECT_EQ(outcome.error, earlierErrno);
}

} // namespace
