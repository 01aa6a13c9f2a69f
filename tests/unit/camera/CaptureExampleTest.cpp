// SPDX-License-Identifier: MIT
// The example that captures, on a driver that lies.
#define main captureByInterfaces
#include "../../../examples/capture-by-interfaces.cpp"
#undef main

#include "Machine.h"
#include "ScratchFolder.h"
#include "SmallCamera.h"
#include "V4l2Hook.h"

#include <gtest/gtest.h>

#include <linux/videodev2.h>

#include <filesystem>

namespace
{

TEST(CaptureExampleTest, WritesNoMoreThanTheBufferOfAFrameThatClaimsMore)
{
    ASSERT_TRUE(VirtualCamera::Testbed::visible());
    Machine machine;
    machine.add(0, machine.plug(VirtualCamera::aUsbDevice()), smallCamera());
    V4l2Hook const hook([](int fd, unsigned long request, void* argument) {
        int const result = V4l2Hook::realIoctl(fd, request, argument);
        if (request == VIDIOC_DQBUF && result == 0) {
            static_cast<v4l2_buffer*>(argument)->bytesused = smallImageSize + 100;
        }
        return result;
    });
    ScratchFolder const folder;
    std::string const file = folder.path("frame.raw");
    std::string program = "capture-by-interfaces";
    std::string path = file;
    char* arguments[] = {program.data(), path.data(), nullptr};
    testing::internal::CaptureStdout();
    EXPECT_EQ(captureByInterfaces(2, arguments), 0);
    EXPECT_NE(testing::internal::GetCapturedStdout().find("frame 9:"), std::string::npos);
    EXPECT_EQ(std::filesystem::file_size(file), smallImageSize);
}

} // namespace
