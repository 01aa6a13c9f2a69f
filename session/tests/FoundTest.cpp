// SPDX-License-Identifier: MIT
#include "session/Found.h"

#include "DeviceStub.h"

#include <gtest/gtest.h>

namespace
{

using ImageAcquisition::Session::Found;

TEST(FoundTest, IsMadeOfAClientsRecord)
{
    DeviceStub record;
    record.serialNumber = nullptr;
    record.firmware = "TJ8-1.2.3";
    Found const camera(record);
    EXPECT_EQ(camera.node(), "/dev/video0");
    EXPECT_EQ(camera.serial(), "");
    EXPECT_EQ(camera.port(), "");
    EXPECT_EQ(camera.text(), "/dev/video0");
    EXPECT_STREQ(camera.device().firmwareVersion(), "TJ8-1.2.3");
}

} // namespace
