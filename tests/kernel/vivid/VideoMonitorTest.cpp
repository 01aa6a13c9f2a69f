// SPDX-License-Identifier: MIT
#include "WatchedCameras.h"

#include <type_traits>

using namespace KernelTest;

namespace
{

using Two = std::integral_constant<int, 2>;
using SixtyFour = std::integral_constant<int, 64>;

/// What was seen of so many cameras, which come and go once for all tests of a suite.
template <typename Cameras>
class VideoMonitorTest : public testing::Test
{
protected:
    static constexpr int cameras = Cameras::value;
    /// Seconds. udevadm and the monitors are woken one after the other on a slow machine, and the
    /// processes with which udev handles many devices at once come in between.
    static constexpr double tolerance = cameras < 10 ? 2.0 : 10.0;

    static void SetUpTestSuite()
    {
        watched = std::make_unique<Watched>(cameras);
        watched->comeAndGo();
    }
    static void TearDownTestSuite() { watched.reset(); }

    static void expectAll(VideoEvents const& events)
    {
        expectEachNodeOnce(events, "add", cameras);
        expectEachNodeOnce(events, "remove", cameras);
        EXPECT_EQ(events.size(), 2U * cameras);
    }

    static inline std::unique_ptr<Watched> watched;
};

using Numbers = testing::Types<Two, SixtyFour>;
TYPED_TEST_SUITE(VideoMonitorTest, Numbers);

TYPED_TEST(VideoMonitorTest, LosesNoEventOfTheBlockingMonitor)
{
    this->expectAll(this->watched->fromBlocking);
}

TYPED_TEST(VideoMonitorTest, LosesNoEventOfTheContinuousMonitor)
{
    this->expectAll(this->watched->fromContinuous);
}

TYPED_TEST(VideoMonitorTest, LosesNoEventOfAMonitorThatIsAskedAfterwards)
{
    expectEachNodeOnce(this->watched->afterLoad, "add", this->cameras);
}

TYPED_TEST(VideoMonitorTest, SeesWithTheBlockingMonitorWhatUdevadmReports)
{
    expectSameEvents(this->watched->fromBlocking, this->watched->fromUdevadm, this->tolerance);
}

TYPED_TEST(VideoMonitorTest, SeesWithTheContinuousMonitorWhatUdevadmReports)
{
    expectSameEvents(this->watched->fromContinuous, this->watched->fromUdevadm, this->tolerance);
}

TYPED_TEST(VideoMonitorTest, ReportsNoneOfTheOtherDevicesThatCameWithThem)
{
    EXPECT_GE(this->watched->othersFromUdevadm, 2U);
    this->expectAll(this->watched->fromContinuous);
}

} // namespace
