// SPDX-License-Identifier: MIT
#include "Client.h"

#include <gtest/gtest.h>

namespace
{

using namespace VirtualCamera;

constexpr std::size_t imageSize = 64 * 48 * 2;

ssize_t readBytes(Client const& client, std::vector<std::uint8_t>& bytes, std::size_t size)
{
    bytes.assign(size, 0xcc);
    ssize_t const count = v4l2_read(client.descriptor(), bytes.data(), size);
    bytes.resize(count < 0 ? 0 : static_cast<std::size_t>(count));
    return count;
}

TEST(ReadTest, ReadsFrameAfterFrame)
{
    auto const camera = smallCamera().install();
    Client client;
    std::vector<std::uint8_t> bytes;
    ASSERT_EQ(readBytes(client, bytes, imageSize), static_cast<ssize_t>(imageSize));
    EXPECT_EQ(bytes, testPattern(V4L2_PIX_FMT_YUYV, 64, 48, 0));
    ASSERT_EQ(readBytes(client, bytes, imageSize * 2), static_cast<ssize_t>(imageSize));
    EXPECT_EQ(bytes, testPattern(V4L2_PIX_FMT_YUYV, 64, 48, 1));
}

TEST(ReadTest, KeepsWhatDidNotFit)
{
    auto const camera = smallCamera().install();
    Client client;
    std::vector<std::uint8_t> const whole = testPattern(V4L2_PIX_FMT_YUYV, 64, 48, 0);
    std::vector<std::uint8_t> bytes;
    ASSERT_EQ(readBytes(client, bytes, 100), 100);
    ASSERT_EQ(readBytes(client, bytes, imageSize), static_cast<ssize_t>(imageSize) - 100);
    EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), whole.begin() + 100));
}

TEST(ReadTest, StartsWithTheFirstReadAndWaitsForAFrame)
{
    auto const camera = aCamera().withFormat("GREY").withSize(16, 16).withInterval(1, 1).install();
    Client client;
    std::vector<std::uint8_t> bytes;
    EXPECT_TRUE(client.readable(0));
    EXPECT_EQ(readBytes(client, bytes, 256), -1);
    EXPECT_EQ(errno, EAGAIN);
    EXPECT_FALSE(client.readable(0));
    EXPECT_TRUE(client.readable(5000));
    EXPECT_EQ(readBytes(client, bytes, 256), 256);
}

TEST(ReadTest, BlocksWithoutTheNonBlockingFlag)
{
    auto const camera = aCamera().withFormat("GREY").withSize(16, 16).withInterval(1, 50).install();
    Client client("/dev/video0", O_RDWR);
    std::vector<std::uint8_t> bytes;
    EXPECT_EQ(readBytes(client, bytes, 256), 256);
}

TEST(ReadTest, ExcludesStreaming)
{
    auto const camera = smallCamera().install();
    Client client;
    std::vector<std::uint8_t> bytes;
    ASSERT_EQ(client.request(2), 0);
    EXPECT_EQ(readBytes(client, bytes, 10), -1);
    EXPECT_EQ(errno, EBUSY);
    ASSERT_EQ(client.request(0), 0);
    EXPECT_EQ(readBytes(client, bytes, 10), 10);
    EXPECT_EQ(client.request(2), EBUSY);
    EXPECT_EQ(client.stream(true), EBUSY);
    Client other;
    EXPECT_EQ(readBytes(other, bytes, 10), -1);
    EXPECT_EQ(errno, EBUSY);
    client.close();
    EXPECT_FALSE(camera.accounting().streaming);
    EXPECT_EQ(readBytes(other, bytes, 10), 10);
}

TEST(ReadTest, IsRefusedWhenNotOffered)
{
    auto const camera = smallCamera().offeringRead(false).install();
    Client client;
    std::vector<std::uint8_t> bytes;
    EXPECT_EQ(readBytes(client, bytes, 10), -1);
    EXPECT_EQ(errno, EINVAL);
    v4l2_capability capability{};
    EXPECT_EQ(client.call(VIDIOC_QUERYCAP, capability), 0);
    EXPECT_EQ(capability.capabilities & V4L2_CAP_READWRITE, 0u);
}

TEST(ReadTest, ReturnsMoreThanWasAskedForWhenScriptedSo)
{
    auto const camera = smallCamera()
                            .withOverstatedFrame(0, static_cast<std::uint32_t>(imageSize) + 1)
                            .withOverstatedFrame(1, UINT32_MAX)
                            .install();
    Client client;
    std::vector<std::uint8_t> bytes(imageSize, 0xcc);
    auto const whole = static_cast<ssize_t>(imageSize);
    EXPECT_EQ(v4l2_read(client.descriptor(), bytes.data(), imageSize - 1), whole + 1);
    EXPECT_EQ(bytes.back(), 0xcc) << "it claims them, but does not write them";
    EXPECT_EQ(v4l2_read(client.descriptor(), bytes.data(), imageSize), 1) << "the frame's rest";
    EXPECT_EQ(v4l2_read(client.descriptor(), bytes.data(), imageSize), ssize_t{UINT32_MAX});
    EXPECT_EQ(bytes, testPattern(V4L2_PIX_FMT_YUYV, 64, 48, 1));
    EXPECT_EQ(v4l2_read(client.descriptor(), bytes.data(), imageSize), whole);
}

TEST(ReadTest, FailsAsScripted)
{
    auto const camera = smallCamera().failing(Call::Read, EIO, 2).withShortFrame(1, 7).install();
    Client client;
    std::vector<std::uint8_t> bytes;
    EXPECT_EQ(readBytes(client, bytes, imageSize), static_cast<ssize_t>(imageSize));
    EXPECT_EQ(readBytes(client, bytes, imageSize), -1);
    EXPECT_EQ(errno, EIO);
    EXPECT_EQ(readBytes(client, bytes, imageSize), 7);
}

} // namespace
