// SPDX-License-Identifier: MIT
// Makes each allocation of a setup fail in turn, and uses the method all the same.
#include "AllocationHook.h"
#include "DescriptorLimit.h"
#include "OpenNode.h"
#include "SmallCamera.h"
#include "V4l2Hook.h"
#include "input/InputMethodMemoryMapping.h"
#include "input/InputMethodRead.h"
#include "input/InputMethodUserPointers.h"

#include <gtest/gtest.h>

#include <dlfcn.h>
#include <libv4l2.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <new>
#include <optional>

namespace
{

using namespace ImageAcquisition;

// How many allocations of this thread succeed before one fails; without a value all do.
thread_local std::optional<int> left;

/// The driver's own allocations all succeed.
class InTheDriver
{
public:
    InTheDriver() : m_earlier(left) { left.reset(); }
    InTheDriver(InTheDriver const&) = delete;
    InTheDriver& operator=(InTheDriver const&) = delete;
    ~InTheDriver() { left = m_earlier; }

private:
    std::optional<int> const m_earlier;
};

template <typename Function>
Function* real(char const* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

} // namespace

void beforeAllocation()
{
    if (left && (*left)-- == 0) {
        left.reset();
        throw std::bad_alloc();
    }
}

extern "C" {

// Frames have their bytes from here. ThreadSanitizer's own memory comes from here too, before
// anything of the program may run.
#ifndef __SANITIZE_THREAD__
void* mmap(void* start, size_t length, int protection, int flags, int fd, off_t offset) noexcept
{
    if ((flags & MAP_ANONYMOUS) != 0 && left && (*left)-- == 0) {
        left.reset();
        errno = ENOMEM;
        return MAP_FAILED;
    }
    return real<decltype(mmap)>("mmap")(start, length, protection, flags, fd, offset);
}
#endif

void* v4l2_mmap(void* start, size_t length, int protection, int flags, int fd, int64_t offset)
{
    InTheDriver const driver;
    return real<decltype(v4l2_mmap)>("v4l2_mmap")(start, length, protection, flags, fd, offset);
}

int v4l2_munmap(void* start, size_t length)
{
    InTheDriver const driver;
    return real<decltype(v4l2_munmap)>("v4l2_munmap")(start, length);
}

} // extern "C"

namespace
{

constexpr int buffers = 3;
constexpr int mostAllocations = 100;
#ifdef __SANITIZE_THREAD__
constexpr bool framesFailTwice = false;
#else
constexpr bool framesFailTwice = true;
#endif

/// Sets up with one allocation that fails; false when it did, and setup() threw.
bool setUp(InputMethod& method, int allocationsBefore)
{
    // Reading and user pointers only set up where no pipe can be made.
    std::optional<DescriptorLimit> none;
    if (method.type() != InputMethod::MemoryMapping) {
        none.emplace();
    }
    V4l2Hook const hook([](int fd, unsigned long request, void* argument) {
        InTheDriver const driver;
        return V4l2Hook::realIoctl(fd, request, argument);
    });
    left = allocationsBefore;
    try {
        EXPECT_EQ(method.setup(buffers, smallImageSize), 0);
        left.reset();
        return true;
    } catch (std::bad_alloc const&) {
        return false;
    }
}

void expectFramesAreWhole(InputMethod& method)
{
    method.startCapture();
    for (int i = 0; i < buffers; ++i) {
        IFrame* const frame = method.acquireFrame();
        ASSERT_NE(frame, nullptr);
        EXPECT_NE(frame->bytePtr(), nullptr);
        method.releaseFrame(frame);
    }
    method.stopCapture();
}

template <typename Method>
class AllocationFailureTest : public testing::Test
{
protected:
    static VirtualCamera::CameraBuilder builder()
    {
        return smallCamera()
            .offeringMmap(std::is_same_v<Method, InputMethodMemoryMapping>)
            .offeringUserPointers();
    }

    void expectNothingIsHeld() const
    {
        EXPECT_EQ(m_camera.accounting().liveMappings, 0);
        EXPECT_EQ(m_camera.accounting().allocatedBuffers, 0);
    }

    VirtualCamera::InstalledCamera m_camera = builder().install();
    OpenNode const m_node;
};

using Methods = testing::Types<InputMethodMemoryMapping, InputMethodUserPointers, InputMethodRead>;
TYPED_TEST_SUITE(AllocationFailureTest, Methods);

TYPED_TEST(AllocationFailureTest, OfASetupLeavesAMethodThatCanBeUsedAndCleanedUp)
{
    int failures = 0;
    for (; failures < mostAllocations; ++failures) {
        TypeParam method(this->m_node.fd());
        if (setUp(method, failures)) {
            method.cleanup();
            break;
        }
        this->expectNothingIsHeld();
        expectFramesAreWhole(method);
        EXPECT_EQ(method.cleanup(), 0);
        this->expectNothingIsHeld();
    }
    // At least the list, and each of its frames with its bytes or mapping; fewer, and not all was
    // made to fail.
    EXPECT_GT(failures, framesFailTwice ? 2 * buffers : buffers);
    EXPECT_LT(failures, mostAllocations);
}

TYPED_TEST(AllocationFailureTest, OfASetupIsOvercomeByALaterOne)
{
    for (int failing = 0; failing < mostAllocations; ++failing) {
        TypeParam method(this->m_node.fd());
        bool const done = setUp(method, failing);
        if (!done) {
            EXPECT_TRUE(setUp(method, mostAllocations));
        }
        EXPECT_EQ(method.startCapture(), 0);
        IFrame* const frame = method.acquireFrame();
        EXPECT_FALSE(frame->isInvalid());
        EXPECT_EQ(method.releaseFrame(frame), 0);
        EXPECT_EQ(method.stopCapture(), 0);
        EXPECT_EQ(method.cleanup(), 0);
        this->expectNothingIsHeld();
        if (done) {
            break;
        }
    }
}

// A wait that could not be made must not be taken for the one of a later setup, whose pipe may have
// the numbers of an earlier one.
TEST(AllocationFailureTest, OfTheWaitLeavesNoWaitForNothing)
{
    auto const camera = smallCamera().install();
    OpenNode const node;
    InputMethodMemoryMapping method(node.fd());
    for (int failing = 0; failing < 2 * buffers; ++failing) {
        ASSERT_TRUE(setUp(method, mostAllocations));
        EXPECT_EQ(method.cleanup(), 0);
        int const inThePipesPlace = dup(node.fd());
        setUp(method, failing);
        EXPECT_EQ(method.cleanup(), 0);
        close(inThePipesPlace);
        ASSERT_TRUE(setUp(method, mostAllocations));
        EXPECT_EQ(method.startCapture(), 0);
        IFrame* const frame = method.acquireFrame();
        EXPECT_FALSE(frame->isInvalid()) << failing;
        EXPECT_EQ(method.releaseFrame(frame), 0);
        EXPECT_EQ(method.stopCapture(), 0);
        EXPECT_EQ(method.cleanup(), 0);
    }
}

TEST(AllocationFailureTest, OfASecondSetupOfUserPointersLeavesTheFramesOfTheFirst)
{
    auto const camera = smallCamera().offeringMmap(false).offeringUserPointers().install();
    OpenNode const node;
    InputMethodUserPointers method(node.fd());
    ASSERT_TRUE(setUp(method, mostAllocations));
    ASSERT_EQ(method.startCapture(), 0);
    IFrame* const borrowed = method.acquireFrame();
    ASSERT_FALSE(borrowed->isInvalid());
    ASSERT_EQ(method.stopCapture(), 0);
    for (int failing = 0; failing <= buffers; ++failing) {
        EXPECT_FALSE(setUp(method, failing));
        EXPECT_EQ(borrowed->allocSize(), smallImageSize);
        borrowed->bytePtr()[smallImageSize - 1] = 1;
    }
    EXPECT_EQ(method.cleanup(), 0);
    EXPECT_EQ(camera.accounting().liveMappings, 0);
    EXPECT_EQ(camera.accounting().allocatedBuffers, 0);
}

} // namespace
