// SPDX-License-Identifier: MIT
#include "Client.h"

#include <gtest/gtest.h>

namespace
{

using namespace VirtualCamera;

v4l2_buffer frameOf(CameraBuilder const& builder, unsigned place)
{
    auto const camera = builder.install();
    Client client;
    EXPECT_EQ(client.start(place + 1), 0);
    v4l2_buffer buffer{};
    for (unsigned frame = 0; frame <= place; ++frame) {
        EXPECT_EQ(client.dequeue(buffer), 0);
    }
    return buffer;
}

TEST(FaultTest, FailsOnTheNthUseOnly)
{
    auto const camera = smallCamera().failing(VIDIOC_DQBUF, EIO, 2).install();
    Client client;
    ASSERT_EQ(client.start(3), 0);
    v4l2_buffer buffer{};
    EXPECT_EQ(client.dequeue(buffer), 0);
    EXPECT_EQ(client.dequeue(buffer), EIO);
    EXPECT_EQ(client.dequeue(buffer), 0);
    EXPECT_EQ(buffer.sequence, 1u) << "a failed call loses no frame";
}

TEST(FaultTest, FailsFromTheNthUseOn)
{
    auto const camera = smallCamera().failingFrom(VIDIOC_QUERYCAP, EBUSY, 2).install();
    Client client;
    v4l2_capability capability{};
    EXPECT_EQ(client.call(VIDIOC_QUERYCAP, capability), 0);
    EXPECT_EQ(client.call(VIDIOC_QUERYCAP, capability), EBUSY);
    EXPECT_EQ(client.call(VIDIOC_QUERYCAP, capability), EBUSY);
}

TEST(FaultTest, FailsAnyIoctl)
{
    auto const camera = smallCamera().failing(Call::Ioctl, EPERM, 2).install();
    Client client;
    v4l2_capability capability{};
    EXPECT_EQ(client.call(VIDIOC_QUERYCAP, capability), 0);
    EXPECT_EQ(client.request(2), EPERM);
    EXPECT_EQ(client.request(2), 0);
}

TEST(FaultTest, FailsToOpen)
{
    auto const camera = smallCamera().failing(Call::Open, EACCES).install();
    EXPECT_EQ(Client().openError(), EACCES);
    EXPECT_EQ(Client().openError(), 0);
    EXPECT_EQ(camera.countOf(Call::Open), 2u);
    EXPECT_EQ(camera.accounting().totalOpens, 1u);
}

TEST(FaultTest, ClosesAllTheSameUnlessInterrupted)
{
    auto const camera =
        smallCamera().failing(Call::Close, EINTR).failing(Call::Close, EIO, 2).install();
    Client client;
    int const descriptor = client.descriptor();
    EXPECT_EQ(v4l2_close(descriptor), -1);
    EXPECT_EQ(errno, EINTR);
    EXPECT_EQ(camera.accounting().openDescriptors, 1);
    EXPECT_EQ(client.close(), EIO);
    EXPECT_EQ(camera.accounting().openDescriptors, 0);
}

TEST(FaultTest, FailsMappings)
{
    auto const camera =
        smallCamera().failing(Call::Mmap, ENOMEM, 2).failing(Call::Munmap, EINVAL).install();
    Client client;
    ASSERT_EQ(client.request(2), 0);
    EXPECT_EQ(client.map(0), 0);
    EXPECT_EQ(client.map(1), ENOMEM);
    EXPECT_EQ(camera.accounting().liveMappings, 1);
    EXPECT_EQ(client.unmapAll(), EINVAL);
    EXPECT_EQ(camera.accounting().liveMappings, 1);
    EXPECT_EQ(client.unmapAll(), 0);
}

TEST(FaultTest, CanBeAddedAndTakenAwayWhileTheCameraRuns)
{
    auto camera = smallCamera().install();
    Client client;
    v4l2_capability capability{};
    EXPECT_EQ(client.call(VIDIOC_QUERYCAP, capability), 0);
    camera.fail(VIDIOC_QUERYCAP, EIO);
    EXPECT_EQ(client.call(VIDIOC_QUERYCAP, capability), EIO);
    EXPECT_EQ(client.call(VIDIOC_QUERYCAP, capability), 0);
    camera.failFrom(VIDIOC_QUERYCAP, EIO);
    EXPECT_EQ(client.call(VIDIOC_QUERYCAP, capability), EIO);
    camera.stopFailing();
    EXPECT_EQ(client.call(VIDIOC_QUERYCAP, capability), 0);
}

TEST(FaultTest, MarksACorruptedFrame)
{
    CameraBuilder const builder = smallCamera().withCorruptedFrame(1);
    EXPECT_EQ(frameOf(builder, 0).flags & V4L2_BUF_FLAG_ERROR, 0u);
    EXPECT_NE(frameOf(builder, 1).flags & V4L2_BUF_FLAG_ERROR, 0u);
    EXPECT_EQ(frameOf(builder, 2).flags & V4L2_BUF_FLAG_ERROR, 0u);
}

TEST(FaultTest, CutsAShortFrame)
{
    EXPECT_EQ(frameOf(smallCamera().withShortFrame(0, 10), 0).bytesused, 10u);
}

TEST(FaultTest, ClaimsMoreBytesThanAMappedBufferHas)
{
    CameraBuilder const builder = smallCamera().withOverstatedFrame(1, 1000000);
    auto const camera = builder.install();
    Client client;
    ASSERT_EQ(client.start(3), 0);
    v4l2_buffer buffer{};
    ASSERT_EQ(client.dequeue(buffer), 0);
    EXPECT_EQ(buffer.bytesused, buffer.length);
    ASSERT_EQ(client.dequeue(buffer), 0);
    EXPECT_EQ(buffer.bytesused, 1000000u);
    EXPECT_EQ(buffer.length, 64u * 48 * 2);
    std::vector<std::uint8_t> const picture = testPattern(V4L2_PIX_FMT_YUYV, 64, 48, 1);
    EXPECT_EQ(std::memcmp(client.mapped(buffer.index), picture.data(), picture.size()), 0);
    ASSERT_EQ(client.dequeue(buffer), 0);
    EXPECT_EQ(buffer.bytesused, buffer.length) << "only the scripted frame lies";
}

TEST(FaultTest, ClaimsMoreBytesThanAUserPointerHas)
{
    auto const camera =
        smallCamera().offeringUserPointers().withOverstatedFrame(0, UINT32_MAX).install();
    Client client;
    std::vector<unsigned char> bytes(64 * 48 * 2 + 1, 0xcc);
    ASSERT_EQ(client.request(1, V4L2_MEMORY_USERPTR), 0);
    ASSERT_EQ(client.queue(0, bytes), 0);
    ASSERT_EQ(client.stream(true), 0);
    v4l2_buffer buffer = Client::buffer(0, V4L2_MEMORY_USERPTR);
    ASSERT_EQ(client.dequeue(buffer), 0);
    EXPECT_EQ(buffer.bytesused, UINT32_MAX);
    EXPECT_EQ(buffer.length, bytes.size());
    EXPECT_EQ(bytes.back(), 0xcc) << "it claims them, but does not write them";
}

TEST(FaultTest, SkipsAMissingFrame)
{
    EXPECT_EQ(frameOf(smallCamera().withMissingFrame(1), 1).sequence, 2u);
}

TEST(FaultTest, LiesAboutTheDequeuedBuffer)
{
    EXPECT_EQ(frameOf(smallCamera().withWrongIndex(0, 77), 0).index, 77u);
    EXPECT_EQ(frameOf(smallCamera().withWrongLength(0, 5), 0).length, 5u);
    EXPECT_EQ(frameOf(smallCamera().withWrongUserPointer(0, 0x1000), 0).m.userptr, 0x1000u);
}

TEST(FaultTest, DelaysALateFrame)
{
    auto const camera = aCamera()
                            .withFormat("GREY")
                            .withSize(16, 16)
                            .withInterval(1, 100)
                            .withLateFrame(0, 150)
                            .install();
    Client client;
    auto const start = std::chrono::steady_clock::now();
    ASSERT_EQ(client.start(2), 0);
    ASSERT_TRUE(client.readable(5000));
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(160));
    v4l2_buffer buffer{};
    EXPECT_EQ(client.dequeue(buffer), 0);
    EXPECT_EQ(buffer.sequence, 0u);
}

TEST(FaultTest, DeliversNothingWhenScriptedSo)
{
    auto const camera = smallCamera().withoutFrames(1).install();
    Client client;
    ASSERT_EQ(client.start(3), 0);
    v4l2_buffer buffer{};
    EXPECT_EQ(client.dequeue(buffer), 0);
    EXPECT_EQ(client.dequeue(buffer), EAGAIN);
    EXPECT_FALSE(client.readable(50));
}

TEST(FaultTest, VanishesAtAFrame)
{
    auto const camera = smallCamera().vanishingAtFrame(1).install();
    Client client;
    ASSERT_EQ(client.start(1), 0);
    v4l2_buffer buffer{};
    EXPECT_EQ(client.dequeue(buffer), ENODEV);
    EXPECT_EQ(Client().openError(), ENOENT);
    EXPECT_EQ(client.map(0), ENODEV);
    EXPECT_EQ(v4l2_read(client.descriptor(), &buffer, sizeof buffer), -1);
    EXPECT_EQ(errno, ENODEV);
    EXPECT_EQ(client.close(), 0);
}

TEST(FaultTest, NamesEachCallInItsLog)
{
    auto camera = smallCamera().failing(VIDIOC_STREAMON, EIO).install();
    Client client;
    EXPECT_EQ(client.start(1), EIO);
    std::vector<CallRecord> const starts = camera.calls(VIDIOC_STREAMON);
    ASSERT_EQ(starts.size(), 1u);
    EXPECT_EQ(starts[0].result, -1);
    EXPECT_EQ(starts[0].error, EIO);
    EXPECT_EQ(starts[0].argument<int>(), V4L2_BUF_TYPE_VIDEO_CAPTURE);
    EXPECT_EQ(camera.calls(VIDIOC_QBUF).front().argument<v4l2_buffer>().index, 0u);
    EXPECT_EQ(camera.calls(VIDIOC_REQBUFS).front().answer<v4l2_requestbuffers>().count, 1u);
    EXPECT_EQ(camera.calls(Call::Open).front().openFlags, O_RDWR | O_NONBLOCK);
    EXPECT_EQ(camera.countOf(Call::Ioctl), 4u);
    camera.clearLog();
    EXPECT_TRUE(camera.calls().empty());
    EXPECT_EQ(camera.countOf(Call::Ioctl), 0u);
    EXPECT_EQ(callName(VIDIOC_STREAMON), "VIDIOC_STREAMON");
    EXPECT_TRUE(callByName("mmap") == CallId(Call::Mmap));
    EXPECT_THROW(callByName("VIDIOC_NONE"), std::invalid_argument);
}

TEST(FaultTest, PassesOnWhatIsNotVirtual)
{
    EXPECT_EQ(Client("/dev/nothing-here").openError(), ENOENT);
    EXPECT_EQ(v4l2_open(nullptr, O_RDWR), -1);
    v4l2_capability capability{};
    EXPECT_EQ(v4l2_ioctl(-1, VIDIOC_QUERYCAP, &capability), -1);
    EXPECT_EQ(errno, EBADF);
    auto const camera = smallCamera().install();
    Client client;
    EXPECT_EQ(client.call(0x12345678, capability), ENOTTY);
    EXPECT_EQ(v4l2_ioctl(client.descriptor(), VIDIOC_QUERYCAP, nullptr), -1);
    EXPECT_EQ(errno, EFAULT);
    // A request kept in an int arrives with its sign extended.
    int const request = static_cast<int>(VIDIOC_QUERYCAP);
    EXPECT_EQ(v4l2_ioctl(client.descriptor(), static_cast<unsigned long>(request), &capability), 0);
}

TEST(FaultTest, ReplacesACameraOfTheSameNode)
{
    auto const earlier = smallCamera().named("Earlier").install();
    Client client;
    auto const later = smallCamera().named("Later").install();
    v4l2_capability capability{};
    EXPECT_EQ(client.call(VIDIOC_QUERYCAP, capability), ENODEV);
    EXPECT_EQ(Client().call(VIDIOC_QUERYCAP, capability), 0);
    EXPECT_STREQ(reinterpret_cast<char const*>(capability.card), "Later");
    reset();
    EXPECT_EQ(Client().openError(), ENOENT);
}

} // namespace
