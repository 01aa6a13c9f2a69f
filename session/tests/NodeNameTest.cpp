// SPDX-License-Identifier: MIT
#include "NodeName.h"

#include <gtest/gtest.h>

namespace
{

using namespace ImageAcquisition::Session;

TEST(NodeNameTest, IsTakenFromNodesOnly)
{
    EXPECT_EQ(nodeName("video0"), "video0");
    EXPECT_EQ(nodeName("/dev/video12"), "video12");
    EXPECT_EQ(nodeName("0"), "");
    EXPECT_EQ(nodeName("videography"), "");
    EXPECT_EQ(nodeName("SN1234"), "");
    EXPECT_EQ(nodeName("/dev/null"), "");
    EXPECT_EQ(nodeName("/tmp"), "");
    EXPECT_EQ(nodeName("video"), "");
}

} // namespace
