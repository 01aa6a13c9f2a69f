// SPDX-License-Identifier: MIT
#include "system/VideoNode.h"

#include "DescriptorCount.h"
#include "OpenNode.h"
#include "VirtualCamera.h"

#include <gtest/gtest.h>

#include <linux/videodev2.h>

#include <cerrno>

namespace
{

using ImageAcquisition::NodeReference;
using ImageAcquisition::VideoNode;
using VirtualCamera::aCamera;

bool answers(NodeReference node)
{
    v4l2_capability capability{};
    return node.xioctl(VIDIOC_QUERYCAP, &capability) == 0;
}

TEST(VideoNodeTest, IsOpenUntilItIsClosed)
{
    auto const camera = aCamera().install();
    VideoNode node;
    EXPECT_FALSE(node.isOpen());
    EXPECT_EQ(node.descriptor(), -1);
    ASSERT_TRUE(node.open("/dev/video0"));
    EXPECT_TRUE(answers(node));
    node.close();
    EXPECT_FALSE(node.isOpen());
    EXPECT_EQ(node.descriptor(), -1);
}

TEST(VideoNodeTest, TellsWhyItCouldNotBeOpened)
{
    auto const camera = aCamera().install();
    VideoNode node;
    errno = 0;
    EXPECT_FALSE(node.open("/dev/video63"));
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(node.descriptor(), -1);
}

TEST(VideoNodeTest, LeavesNoDescriptorBehind)
{
    auto const camera = aCamera().install();
    auto const before = descriptorTargets();
    {
        VideoNode node;
        ASSERT_TRUE(node.open("/dev/video0"));
        // The first descriptor must not be lost over the second.
        ASSERT_TRUE(node.open("/dev/video0"));
        EXPECT_GT(descriptorTargets().size(), before.size());
    }
    EXPECT_EQ(descriptorTargets(), before);
}

TEST(VideoNodeTest, IsSeenOpenAndClosedByItsReferences)
{
    auto const camera = aCamera().install();
    VideoNode node;
    NodeReference const reference = node;
    EXPECT_EQ(reference.descriptor(), -1);
    EXPECT_FALSE(answers(reference));
    ASSERT_TRUE(node.open("/dev/video0"));
    EXPECT_EQ(reference.descriptor(), node.descriptor());
    EXPECT_TRUE(answers(reference));
    node.close();
    EXPECT_FALSE(answers(reference));
}

TEST(VideoNodeTest, ReferenceLeavesADescriptorToItsOwner)
{
    auto const camera = aCamera().install();
    OpenNode const node;
    {
        NodeReference const reference = node.fd();
        EXPECT_TRUE(answers(reference));
    }
    EXPECT_TRUE(answers(node.fd()));
}

} // namespace
