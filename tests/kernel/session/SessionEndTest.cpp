// SPDX-License-Identifier: MIT
// How streams end: a client can tell one end from the other.
#include "SessionCamera.h"
#include "Shell.h"
#include "ThreadState.h"

#include <iostream>

using namespace KernelTest;

namespace
{

/// In seconds, what a client may take for "at once".
constexpr double soon = 0.1;

/// When a next() that waits on another thread returned, and that it had no frame.
class Waiter
{
public:
    explicit Waiter(ia::Stream& stream)
        : m_thread([this, &stream] {
              m_hadFrame = static_cast<bool>(stream.next(20s));
              m_returned = monotonicSeconds();
          })
    {
    }

    double returned()
    {
        m_thread.join();
        EXPECT_FALSE(m_hadFrame);
        return m_returned;
    }

private:
    bool m_hadFrame = true;
    double m_returned = 0;
    WatchedThread m_thread;
};

/// A camera that has sent two frames and stalls.
class SessionEndTest : public testing::Test
{
protected:
    void SetUp() override
    {
        m_camera.select("YUYV 160x120@30");
        m_stream.emplace(m_camera.stream());
        ASSERT_TRUE(m_stream->next(20s));
        ASSERT_TRUE(m_stream->next(20s));
    }

    EmulatedCameras const m_device{{"ordinary"}, {"1 hold 2"}};
    ia::Camera m_camera = openEmulated(m_device);
    std::optional<ia::Stream> m_stream;
};

TEST_F(SessionEndTest, ByUnpluggingIsToldWithinATenthOfASecond)
{
    double slowest = 0;
    for (int round = 0; round < 3; ++round) {
        Waiter waiter(*m_stream);
        double const begin = monotonicSeconds();
        m_device.command("unplug");
        double const told = waiter.returned();
        EXPECT_GT(told, begin);
        slowest = std::max(slowest, told - m_device.unplugSeconds());
        EXPECT_EQ(m_stream->state(), ia::StreamState::Unplugged);
        ASSERT_TRUE(m_stream->error());
        EXPECT_EQ(m_stream->error()->kind(), ia::ErrorKind::Unplugged);
        EXPECT_EQ(m_stream->statistics().timeOuts, 0U);
        ASSERT_TRUE(m_device.waitUntilGone());
        m_stream.reset();
        {
            ia::Camera const gone = std::move(m_camera);
        }
        m_device.plug();
        m_device.command("hold 2");
        m_camera = openEmulated(m_device);
        SetUp();
    }
    std::cout << "told after at most " << slowest << " s\n";
    EXPECT_LT(slowest, soon);
}

TEST_F(SessionEndTest, IsNotATimeOutOfACameraThatStalls)
{
    EXPECT_FALSE(m_stream->next(300ms));
    EXPECT_EQ(m_stream->state(), ia::StreamState::Running);
    EXPECT_FALSE(m_stream->error());
    EXPECT_EQ(m_stream->statistics().timeOuts, 1U);
    m_device.command("release");
    EXPECT_TRUE(m_stream->next(20s));
}

TEST_F(SessionEndTest, ByAStopIsToldAtOnce)
{
    Waiter waiter(*m_stream);
    double const begin = monotonicSeconds();
    m_stream->stop();
    double const told = waiter.returned();
    EXPECT_GT(told, begin);
    EXPECT_LT(told - begin, soon);
    EXPECT_EQ(m_stream->state(), ia::StreamState::Stopped);
    EXPECT_FALSE(m_stream->error());
    EXPECT_EQ(m_stream->statistics().timeOuts, 0U);
    EXPECT_TRUE(waitFor([this] { return m_device.status()["streaming"] == false; }));
}

TEST_F(SessionEndTest, HandsOutWhatCameBeforeTheUnplugging)
{
    m_device.command("hold 6");
    EXPECT_TRUE(waitFor([this] { return m_stream->statistics().received >= 5; }));
    m_device.command("unplug");
    EXPECT_TRUE(waitFor([this] { return m_stream->state() == ia::StreamState::Unplugged; }));
    EXPECT_TRUE(m_stream->next(0ms));
    while (m_stream->next(0ms)) {
    }
    EXPECT_FALSE(m_stream->next(20s));
    ASSERT_TRUE(m_device.waitUntilGone());
}

} // namespace
