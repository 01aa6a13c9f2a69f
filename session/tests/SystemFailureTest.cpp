// SPDX-License-Identifier: MIT
#include "SystemFailure.h"

#include "DeviceStub.h"
#include "HoldingProcess.h"
#include "Machine.h"
#include "ScratchFolder.h"
#include "session/Found.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace
{

using namespace ImageAcquisition::Session;
using testing::HasSubstr;
using testing::IsEmpty;

Found cameraAt(std::string const& node)
{
    DeviceStub record;
    record.node = node.c_str();
    return Found(record);
}

TEST(SystemFailureTest, NamesTheProcessesThatHoldTheNode)
{
    ScratchFolder const folder;
    std::string const node = folder.write("video0", "");
    HoldingProcess const one(node);
    HoldingProcess const another(node);
    Error const error = systemFailure("select", cameraAt(node), EBUSY);
    EXPECT_EQ(error.kind(), ErrorKind::Busy);
    EXPECT_EQ(error.systemError(), EBUSY);
    EXPECT_THAT(error.hint(), HasSubstr("held by "));
    EXPECT_THAT(error.hint(), HasSubstr(std::to_string(one.id()) + " (" + one.name() + ")"));
    EXPECT_THAT(error.hint(), HasSubstr(std::to_string(another.id()) + " ("));
}

TEST(SystemFailureTest, NamesNobodyWhenNobodyHoldsTheNode)
{
    ScratchFolder const folder;
    EXPECT_THAT(holdersOf(folder.write("video0", "")), IsEmpty());
    EXPECT_THAT(holdersOf("/nowhere/video0"), IsEmpty());
}

TEST(SystemFailureTest, NamesThisProgramToo)
{
    ScratchFolder const folder;
    std::string const node = folder.write("video0", "");
    FILE* const held = fopen(node.c_str(), "r");
    EXPECT_EQ(holdersOf(node), "held by " + std::to_string(getpid()) + " (this program)");
    fclose(held);
}

TEST(SystemFailureTest, NamesTheGroupThatMayOpenTheNode)
{
    ScratchFolder const folder;
    std::string const node = folder.write("video0", "");
    ASSERT_EQ(chmod(node.c_str(), 0660), 0);
    Error const error = systemFailure("open the camera", cameraAt(node), EACCES);
    EXPECT_EQ(error.kind(), ErrorKind::NoPermission);
    EXPECT_THAT(error.hint(), testing::MatchesRegex(node + " belongs to group .+, and you are in "
                                                           "it"));
    ASSERT_EQ(chmod(node.c_str(), 0600), 0);
    EXPECT_THAT(accessHint(node), HasSubstr(", which may not use it, and you are in it"));
}

TEST(SystemFailureTest, TellsThatOneIsNotInTheGroup)
{
    // Not even the administrator is in this one.
    EXPECT_THAT(accessHint("/etc/shadow"),
                testing::MatchesRegex("/etc/shadow belongs to group shadow, which may not use it, "
                                      "and you are not in it"));
}

TEST(SystemFailureTest, TellsTheBandwidthThatTheBusLacks)
{
    Machine machine;
    auto const usb = machine.plug(VirtualCamera::aUsbDevice("1-1").withSpeed("12"));
    machine.plug(VirtualCamera::aUsbDevice("1-2").withProduct("Other Cam"));
    machine.plug(VirtualCamera::aUsbDevice("2-1").withProduct("On another bus"));
    machine.add(0, usb);
    Error const error = streamingFailure("stream", findCamera("video0"), ENOSPC, "YUYV 640x480@30");
    EXPECT_EQ(error.kind(), ErrorKind::NoBandwidth);
    EXPECT_EQ(error.systemError(), ENOSPC);
    EXPECT_EQ(error.reason(), "the bus has no room for YUYV 640x480@30; the link is full speed, 12 "
                              "Mbit/s");
    EXPECT_EQ(error.hint(), "also on the bus: 1-2 'Other Cam'");
}

TEST(SystemFailureTest, TellsThatTheCameraIsGoneInPlaceOfWhatWasRefused)
{
    Found const camera = cameraAt("/nowhere/video0");
    EXPECT_STREQ(systemFailure("x", camera, ENODEV, "it refused").what(),
                 "x: /nowhere/video0: the camera is gone: No such device");
    EXPECT_STREQ(streamingFailure("x", camera, EIO, "", "it refused").what(),
                 "x: /nowhere/video0: it refused: Input/output error");
}

TEST(SystemFailureTest, TellsTheKindThatAnErrorStandsFor)
{
    Found const camera = cameraAt("/nowhere/video0");
    EXPECT_EQ(systemFailure("x", camera, ENODEV).kind(), ErrorKind::Unplugged);
    EXPECT_EQ(systemFailure("x", camera, ENOENT).kind(), ErrorKind::Unplugged);
    EXPECT_EQ(systemFailure("x", camera, ENOTTY).kind(), ErrorKind::Unsupported);
    EXPECT_EQ(systemFailure("x", camera, EPERM).kind(), ErrorKind::NoPermission);
    EXPECT_EQ(systemFailure("x", camera, ETIMEDOUT).kind(), ErrorKind::TimedOut);
    EXPECT_EQ(systemFailure("x", camera, EIO).kind(), ErrorKind::Refused);
    EXPECT_EQ(systemFailure("x", camera, 0).kind(), ErrorKind::Refused);
    EXPECT_EQ(streamingFailure("x", camera, EBUSY, "").kind(), ErrorKind::Busy);
}

} // namespace
