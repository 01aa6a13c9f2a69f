// SPDX-License-Identifier: MIT
// What a frame of a stream costs: no memory, and no look at its bytes.
#include "AllocationHook.h"
#include "DeviceStub.h"
#include "SmallCamera.h"
#include "V4l2Hook.h"
#include "session/Camera.h"

#include <gtest/gtest.h>
#include <linux/videodev2.h>
#include <sys/mman.h>

#include <atomic>
#include <chrono>
#include <set>

namespace
{

using namespace ImageAcquisition::Session;
using namespace std::chrono_literals;

// What all threads asked for while it was counted. The driver's own work is left out.
std::atomic<bool> counting{false};
std::atomic<unsigned int> allocations{0};
thread_local bool isDriver = false;

int answerUncounted(int fd, unsigned long request, void* argument)
{
    isDriver = true;
    int const result = V4l2Hook::realIoctl(fd, request, argument);
    isDriver = false;
    return result;
}

} // namespace

void beforeAllocation()
{
    if (counting && !isDriver) {
        ++allocations;
    }
}

namespace
{

/// On a camera that delivers whenever it has a buffer to fill.
class CostedStream : public testing::Test
{
protected:
    V4l2Hook m_hook{V4l2Hook::Ioctl(answerUncounted)};
    VirtualCamera::InstalledCamera m_device{smallCamera().install()};
    Camera m_camera = Camera::open(Found(DeviceStub()));
};

class StreamCostTest : public CostedStream, public testing::WithParamInterface<Delivery>
{
};

TEST_P(StreamCostTest, IsNoAllocation)
{
    Stream stream = m_camera.stream(GetParam());
    ASSERT_TRUE(stream.next(5s));
    std::vector<Stream*> const streams{&stream};
    ASSERT_TRUE(waitAny(streams, 5s));
    unsigned int valid = 0;
    counting = true;
    for (int i = 0; i < 200; ++i) {
        waitAny(streams, 5s);
        Frame frame = stream.next(5s);
        Frame const moved = std::move(frame);
        valid += moved ? 1 : 0;
    }
    Statistics const statistics = stream.statistics();
    counting = false;
    EXPECT_EQ(valid, 200u);
    EXPECT_EQ(allocations, 0u);
    EXPECT_GE(statistics.received, 200u);
}

std::string nameOfDelivery(testing::TestParamInfo<Delivery> const& info)
{
    return info.param == everyFrame ? "EveryFrame" : "Newest";
}

INSTANTIATE_TEST_SUITE_P(Deliveries, StreamCostTest, testing::Values(everyFrame, newest),
                         nameOfDelivery);

class StreamBytesTest : public CostedStream
{
};

// A copy would have to read the bytes, and whoever does so while nobody may is ended by a signal.
TEST_F(StreamBytesTest, AreNotLookedAt)
{
    Stream stream = m_camera.stream();
    std::set<unsigned char const*> addresses;
    std::vector<Frame> held;
    for (int i = 0; i < 4; ++i) {
        held.push_back(stream.next(5s));
        addresses.insert(held.back().bytes().data());
    }
    ASSERT_EQ(addresses.size(), 4u);
    for (unsigned char const* const address : addresses) {
        ASSERT_EQ(mprotect(const_cast<unsigned char*>(address), smallImageSize, PROT_NONE), 0);
    }
    held.clear();
    for (int i = 0; i < 12; ++i) {
        Frame const frame = stream.next(5s);
        EXPECT_EQ(frame.bytes().size(), smallImageSize);
        EXPECT_EQ(addresses.count(frame.bytes().data()), 1u);
    }
}

// The counter itself has to count.
TEST(StreamCostCounterTest, CountsAllocations)
{
    allocations = 0;
    counting = true;
    auto const memory = std::make_unique<std::string>(100, 'x');
    counting = false;
    EXPECT_GE(allocations.exchange(0), 2u);
    EXPECT_EQ(memory->size(), 100u);
}

} // namespace
