// SPDX-License-Identifier: MIT
#include "Shell.h"
#include "VideoEvents.h"

#include <ICameraEvent.h>
#include <ICameraFactory.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <iostream>

using namespace ImageAcquisition;
using namespace KernelTest;

namespace
{

/// udevadm and the monitors are woken one after the other on a slow machine, and the processes
/// with which udev handles many devices at once come in between.
constexpr double toleranceForFew = 2.0;
constexpr double toleranceForMany = 10.0;
constexpr std::chrono::minutes loadLimit(2);

/// Loads vivid with so many cameras, without the other kinds of nodes.
void loadModule(int cameras)
{
    std::string types;
    std::string counts;
    std::string inputs;
    for (int i = 0; i < cameras; ++i) {
        char const* const separator = i == 0 ? "" : ",";
        types += separator + std::string("0x1");
        counts += separator + std::string("1");
        inputs += separator + std::string("0");
    }
    CommandResult const result =
        runShell("modprobe vivid n_devs=" + std::to_string(cameras) + " node_types=" + types +
                 " num_inputs=" + counts + " input_types=" + inputs);
    ASSERT_EQ(result.status, 0) << result.output;
}

/// udev looks at new nodes for a moment, which keeps the module in use.
void unloadModule()
{
    ASSERT_TRUE(waitFor([] { return runShell("rmmod vivid").status == 0; }, loadLimit));
}

/// The module comes and goes, with everybody watching.
class Watched
{
public:
    explicit Watched(int cameras) : m_cameras(static_cast<std::size_t>(cameras))
    {
        m_asking.beginToAsk();
    }

    void comeAndGo()
    {
        loadModule(static_cast<int>(m_cameras));
        ASSERT_TRUE(waitFor([&] { return m_udevadm.events().size() >= m_cameras; }, loadLimit));
        m_late.beginToAsk();
        waitFor([&] { return m_late.events().size() >= m_cameras; });
        afterLoad = m_late.events();
        unloadModule();
        ASSERT_TRUE(waitFor([&] { return m_udevadm.events().size() >= 2 * m_cameras; }, loadLimit));
        waitFor([&] {
            return std::min(m_asking.events().size(), m_continuous.events().size()) >=
                   2 * m_cameras;
        });
        fromUdevadm = m_udevadm.events();
        othersFromUdevadm = m_udevadm.otherEvents();
        fromBlocking = m_asking.events();
        fromContinuous = m_continuous.events();
    }

    VideoEvents fromUdevadm;
    VideoEvents fromBlocking;
    VideoEvents fromContinuous;
    VideoEvents afterLoad; ///< of a monitor that was asked only when all had come
    std::size_t othersFromUdevadm = 0;

private:
    std::size_t m_cameras;
    UdevadmWatch m_udevadm;
    ContinuousWatch m_continuous;
    BlockingWatch m_asking;
    BlockingWatch m_late;
};

/// The same events at the same times. Their order is each listener's own: several processes of
/// udev's send at once, and the kernel hands a message to one listener after the other.
void expectSameEvents(VideoEvents const& events, VideoEvents const& wanted, double tolerance)
{
    ASSERT_EQ(events.size(), wanted.size());
    double furthest = 0;
    for (VideoEvent const& one : wanted) {
        auto const match = std::find_if(events.begin(), events.end(), [&](VideoEvent const& event) {
            return event.isSameAs(one);
        });
        ASSERT_NE(match, events.end()) << one.action << " " << one.node;
        EXPECT_EQ(match->subsystem, "video4linux");
        furthest = std::max(furthest, std::fabs(match->seconds - one.seconds));
    }
    std::cout << "furthest from udevadm: " << furthest << " s\n";
    EXPECT_LT(furthest, tolerance);
}

/// Every node from video0 on once with this action, and no other.
void expectEachNodeOnce(VideoEvents const& events, std::string const& action, int count)
{
    VideoEvents some;
    std::copy_if(events.begin(), events.end(), std::back_inserter(some),
                 [&](VideoEvent const& event) { return event.action == action; });
    EXPECT_EQ(some.size(), static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        std::string const node = "/dev/video" + std::to_string(i);
        EXPECT_EQ(std::count_if(some.begin(), some.end(),
                                [&](VideoEvent const& event) { return event.node == node; }),
                  1)
            << action << " " << node;
    }
}

template <int Cameras>
class MonitorsOf : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        watched = std::make_unique<Watched>(Cameras);
        watched->comeAndGo();
    }
    static void TearDownTestSuite() { watched.reset(); }

    static void expectAll(VideoEvents const& events)
    {
        expectEachNodeOnce(events, "add", Cameras);
        expectEachNodeOnce(events, "remove", Cameras);
        EXPECT_EQ(events.size(), 2U * Cameras);
    }

    static inline std::unique_ptr<Watched> watched;
};

using TwoCameras = MonitorsOf<2>;
using SixtyFourCameras = MonitorsOf<64>;

} // namespace

TEST_F(TwoCameras, AreReportedByTheBlockingMonitorWhenTheyComeAndGo)
{
    expectAll(watched->fromBlocking);
}

TEST_F(TwoCameras, AreReportedByTheContinuousMonitorWhenTheyComeAndGo)
{
    expectAll(watched->fromContinuous);
}

TEST_F(TwoCameras, AreReportedByTheBlockingMonitorAsUdevadmReportsThem)
{
    expectSameEvents(watched->fromBlocking, watched->fromUdevadm, toleranceForFew);
}

TEST_F(TwoCameras, AreReportedByTheContinuousMonitorAsUdevadmReportsThem)
{
    expectSameEvents(watched->fromContinuous, watched->fromUdevadm, toleranceForFew);
}

TEST_F(TwoCameras, BringOtherDevicesThatAreNotReported)
{
    EXPECT_GE(watched->othersFromUdevadm, 2U);
    expectAll(watched->fromContinuous);
}

TEST_F(SixtyFourCameras, LoseNoEventOfTheBlockingMonitor)
{
    expectAll(watched->fromBlocking);
}

TEST_F(SixtyFourCameras, LoseNoEventOfTheContinuousMonitor)
{
    expectAll(watched->fromContinuous);
}

TEST_F(SixtyFourCameras, LoseNoEventOfAMonitorThatIsAskedAfterwards)
{
    expectEachNodeOnce(watched->afterLoad, "add", 64);
}

TEST_F(SixtyFourCameras, AreReportedByTheBlockingMonitorAsUdevadmReportsThem)
{
    expectSameEvents(watched->fromBlocking, watched->fromUdevadm, toleranceForMany);
}

TEST_F(SixtyFourCameras, AreReportedByTheContinuousMonitorAsUdevadmReportsThem)
{
    expectSameEvents(watched->fromContinuous, watched->fromUdevadm, toleranceForMany);
}
