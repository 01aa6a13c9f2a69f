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

TEST(CameraEvent, StartsEmpty)
{
    CameraEvent const event;
    EXPECT_EQ(0, event.type());
    EXPECT_STREQ("", event.deviceSystemName());
    EXPECT_STREQ("", event.subSystemName());
    EXPECT_STREQ("", event.deviceType());
}

TEST(CameraEvent, NumbersTheActionsOfUdev)
{
    EXPECT_EQ(1, typeOf("add"));
    EXPECT_EQ(2, typeOf("remove"));
    EXPECT_EQ(3, typeOf("change"));
    EXPECT_EQ(4, typeOf("move"));
}

TEST(CameraEvent, GivesZeroToOtherActions)
{
    for (char const* const action :
         {"Add", "ADD", "REMOVE", "", "ad", "adds", " add", "bind", "unbind", "online"}) {
        EXPECT_EQ(0, typeOf(action)) << action;
    }
    EXPECT_EQ(0, typeOf(nullptr));
}

TEST(CameraEvent, ForgetsTheEarlierTypeForAnUnknownAction)
{
    CameraEvent event;
    event.setType("remove");
    event.setType("bind");
    EXPECT_EQ(0, event.type());
    event.setType("remove");
    event.setType(nullptr);
    EXPECT_EQ(0, event.type());
}

TEST(CameraEvent, KeepsTextsThatAreNotReported)
{
    CameraEvent event;
    event.setDeviceSystemName("/dev/video3");
    event.setSubSystemName("video4linux");
    event.setDeviceType("type");
    event.setDeviceSystemName(nullptr);
    event.setSubSystemName(nullptr);
    event.setDeviceType(nullptr);
    EXPECT_STREQ("/dev/video3", event.deviceSystemName());
    EXPECT_STREQ("video4linux", event.subSystemName());
    EXPECT_STREQ("type", event.deviceType());
}

} // namespace
