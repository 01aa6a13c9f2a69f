// SPDX-License-Identifier: MIT
#include "Await.h"
#include "Machine.h"
#include "SmallCamera.h"
#include "Stopwatch.h"
#include "session/Camera.h"

#include <gmock/gmock.h>

#include <chrono>
#include <map>
#include <thread>

namespace
{

using namespace ImageAcquisition::Session;
using namespace std::chrono_literals;
using testing::Optional;

/// Three cameras that deliver when they are told to.
class WaitAnyTest : public testing::Test
{
protected:
    void SetUp() override
    {
        for (int number = 0; number < 3; ++number) {
            auto const usb = VirtualCamera::aUsbDevice("1-" + std::to_string(number + 1));
            auto script = smallCamera().script();
            script.node = Machine::nodeOf(number);
            m_devices.push_back(&m_machine.add(
                number, m_machine.plug(usb),
                VirtualCamera::CameraBuilder(script).paced(VirtualCamera::Pace::OnDemand)));
            m_streams.push_back(Camera::open(Machine::nodeOf(number)).stream());
        }
        for (Stream& stream : m_streams) {
            m_all.push_back(&stream);
        }
    }

    Machine m_machine;
    std::vector<VirtualCamera::InstalledCamera*> m_devices;
    std::vector<Stream> m_streams;
    std::vector<Stream*> m_all;
};

TEST_F(WaitAnyTest, FindsTheOneThatHasAFrame)
{
    m_devices[1]->deliverFrames(1);
    EXPECT_THAT(waitAny(m_all, 5s), Optional(1u));
    EXPECT_TRUE(m_streams[1].next(0ms));
    EXPECT_FALSE(waitAny(m_all, 0ms));
}

TEST_F(WaitAnyTest, LeavesWhenTheTimeIsOver)
{
    Stopwatch const watch;
    EXPECT_FALSE(waitAny(m_all, 50ms));
    EXPECT_GE(watch.seconds(), 0.05);
    EXPECT_FALSE(waitAny({}, -1ms));
}

TEST_F(WaitAnyTest, IsWokenByAFrame)
{
    std::thread other([&] {
        std::this_thread::sleep_for(30ms);
        m_devices[2]->deliverFrames(1);
    });
    EXPECT_THAT(waitAny(m_all, -1ms), Optional(2u));
    other.join();
}

TEST_F(WaitAnyTest, IsWokenByAnEnd)
{
    std::thread other([&] {
        std::this_thread::sleep_for(30ms);
        m_devices[0]->unplug();
    });
    EXPECT_THAT(waitAny(m_all, 5s), Optional(0u));
    EXPECT_FALSE(m_streams[0].next(0ms));
    EXPECT_EQ(m_streams[0].state(), StreamState::Unplugged);
    other.join();
}

TEST_F(WaitAnyTest, TakesTurns)
{
    for (VirtualCamera::InstalledCamera* const device : m_devices) {
        device->deliverFrames(2);
    }
    for (Stream& stream : m_streams) {
        ASSERT_TRUE(await([&] { return stream.statistics().received == 2; }));
    }
    std::map<std::size_t, int> turns;
    for (int i = 0; i < 6; ++i) {
        auto const position = waitAny(m_all, 0ms);
        ASSERT_TRUE(position);
        ++turns[*position];
        if (i % 3 == 2) {
            EXPECT_EQ(turns.size(), 3u);
            turns.clear();
        }
        EXPECT_TRUE(m_streams[*position].next(0ms));
    }
    EXPECT_FALSE(waitAny(m_all, 0ms));
}

TEST_F(WaitAnyTest, LetsAnEndedStreamNotHideTheOthers)
{
    m_streams[0].stop();
    m_devices[2]->deliverFrames(1);
    ASSERT_TRUE(await([&] { return m_streams[2].statistics().received == 1; }));
    EXPECT_THAT(waitAny(m_all, 0ms), Optional(0u));
    EXPECT_THAT(waitAny(m_all, 0ms), Optional(2u));
    EXPECT_THAT(waitAny(m_all, 0ms), Optional(0u));
}

TEST_F(WaitAnyTest, ServesAsManyStreamsAsThereAre)
{
    std::vector<Stream*> many;
    for (int i = 0; i < 700; ++i) {
        many.push_back(&m_streams[0]);
    }
    many.push_back(&m_streams[1]);
    m_devices[1]->deliverFrames(1);
    EXPECT_THAT(waitAny(many, 5s), Optional(700u));
}

} // namespace
