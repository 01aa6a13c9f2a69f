// SPDX-License-Identifier: MIT
// Buffers of the memory-mapped method: asking, mapping, giving back.
#include "input/InputMethodMemoryMapping.h"

#include "DescriptorLimit.h"
#include "OpenNode.h"
#include "SmallCamera.h"
#include "V4l2Hook.h"

#include <gtest/gtest.h>

#include <linux/videodev2.h>

#include <cerrno>

namespace
{

using namespace ImageAcquisition;
using VirtualCamera::Call;
using VirtualCamera::InstalledCamera;

v4l2_requestbuffers lastRequest(InstalledCamera const& camera)
{
    return camera.calls(VIDIOC_REQBUFS).back().argument<v4l2_requestbuffers>();
}

TEST(InputMethodMemoryMappingSetupTest, IsSupportedByADriverThatGrantsBuffers)
{
    auto const camera = smallCamera().install();
    OpenNode const node;
    EXPECT_TRUE(InputMethodMemoryMapping::supported(node.fd()));
    auto const calls = camera.calls(VIDIOC_REQBUFS);
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(calls[0].argument<v4l2_requestbuffers>().count, 4u);
    EXPECT_EQ(calls[1].argument<v4l2_requestbuffers>().count, 0u);
    EXPECT_TRUE(camera.accounting().allocatedBuffers == 0);
}

TEST(InputMethodMemoryMappingSetupTest, IsNotSupportedByADriverThatAnswersEinval)
{
    auto const camera = smallCamera().offeringMmap(false).install();
    OpenNode const node;
    EXPECT_FALSE(InputMethodMemoryMapping::supported(node.fd()));
    EXPECT_EQ(camera.countOf(VIDIOC_REQBUFS), 1u);
}

TEST(InputMethodMemoryMappingSetupTest, CountsAnyOtherErrorAsSupport)
{
    for (int const error : {EBUSY, EIO, ENODEV, ENOTTY, ENOMEM}) {
        auto const camera = smallCamera().failing(VIDIOC_REQBUFS, error).install();
        OpenNode const node;
        EXPECT_TRUE(InputMethodMemoryMapping::supported(node.fd())) << error;
        EXPECT_EQ(camera.countOf(VIDIOC_REQBUFS), 2u);
        EXPECT_EQ(lastRequest(camera).count, 0u);
    }
}

TEST(InputMethodMemoryMappingSetupTest, MapsEveryBufferThatTheDriverGrants)
{
    struct
    {
        unsigned int most;
        unsigned int fewest;
        int expected;
    } const cases[] = {{32, 0, 4}, {2, 0, 2}, {1, 0, 1}, {32, 6, 6}};
    for (auto const& one : cases) {
        auto const camera =
            smallCamera().grantingAtMost(one.most).grantingAtLeast(one.fewest).install();
        OpenNode const node;
        InputMethodMemoryMapping method(node.fd());
        ASSERT_EQ(method.setup(4, smallImageSize), 0);
        EXPECT_EQ(camera.accounting().liveMappings, one.expected);
        ASSERT_EQ(method.startCapture(), 0);
        EXPECT_EQ(static_cast<unsigned>(one.expected), camera.countOf(VIDIOC_QBUF));
        IFrame* const frame = method.acquireFrame();
        EXPECT_FALSE(frame->isInvalid());
        EXPECT_EQ(method.releaseFrame(frame), 0);
        EXPECT_EQ(method.stopCapture(), 0);
        EXPECT_EQ(method.cleanup(), 0);
        EXPECT_EQ(camera.accounting().liveMappings, 0);
        EXPECT_EQ(camera.accounting().allocatedBuffers, 0);
    }
}

/// A driver that says that it granted so many buffers, all of them the same.
V4l2Hook::Ioctl granting(unsigned int count)
{
    return [count](int fd, unsigned long request, void* argument) {
        if (request == VIDIOC_QUERYBUF) {
            static_cast<v4l2_buffer*>(argument)->index = 0;
        }
        int const result = V4l2Hook::realIoctl(fd, request, argument);
        if (request == VIDIOC_REQBUFS && result == 0) {
            auto& granted = static_cast<v4l2_requestbuffers*>(argument)->count;
            granted = granted == 0 ? 0 : count;
        }
        return result;
    };
}

TEST(InputMethodMemoryMappingSetupTest, MapsNoMoreThan1024OfTheBuffersThatTheDriverGrants)
{
    struct
    {
        unsigned int granted;
        int mapped;
    } const cases[] = {{1023, 1023}, {1024, 1024}, {1025, 1024}, {0xffffffff, 1024}};
    for (auto const& one : cases) {
        auto const camera = smallCamera().install();
        OpenNode const node;
        InputMethodMemoryMapping method(node.fd());
        V4l2Hook const hook(granting(one.granted));
        EXPECT_EQ(method.setup(4, smallImageSize), 0);
        EXPECT_EQ(camera.accounting().liveMappings, one.mapped);
        EXPECT_EQ(camera.countOf(VIDIOC_QUERYBUF), static_cast<unsigned int>(one.mapped));
        EXPECT_EQ(method.cleanup(), 0);
        EXPECT_EQ(camera.accounting().liveMappings, 0);
    }
}

TEST(InputMethodMemoryMappingSetupTest, MapsForReadingAndWritingAtTheDriversOffsets)
{
    auto const camera = smallCamera().install();
    OpenNode const node;
    InputMethodMemoryMapping method(node.fd());
    ASSERT_EQ(method.setup(2, 1), 0);
    auto const maps = camera.calls(Call::Mmap);
    auto const queries = camera.calls(VIDIOC_QUERYBUF);
    ASSERT_EQ(maps.size(), 2u);
    ASSERT_EQ(queries.size(), 2u);
    for (std::size_t i = 0; i < 2; ++i) {
        EXPECT_EQ(queries[i].argument<v4l2_buffer>().index, i);
        auto const described = queries[i].answer<v4l2_buffer>();
        EXPECT_EQ(described.length, maps[i].length);
        EXPECT_EQ(described.m.offset, maps[i].offset);
    }
    method.cleanup();
}

TEST(InputMethodMemoryMappingSetupTest, FailsToSetUpWhenTheDriverGrantsNothing)
{
    auto const camera = smallCamera().grantingAtMost(0).install();
    OpenNode const node;
    InputMethodMemoryMapping method(node.fd());
    EXPECT_EQ(method.setup(4, smallImageSize), -1);
    EXPECT_TRUE(method.acquireFrame()->isInvalid());
}

TEST(InputMethodMemoryMappingSetupTest, FailsToSetUpWhenTheDriverRefuses)
{
    auto const camera = smallCamera().failing(VIDIOC_REQBUFS, EBUSY).install();
    OpenNode const node;
    InputMethodMemoryMapping method(node.fd());
    EXPECT_EQ(method.setup(4, smallImageSize), -1);
    EXPECT_EQ(camera.countOf(VIDIOC_QUERYBUF), 0u);
}

TEST(InputMethodMemoryMappingSetupTest, FailsToSetUpWithoutAPipeBeforeItTouchesTheDevice)
{
    auto const camera = smallCamera().install();
    OpenNode const node;
    InputMethodMemoryMapping method(node.fd());
    {
        DescriptorLimit const none;
        EXPECT_EQ(method.setup(4, smallImageSize), -1);
    }
    EXPECT_EQ(camera.countOf(Call::Ioctl), 0u);
}

TEST(InputMethodMemoryMappingSetupTest, PassesANegativeCountOnToTheDriver)
{
    auto const camera = smallCamera().grantingAtMost(3).install();
    OpenNode const node;
    InputMethodMemoryMapping method(node.fd());
    EXPECT_EQ(method.setup(-1, smallImageSize), 0);
    EXPECT_EQ(lastRequest(camera).count, 0xffffffffu);
    EXPECT_EQ(camera.accounting().liveMappings, 3);
    method.cleanup();
}

TEST(InputMethodMemoryMappingSetupTest, GivesEverythingBackWhenABufferCannotBeHad)
{
    struct
    {
        VirtualCamera::CallId call;
        unsigned use;
    } const cases[] = {
        {VIDIOC_QUERYBUF, 1}, {VIDIOC_QUERYBUF, 3}, {Call::Mmap, 1}, {Call::Mmap, 4}};
    for (auto const& one : cases) {
        auto const camera = smallCamera().failing(one.call, ENOMEM, one.use).install();
        OpenNode const node;
        InputMethodMemoryMapping method(node.fd());
        EXPECT_EQ(method.setup(4, smallImageSize), -1);
        EXPECT_EQ(camera.accounting().liveMappings, 0);
        EXPECT_EQ(camera.accounting().allocatedBuffers, 0);
        EXPECT_EQ(lastRequest(camera).count, 0u);
        EXPECT_EQ(method.setup(4, smallImageSize), 0) << "it works once the driver does";
        method.cleanup();
    }
}

TEST(InputMethodMemoryMappingSetupTest, ReleasesBuffersInTheOrderThatDriversNeed)
{
    auto const camera = smallCamera().install();
    OpenNode const node;
    InputMethodMemoryMapping method(node.fd());
    ASSERT_EQ(method.setup(2, smallImageSize), 0);
    EXPECT_EQ(method.cleanup(), 0);
    auto const calls = camera.calls();
    ASSERT_GE(calls.size(), 3u);
    EXPECT_EQ(VirtualCamera::CallId(Call::Munmap), calls[calls.size() - 3].call);
    EXPECT_EQ(VirtualCamera::CallId(Call::Munmap), calls[calls.size() - 2].call);
    EXPECT_EQ(VirtualCamera::CallId(VIDIOC_REQBUFS), calls[calls.size() - 1].call);
    EXPECT_TRUE(calls.back().succeeded());
}

TEST(InputMethodMemoryMappingSetupTest, IgnoresFailuresOfCleaningUp)
{
    auto camera = smallCamera().install();
    OpenNode const node;
    InputMethodMemoryMapping method(node.fd());
    ASSERT_EQ(method.setup(2, smallImageSize), 0);
    camera.fail(VIDIOC_REQBUFS, EIO);
    EXPECT_EQ(method.cleanup(), 0);
    EXPECT_EQ(method.cleanup(), 0) << "and may be repeated";
    EXPECT_EQ(camera.accounting().liveMappings, 0);
}

TEST(InputMethodMemoryMappingSetupTest, KeepsItsBuffersWhenTheDriverRefusesASecondSetup)
{
    auto const camera = smallCamera().install();
    OpenNode const node;
    InputMethodMemoryMapping method(node.fd());
    ASSERT_EQ(method.setup(2, smallImageSize), 0);
    EXPECT_EQ(method.setup(2, smallImageSize), -1);
    EXPECT_EQ(camera.accounting().liveMappings, 2);
    EXPECT_EQ(method.cleanup(), 0);
    EXPECT_EQ(camera.accounting().liveMappings, 0);
}

TEST(InputMethodMemoryMappingSetupTest, UnmapsItsBuffersWhenTheDriverAllowsASecondSetup)
{
    auto const camera = smallCamera().install();
    OpenNode const node;
    InputMethodMemoryMapping method(node.fd());
    ASSERT_EQ(method.setup(2, smallImageSize), 0);
    {
        // Newer kernels let go of buffers that are still mapped.
        V4l2Hook const hook([](int fd, unsigned long request, void* argument) {
            return request == VIDIOC_REQBUFS ? 0 : V4l2Hook::realIoctl(fd, request, argument);
        });
        EXPECT_EQ(method.setup(2, smallImageSize), 0);
    }
    EXPECT_EQ(camera.accounting().liveMappings, 2);
    EXPECT_EQ(method.cleanup(), 0);
    EXPECT_EQ(camera.accounting().liveMappings, 0);
}

TEST(InputMethodMemoryMappingSetupTest, LeavesMappingsToCleanupAndNotToItsDestruction)
{
    auto const camera = smallCamera().install();
    OpenNode const node;
    {
        InputMethodMemoryMapping method(node.fd());
        ASSERT_EQ(method.setup(2, smallImageSize), 0);
    }
    EXPECT_EQ(camera.accounting().liveMappings, 2);
}

} // namespace
