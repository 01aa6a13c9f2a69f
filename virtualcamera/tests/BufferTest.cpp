// SPDX-License-Identifier: MIT
#include "Client.h"

#include <gtest/gtest.h>

#include <memory>
#include <thread>

namespace
{

using namespace VirtualCamera;

constexpr unsigned imageSize = 64 * 48 * 2;

TEST(BufferTest, RefusesMemoryKindsThatAreNotOffered)
{
    auto const camera = smallCamera().offeringMmap(false).install();
    Client client;
    EXPECT_EQ(client.request(4, V4L2_MEMORY_MMAP), EINVAL);
    EXPECT_EQ(client.request(4, V4L2_MEMORY_USERPTR), EINVAL);
    EXPECT_EQ(client.request(4, V4L2_MEMORY_DMABUF), EINVAL);
    v4l2_capability capability{};
    EXPECT_EQ(client.call(VIDIOC_QUERYCAP, capability), 0);
    EXPECT_EQ(capability.capabilities & V4L2_CAP_STREAMING, 0u);
    EXPECT_NE(capability.capabilities & V4L2_CAP_READWRITE, 0u);
}

TEST(BufferTest, GrantsWithinScriptedBounds)
{
    unsigned granted = 0;
    {
        auto const camera = smallCamera().grantingAtMost(2).install();
        EXPECT_EQ(Client().request(4, V4L2_MEMORY_MMAP, &granted), 0);
        EXPECT_EQ(granted, 2u);
    }
    {
        auto const camera = smallCamera().grantingAtLeast(6).install();
        EXPECT_EQ(Client().request(4, V4L2_MEMORY_MMAP, &granted), 0);
        EXPECT_EQ(granted, 6u);
    }
    auto const camera = smallCamera().grantingAtMost(0).install();
    EXPECT_EQ(Client().request(4, V4L2_MEMORY_MMAP, &granted), 0);
    EXPECT_EQ(granted, 0u);
    EXPECT_EQ(camera.accounting().allocatedBuffers, 0);
}

TEST(BufferTest, IsBusyWhileMappedAndWhileStreaming)
{
    auto const camera = smallCamera().install();
    Client client;
    ASSERT_EQ(client.start(2), 0);
    EXPECT_EQ(client.request(0), EBUSY);
    EXPECT_EQ(client.stream(false), 0);
    EXPECT_EQ(client.request(0), EBUSY);
    EXPECT_EQ(client.unmapAll(), 0);
    EXPECT_EQ(client.request(0), 0);
    EXPECT_EQ(camera.accounting().allocatedBuffers, 0);
}

TEST(BufferTest, BelongsToTheFileThatRequested)
{
    auto const camera = smallCamera().install();
    Client owner;
    Client other;
    ASSERT_EQ(owner.start(2), 0);
    EXPECT_EQ(other.request(2), EBUSY);
    EXPECT_EQ(other.queue(0), EBUSY);
    EXPECT_EQ(other.stream(true), EBUSY);
    v4l2_buffer buffer{};
    EXPECT_EQ(other.dequeue(buffer), EBUSY);
    EXPECT_EQ(other.stream(false), 0);
    EXPECT_TRUE(camera.accounting().streaming);
    EXPECT_EQ(owner.unmapAll(), 0);
    EXPECT_EQ(owner.close(), 0);
    EXPECT_EQ(other.request(2), 0);
}

TEST(BufferTest, StoppingWithoutAStreamSucceedsAndKeepsTheQueue)
{
    auto const camera = smallCamera().install();
    Client client;
    EXPECT_EQ(client.stream(false), 0);
    ASSERT_EQ(client.request(2), 0);
    ASSERT_EQ(client.queue(0), 0);
    EXPECT_EQ(client.stream(false), 0);
    EXPECT_EQ(camera.accounting().queuedBuffers, 1);
}

TEST(BufferTest, OnAGoneDeviceOnlyWhatIsAlreadySoSucceeds)
{
    auto camera = smallCamera().install();
    Client streaming;
    Client idle;
    ASSERT_EQ(streaming.start(2), 0);
    camera.unplug();
    EXPECT_EQ(streaming.stream(true), 0);
    EXPECT_EQ(streaming.stream(false), ENODEV);
    EXPECT_EQ(idle.stream(true), ENODEV);
    EXPECT_EQ(idle.stream(false), 0);
}

TEST(BufferTest, AProcessOpensSixteenAtMost)
{
    auto const camera = smallCamera().install();
    std::vector<std::unique_ptr<Client>> clients;
    for (int i = 0; i < 16; ++i) {
        clients.push_back(std::make_unique<Client>());
        EXPECT_EQ(clients.back()->openError(), 0) << i;
    }
    EXPECT_EQ(Client().openError(), EBUSY);
    clients.pop_back();
    EXPECT_EQ(Client().openError(), 0);
}

TEST(BufferTest, RefusesWrongIndicesAndBuffersQueuedTwice)
{
    auto const camera = smallCamera().install();
    Client client;
    EXPECT_EQ(client.queue(0), EINVAL);
    ASSERT_EQ(client.request(2), 0);
    EXPECT_EQ(client.queue(2), EINVAL);
    EXPECT_EQ(client.queue(1), 0);
    EXPECT_EQ(client.queue(1), EINVAL);
    v4l2_buffer buffer = Client::buffer(2);
    EXPECT_EQ(client.call(VIDIOC_QUERYBUF, buffer), EINVAL);
    buffer = Client::buffer(0, V4L2_MEMORY_USERPTR);
    EXPECT_EQ(client.call(VIDIOC_QBUF, buffer), EINVAL);
    buffer = Client::buffer(0);
    buffer.type = V4L2_BUF_TYPE_VIDEO_OUTPUT;
    EXPECT_EQ(client.call(VIDIOC_QBUF, buffer), EINVAL);
}

TEST(BufferTest, DescribesABufferInEachState)
{
    auto const camera = smallCamera().paced(Pace::OnDemand).install();
    Client client;
    ASSERT_EQ(client.request(1), 0);
    auto const flags = [&client] {
        v4l2_buffer buffer = Client::buffer(0);
        EXPECT_EQ(client.call(VIDIOC_QUERYBUF, buffer), 0);
        EXPECT_EQ(buffer.length, imageSize);
        return buffer.flags & (V4L2_BUF_FLAG_MAPPED | V4L2_BUF_FLAG_QUEUED | V4L2_BUF_FLAG_DONE);
    };
    EXPECT_EQ(flags(), 0u);
    ASSERT_EQ(client.map(0), 0);
    EXPECT_EQ(flags(), static_cast<unsigned>(V4L2_BUF_FLAG_MAPPED));
    ASSERT_EQ(client.queue(0), 0);
    EXPECT_EQ(flags(), static_cast<unsigned>(V4L2_BUF_FLAG_MAPPED | V4L2_BUF_FLAG_QUEUED));
    ASSERT_EQ(client.stream(true), 0);
    const_cast<InstalledCamera&>(camera).deliverFrames();
    EXPECT_EQ(flags(), static_cast<unsigned>(V4L2_BUF_FLAG_MAPPED | V4L2_BUF_FLAG_DONE));
    v4l2_buffer buffer{};
    ASSERT_EQ(client.dequeue(buffer), 0);
    EXPECT_EQ(flags(), static_cast<unsigned>(V4L2_BUF_FLAG_MAPPED));
}

TEST(BufferTest, StartsOnlyWithBuffers)
{
    auto const camera = smallCamera().install();
    Client client;
    EXPECT_EQ(client.stream(true), EINVAL);
    EXPECT_EQ(client.stream(false), 0);
    int type = V4L2_BUF_TYPE_VIDEO_OUTPUT;
    EXPECT_EQ(client.call(VIDIOC_STREAMON, type), EINVAL);
    ASSERT_EQ(client.request(2), 0);
    EXPECT_EQ(client.stream(true), 0);
    EXPECT_EQ(client.stream(true), 0);
}

TEST(BufferTest, DequeuesFilledBuffersInOrder)
{
    auto const camera = smallCamera().install();
    Client client;
    ASSERT_EQ(client.start(3), 0);
    v4l2_buffer buffer{};
    for (unsigned frame = 0; frame < 3; ++frame) {
        ASSERT_EQ(client.dequeue(buffer), 0);
        EXPECT_EQ(buffer.index, frame);
        EXPECT_EQ(buffer.sequence, frame);
        EXPECT_EQ(buffer.bytesused, imageSize);
        EXPECT_EQ(buffer.length, imageSize);
        EXPECT_EQ(buffer.field, static_cast<unsigned>(V4L2_FIELD_NONE));
        EXPECT_EQ(buffer.flags & V4L2_BUF_FLAG_TIMESTAMP_MASK,
                  static_cast<unsigned>(V4L2_BUF_FLAG_TIMESTAMP_MONOTONIC));
        EXPECT_EQ(buffer.flags & (V4L2_BUF_FLAG_DONE | V4L2_BUF_FLAG_ERROR), 0u);
    }
    EXPECT_EQ(client.dequeue(buffer), EAGAIN);
    EXPECT_EQ(client.queue(1), 0);
    EXPECT_EQ(client.dequeue(buffer), 0);
    EXPECT_EQ(buffer.index, 1u);
    EXPECT_EQ(buffer.sequence, 3u);
}

TEST(BufferTest, ShowsThePatternThroughTheMapping)
{
    auto const camera = smallCamera().install();
    Client client;
    ASSERT_EQ(client.start(2), 0);
    v4l2_buffer buffer{};
    ASSERT_EQ(client.dequeue(buffer), 0);
    ASSERT_EQ(client.dequeue(buffer), 0);
    std::vector<std::uint8_t> const expected = testPattern(V4L2_PIX_FMT_YUYV, 64, 48, 1);
    EXPECT_EQ(std::memcmp(client.mapped(1), expected.data(), expected.size()), 0);
}

TEST(BufferTest, DoesNotDequeueWhenNotStreaming)
{
    auto const camera = smallCamera().install();
    Client client;
    v4l2_buffer buffer{};
    EXPECT_EQ(client.dequeue(buffer), EINVAL);
    ASSERT_EQ(client.start(2), 0);
    ASSERT_EQ(client.stream(false), 0);
    EXPECT_EQ(client.dequeue(buffer), EINVAL);
    EXPECT_EQ(camera.accounting().queuedBuffers, 0);
    EXPECT_EQ(client.queue(0), 0);
}

/// The number of the next frame, whose buffer is given back.
unsigned numberOfNext(Client& client)
{
    v4l2_buffer buffer{};
    EXPECT_EQ(client.dequeue(buffer), 0);
    EXPECT_EQ(client.queue(buffer.index), 0);
    return buffer.sequence;
}

TEST(BufferTest, CountsFramesLostForLackOfABuffer)
{
    auto camera = smallCamera().paced(Pace::OnDemand).install();
    Client client;
    ASSERT_EQ(client.start(1), 0);
    camera.deliverFrames(4);
    EXPECT_EQ(numberOfNext(client), 0u);
    v4l2_buffer buffer{};
    EXPECT_EQ(client.dequeue(buffer), EAGAIN);
    camera.deliverFrames();
    EXPECT_EQ(numberOfNext(client), 4u);
    EXPECT_EQ(camera.accounting().droppedFrames, 3u);
}

TEST(BufferTest, RestartsTheSequenceWithStreaming)
{
    auto const camera = smallCamera().install();
    Client client;
    ASSERT_EQ(client.start(1), 0);
    EXPECT_EQ(numberOfNext(client), 0u);
    v4l2_buffer buffer{};
    ASSERT_EQ(client.dequeue(buffer), 0);
    EXPECT_EQ(buffer.sequence, 1u);
    ASSERT_EQ(client.stream(false), 0);
    ASSERT_EQ(client.queue(0), 0);
    ASSERT_EQ(client.stream(true), 0);
    ASSERT_EQ(client.dequeue(buffer), 0);
    EXPECT_EQ(buffer.sequence, 0u);
}

TEST(BufferTest, ChecksMappings)
{
    auto const camera = smallCamera().install();
    Client client;
    ASSERT_EQ(client.request(2), 0);
    auto const mapping = [&client](std::size_t length, int protection, int flags, int64_t offset) {
        void* const address =
            v4l2_mmap(nullptr, length, protection, flags, client.descriptor(), offset);
        if (address == MAP_FAILED) {
            return errno;
        }
        v4l2_munmap(address, length);
        return 0;
    };
    constexpr int both = PROT_READ | PROT_WRITE;
    EXPECT_EQ(mapping(imageSize, both, MAP_SHARED, 0), 0);
    EXPECT_EQ(mapping(100, PROT_READ, MAP_SHARED, 0), 0);
    EXPECT_EQ(mapping(imageSize, both, MAP_PRIVATE, 0), EINVAL);
    EXPECT_EQ(mapping(imageSize, PROT_WRITE, MAP_SHARED, 0), EINVAL);
    EXPECT_EQ(mapping(imageSize, both, MAP_SHARED, 4096), EINVAL);
    EXPECT_EQ(mapping(imageSize, both, MAP_SHARED, 1 << 20), EINVAL);
    EXPECT_EQ(mapping(imageSize * 2, both, MAP_SHARED, 0), EINVAL);
}

TEST(BufferTest, KeepsMappingsValidAfterClose)
{
    auto const camera = smallCamera().install();
    Client client;
    ASSERT_EQ(client.start(1), 0);
    v4l2_buffer buffer{};
    ASSERT_EQ(client.dequeue(buffer), 0);
    EXPECT_EQ(client.close(), 0);
    EXPECT_EQ(camera.accounting().allocatedBuffers, 0);
    EXPECT_FALSE(camera.accounting().streaming);
    EXPECT_EQ(camera.accounting().liveMappings, 1);
    std::vector<std::uint8_t> const expected = testPattern(V4L2_PIX_FMT_YUYV, 64, 48, 0);
    EXPECT_EQ(std::memcmp(client.mapped(0), expected.data(), expected.size()), 0);
    EXPECT_EQ(client.unmapAll(), 0);
    EXPECT_TRUE(camera.accounting().nothingHeld());
}

TEST(BufferTest, RefusesToUnmapAPart)
{
    auto const camera = smallCamera().install();
    Client client;
    ASSERT_EQ(client.request(1), 0);
    ASSERT_EQ(client.map(0), 0);
    EXPECT_EQ(v4l2_munmap(client.mapped(0), 10), -1);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_EQ(camera.accounting().liveMappings, 1);
}

TEST(BufferTest, StreamsIntoUserPointers)
{
    auto const camera = smallCamera().offeringUserPointers().install();
    Client client;
    std::vector<unsigned char> bytes(imageSize);
    std::vector<unsigned char> small(imageSize - 1);
    ASSERT_EQ(client.request(2, V4L2_MEMORY_USERPTR), 0);
    EXPECT_EQ(client.queue(0, small), EINVAL);
    EXPECT_EQ(client.queue(0), EINVAL) << "memory kinds must not be mixed";
    ASSERT_EQ(client.queue(1, bytes), 0);
    ASSERT_EQ(client.stream(true), 0);
    v4l2_buffer buffer{};
    buffer.memory = V4L2_MEMORY_USERPTR;
    ASSERT_EQ(client.dequeue(buffer), 0);
    EXPECT_EQ(buffer.index, 1u);
    EXPECT_EQ(buffer.m.userptr, reinterpret_cast<unsigned long>(bytes.data()));
    EXPECT_EQ(buffer.length, imageSize);
    EXPECT_EQ(bytes, testPattern(V4L2_PIX_FMT_YUYV, 64, 48, 0));
}

TEST(BufferTest, KeepsTheFormatWhileBuffersAreAllocated)
{
    auto const camera = smallCamera().install();
    Client client;
    v4l2_format format{};
    format.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    v4l2_streamparm parameters{};
    parameters.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    ASSERT_EQ(client.start(1), 0);
    EXPECT_EQ(client.call(VIDIOC_S_FMT, format), EBUSY);
    EXPECT_EQ(client.call(VIDIOC_S_PARM, parameters), EBUSY);
    EXPECT_EQ(client.call(VIDIOC_TRY_FMT, format), 0);
    ASSERT_EQ(client.stream(false), 0);
    EXPECT_EQ(client.call(VIDIOC_S_FMT, format), EBUSY);
    EXPECT_EQ(client.call(VIDIOC_S_PARM, parameters), 0);
}

TEST(BufferTest, BlocksInDequeueUntilAFrameComes)
{
    auto camera = smallCamera().paced(Pace::OnDemand).install();
    Client client("/dev/video0", O_RDWR);
    ASSERT_EQ(client.start(1), 0);
    std::thread sensor([&camera] {
        while (camera.countOf(VIDIOC_DQBUF) == 0) {
            std::this_thread::yield();
        }
        camera.deliverFrames();
    });
    v4l2_buffer buffer{};
    EXPECT_EQ(client.dequeue(buffer), 0);
    sensor.join();
}

TEST(BufferTest, EndsABlockedDequeueWhenStreamingStops)
{
    auto const camera = smallCamera().paced(Pace::OnDemand).install();
    Client client("/dev/video0", O_RDWR);
    ASSERT_EQ(client.start(1), 0);
    std::thread stopper([&camera, &client] {
        while (camera.countOf(VIDIOC_DQBUF) == 0) {
            std::this_thread::yield();
        }
        client.stream(false);
    });
    v4l2_buffer buffer{};
    EXPECT_EQ(client.dequeue(buffer), EINVAL);
    stopper.join();
}

} // namespace
