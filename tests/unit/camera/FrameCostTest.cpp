// SPDX-License-Identifier: MIT
// What a frame costs the library: no memory, no look at its bytes, one wait, and two calls to the
// driver.
#include "camera/Camera.h"

#include "AllocationHook.h"
#include "DeviceStub.h"
#include "SmallCamera.h"
#include "V4l2Hook.h"

#include <gtest/gtest.h>

#include <dlfcn.h>
#include <linux/videodev2.h>
#include <sys/mman.h>
#include <sys/select.h>

#include <algorithm>
#include <map>
#include <vector>

namespace
{

using namespace ImageAcquisition;

// What this thread asked for while it counted. The driver's own work is left out.
thread_local bool counting = false;
thread_local unsigned int allocations = 0;
thread_local unsigned int waits = 0;

class Uncounted
{
public:
    Uncounted() : m_earlier(counting) { counting = false; }
    Uncounted(Uncounted const&) = delete;
    Uncounted& operator=(Uncounted const&) = delete;
    ~Uncounted() { counting = m_earlier; }

private:
    bool const m_earlier;
};

} // namespace

void beforeAllocation()
{
    if (counting) {
        ++allocations;
    }
}

extern "C" int select(int count, fd_set* read, fd_set* write, fd_set* except, timeval* timeout)
{
    if (counting) {
        ++waits;
    }
    static auto* const real = reinterpret_cast<decltype(&select)>(dlsym(RTLD_NEXT, "select"));
    return real(count, read, write, except, timeout);
}

namespace
{

TEST(FrameCostTest, IsNoAllocationAndOneWaitAndTwoDriverCalls)
{
    auto const virtualCamera = smallCamera().install();
    DeviceStub const device{};
    Camera camera(&device);
    ASSERT_TRUE(camera.init());
    ASSERT_EQ(camera.setup(4), 0);
    ASSERT_EQ(camera.startCapture(), 0);
    std::map<unsigned long, unsigned int> calls;
    V4l2Hook const hook([&calls](int fd, unsigned long request, void* argument) {
        Uncounted const driver;
        ++calls[request];
        return V4l2Hook::realIoctl(fd, request, argument);
    });
    constexpr unsigned int frames = 100;
    unsigned int valid = 0;
    counting = true;
    for (unsigned int i = 0; i < frames; ++i) {
        IFrame* const frame = camera.acquireFrame();
        valid += frame->isInvalid() ? 0 : 1;
        camera.releaseFrame(frame);
    }
    counting = false;
    EXPECT_EQ(frames, valid);
    EXPECT_EQ(allocations, 0u);
    EXPECT_EQ(frames, waits);
    EXPECT_EQ(calls.size(), 2u);
    EXPECT_EQ(frames, calls[VIDIOC_DQBUF]);
    EXPECT_EQ(frames, calls[VIDIOC_QBUF]);
    camera.stopCapture();
    camera.cleanup();
}

/// Takes as many frames as there are buffers, and gives them back.
std::vector<unsigned char*> addressesOfFrames(Camera& camera, int count)
{
    std::vector<IFrame*> frames;
    std::vector<unsigned char*> addresses;
    for (int i = 0; i < count; ++i) {
        frames.push_back(camera.acquireFrame());
        addresses.push_back(frames.back()->bytePtr());
    }
    for (IFrame* const frame : frames) {
        camera.releaseFrame(frame);
    }
    return addresses;
}

// A copy would have to read the bytes, and whoever does so while nobody may is ended by a signal.
TEST(FrameCostTest, IsNoLookAtTheFramesBytes)
{
    auto const virtualCamera = smallCamera().install();
    DeviceStub const device{};
    Camera camera(&device);
    ASSERT_TRUE(camera.init());
    constexpr int buffers = 4;
    ASSERT_EQ(camera.setup(buffers), 0);
    ASSERT_EQ(camera.startCapture(), 0);
    auto const addresses = addressesOfFrames(camera, buffers);
    for (unsigned char* const address : addresses) {
        ASSERT_EQ(mprotect(address, smallImageSize, PROT_NONE), 0);
    }
    for (int i = 0; i < 3 * buffers; ++i) {
        IFrame* const frame = camera.acquireFrame();
        EXPECT_EQ(frame->bytesUsed(), smallImageSize);
        EXPECT_EQ(std::count(addresses.begin(), addresses.end(), frame->bytePtr()), 1);
        EXPECT_EQ(camera.releaseFrame(frame), 0);
    }
    camera.stopCapture();
    camera.cleanup();
}

// The counters themselves have to count.
TEST(FrameCostTest, WouldBeNoticed)
{
    allocations = 0;
    waits = 0;
    counting = true;
    auto const memory = std::make_unique<std::string>(100, 'x');
    timeval noTime{};
    select(0, nullptr, nullptr, nullptr, &noTime);
    counting = false;
    EXPECT_GE(allocations, 2u);
    EXPECT_EQ(waits, 1u);
    EXPECT_EQ(memory->size(), 100u);
}

} // namespace
