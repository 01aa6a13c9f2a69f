// SPDX-License-Identifier: MIT
#include "monitor/CameraEvent.h"

#include <gtest/gtest.h>

namespace
{

using ImageAcquisition::CameraEvent;

int typeOf(char const* action)
{
    CameraEvent event;
    event.setType(action);
    return event.type();
}

TEST(CameraEventTest, StartsEmpty)
{
    CameraEvent const event;
    EXPECT_EQ(event.type(), 0);
    EXPECT_STREQ(event.deviceSystemName(), "");
    EXPECT_STREQ(event.subSystemName(), "");
    EXPECT_STREQ(event.deviceType(), "");
}

TEST(CameraEventTest, NumbersTheActionsOfUdev)
{
    EXPECT_EQ(typeOf("add"), 1);
    EXPECT_EQ(typeOf("remove"), 2);
    EXPECT_EQ(typeOf("change"), 3);
    EXPECT_EQ(typeOf("move"), 4);
}

TEST(CameraEventTest, GivesZeroToOtherActions)
{
    for (char const* const action :
         {"Add", "ADD", "REMOVE", "", "ad", "adds", " add", "bind", "unbind", "online"}) {
        EXPECT_EQ(typeOf(action), 0) << action;
    }
    EXPECT_EQ(typeOf(nullptr), 0);
}

TEST(CameraEventTest, ForgetsTheEarlierTypeForAnUnknownAction)
{
    CameraEvent event;
    event.setType("remove");
    event.setType("bind");
    EXPECT_EQ(event.type(), 0);
    event.setType("remove");
    event.setType(nullptr);
    EXPECT_EQ(event.type(), 0);
}

TEST(CameraEventTest, KeepsTextsThatAreNotReported)
{
    CameraEvent event;
    event.setDeviceSystemName("/dev/video3");
    event.setSubSystemName("video4linux");
    event.setDeviceType("type");
    event.setDeviceSystemName(nullptr);
    event.setSubSystemName(nullptr);
    event.setDeviceType(nullptr);
    EXPECT_STREQ(event.deviceSystemName(), "/dev/video3");
    EXPECT_STREQ(event.subSystemName(), "video4linux");
    EXPECT_STREQ(event.deviceType(), "type");
}

} // namespace
