// SPDX-License-Identifier: MIT
// Frames by lease, from the emulated camera, whose pictures are known to the last byte.
#include "ErrorOf.h"
#include "SessionCamera.h"
#include "Shell.h"

#include <numeric>
#include <thread>

using namespace KernelTest;

namespace
{

constexpr unsigned count = 300;

std::vector<unsigned long long> numbersTo(unsigned end)
{
    std::vector<unsigned long long> numbers(end);
    std::iota(numbers.begin(), numbers.end(), 0);
    return numbers;
}

class SessionFramesTest : public testing::Test
{
protected:
    /// Takes 300 frames of a camera that sends no more, and sees whether the statistics know it.
    void expectThreeHundred(char const* wish)
    {
        m_device.command("hold " + std::to_string(count));
        Pictures pictures(m_camera.select(wish));
        ia::Stream stream = m_camera.stream(unhurried());
        EXPECT_EQ(takeAll(stream, pictures), numbersTo(count));
        EXPECT_EQ(m_device.status()["frame"], count);
        ia::Statistics const all = stream.statistics();
        EXPECT_EQ(all.received, count);
        EXPECT_EQ(all.lost, 0U);
        EXPECT_EQ(all.damaged, 0U);
        EXPECT_EQ(all.shortened, 0U);
        EXPECT_EQ(all.thrownAway, 0U);
        EXPECT_EQ(all.timeOuts, 1U);
        EXPECT_EQ(all.state, ia::StreamState::Running);
    }

    EmulatedCameras const m_device{{"ordinary"}};
    ia::Camera m_camera = openEmulated(m_device);
};

TEST_F(SessionFramesTest, AreThreeHundredWithEveryByteAndNoneLost)
{
    expectThreeHundred("YUYV 640x480@30");
}

TEST_F(SessionFramesTest, AreThreeHundredJpegImagesAsTheCameraMadeThem)
{
    expectThreeHundred("MJPG 640x480@30");
}

TEST_F(SessionFramesTest, AreStampedAsTheStatisticsSay)
{
    m_device.command("hold 60");
    m_camera.select("YUYV 160x120@30");
    ia::Stream stream = m_camera.stream(unhurried());
    std::vector<double> stamps;
    double oldest = 0;
    while (ia::Frame const frame = stream.next(3s)) {
        std::chrono::duration<double> const captured = frame.captured().time_since_epoch();
        stamps.push_back(captured.count());
        oldest = std::max(oldest, monotonicSeconds() - captured.count());
    }
    ASSERT_EQ(stamps.size(), 60U);
    EXPECT_TRUE(std::is_sorted(stamps.begin(), stamps.end()));
    ia::Statistics const all = stream.statistics();
    EXPECT_NEAR(all.rate, 59 / (stamps.back() - stamps.front()), 0.01);
    EXPECT_GT(all.age.count(), 0);
    EXPECT_LE(all.oldest.count(), 1000 * oldest);
}

TEST_F(SessionFramesTest, AreTheNewestForOneWhoIsSlow)
{
    m_device.command("hold 60");
    Pictures pictures(m_camera.select("YUYV 160x120@30"));
    ia::Stream stream = m_camera.stream(unhurried(ia::newest));
    std::vector<unsigned long long> numbers;
    while (numbers.empty() || numbers.back() != 59) {
        auto const before = stream.statistics().received;
        waitFor([&] { return stream.statistics().received >= std::min(before + 5, 60ULL); });
        unsigned long long const newest = stream.statistics().received - 1;
        ia::Frame const frame = stream.next(20s);
        ASSERT_TRUE(frame);
        EXPECT_GE(frame.number(), newest);
        EXPECT_TRUE(pictures.areIn(frame)) << frame.number();
        numbers.push_back(frame.number());
    }
    EXPECT_TRUE(std::is_sorted(numbers.begin(), numbers.end()));
    EXPECT_LT(numbers.size(), 20U);
    ia::Statistics const all = stream.statistics();
    EXPECT_EQ(all.received, 60U);
    EXPECT_EQ(all.lost, 0U);
    EXPECT_EQ(all.thrownAway, 60 - numbers.size());
}

TEST_F(SessionFramesTest, KeepANewStreamAwayUntilTheyWentBackOnAnotherThread)
{
    Pictures pictures(m_camera.select("YUYV 160x120@30"));
    std::vector<ia::Frame> kept;
    {
        ia::Stream stream = m_camera.stream();
        for (int i = 0; i < 3; ++i) {
            kept.push_back(stream.next(20s));
            ASSERT_TRUE(kept.back());
        }
    }
    while (!kept.empty()) {
        auto const early = errorOf([&] { m_camera.stream(); });
        ASSERT_TRUE(early);
        EXPECT_EQ(early->kind(), ia::ErrorKind::Busy);
        EXPECT_TRUE(pictures.areIn(kept.back())) << kept.back().number();
        std::thread([&kept] { kept.pop_back(); }).join();
    }
    EXPECT_TRUE(m_camera.stream().next(20s));
}

TEST_F(SessionFramesTest, OutliveTheCamera)
{
    Pictures pictures(m_camera.select("YUYV 160x120@30"));
    ia::Frame kept;
    {
        ia::Camera camera = std::move(m_camera);
        kept = camera.stream().next(20s);
        ASSERT_TRUE(kept);
        m_camera = openEmulated(m_device);
    }
    EXPECT_TRUE(pictures.areIn(kept));
    auto const held = errorOf([&] { m_camera.stream(); });
    ASSERT_TRUE(held) << "the driver still has buffers of the camera that went";
    EXPECT_EQ(held->kind(), ia::ErrorKind::Busy);
    std::thread([&kept] { kept.release(); }).join();
    EXPECT_TRUE(m_camera.stream().next(20s));
}

} // namespace
