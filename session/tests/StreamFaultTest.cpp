// SPDX-License-Identifier: MIT
// What can go wrong with a frame.
#include "ErrorOf.h"
#include "StreamedCamera.h"

#include <gtest/gtest.h>

#include <functional>
#include <numeric>
#include <ostream>
#include <string>
#include <vector>

namespace
{

using namespace ImageAcquisition::Session;
using VirtualCamera::CameraBuilder;

struct FaultCase
{
    char const* name;
    std::function<void(CameraBuilder&)> provoke;
    unsigned taken = 10; ///< Of ten frames.
    StreamState end = StreamState::Running;
    unsigned long long Statistics::*counted = nullptr; ///< What is 1 then.
};

void PrintTo(FaultCase const& fault, std::ostream* out)
{
    *out << fault.name;
}

/// One of the frames, neither the first nor the last.
constexpr unsigned frame = 3;
constexpr unsigned cutBytes = 100;

std::vector<FaultCase> const faults{
    {"None", [](CameraBuilder&) {}},
    {"Late", [](CameraBuilder& camera) { camera.withLateFrame(frame, 50); }},
    {"Damaged", [](CameraBuilder& camera) { camera.withCorruptedFrame(frame); }, 10,
     StreamState::Running, &Statistics::damaged},
    {"Missing", [](CameraBuilder& camera) { camera.withMissingFrame(frame); }, 9,
     StreamState::Running, &Statistics::lost},
    {"Cut", [](CameraBuilder& camera) { camera.withShortFrame(frame, cutBytes); }, 10,
     StreamState::Running, &Statistics::shortened},
    {"Empty", [](CameraBuilder& camera) { camera.withShortFrame(frame, 0); }, 10,
     StreamState::Running, &Statistics::shortened},
    {"Overstated", [](CameraBuilder& camera) { camera.withOverstatedFrame(frame, 0xFFFFFFFF); }},
    {"Stalled", [](CameraBuilder& camera) { camera.withoutFrames(frame); }, frame},
    {"Unplugged", [](CameraBuilder& camera) { camera.vanishingAtFrame(frame + 1); }, frame,
     StreamState::Unplugged},
    {"OfAnotherBuffer", [](CameraBuilder& camera) { camera.withWrongIndex(frame, 99); }, 9,
     StreamState::Running, &Statistics::lost},
    {"OfAnotherAddress", [](CameraBuilder& camera) { camera.withWrongUserPointer(frame, 16); }},
    {"OfAnotherLength", [](CameraBuilder& camera) { camera.withWrongLength(frame, 1); }}};

CameraBuilder faulty(FaultCase const& fault)
{
    CameraBuilder camera = StreamedCamera::onDemand();
    fault.provoke(camera);
    return camera;
}

class StreamFaultTest : public testing::TestWithParam<FaultCase>
{
protected:
    /// Takes what comes of ten frames, and reads all of it.
    void takeTen(Stream& stream)
    {
        for (int i = 0; i < 10; ++i) {
            m_device->deliverFrames(1);
            Frame const taken = stream.next(GetParam().taken == 10 ? 5s : 200ms);
            EXPECT_LE(taken.bytes().size(), smallImageSize);
            m_sum = std::accumulate(taken.bytes().begin(), taken.bytes().end(), m_sum);
            m_taken += taken ? 1 : 0;
        }
    }

    StreamedCamera m_device{faulty(GetParam())};
    unsigned m_taken = 0;
    unsigned long m_sum = 0;
};

TEST_P(StreamFaultTest, IsCountedForWhatItIsAndLeavesNothing)
{
    {
        Camera camera = m_device.open();
        Stream stream = camera.stream();
        takeTen(stream);
        EXPECT_EQ(m_taken, GetParam().taken);
        EXPECT_GT(m_sum, 0u);
        EXPECT_EQ(stream.state(), GetParam().end);
        Statistics const all = stream.statistics();
        EXPECT_EQ(all.received, m_taken);
        for (auto const count : {&Statistics::damaged, &Statistics::lost, &Statistics::shortened}) {
            EXPECT_EQ(all.*count, count == GetParam().counted ? 1u : 0u);
        }
    }
    EXPECT_TRUE(m_device->accounting().nothingHeld());
}

std::string nameOf(testing::TestParamInfo<FaultCase> const& info)
{
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(OfAFrame, StreamFaultTest, testing::ValuesIn(faults), nameOf);

// The interfaces set up no other.
TEST(StreamMethodTest, RefusesACameraWithoutMappedMemory)
{
    for (bool const reads : {false, true}) {
        StreamedCamera device(
            smallCamera().offeringMmap(false).offeringUserPointers(!reads).offeringRead(reads));
        Camera camera = device.open();
        auto const error = errorOf([&] { camera.stream(); });
        ASSERT_TRUE(error);
        EXPECT_EQ(error->kind(), ErrorKind::Refused) << error->what();
    }
}

} // namespace
