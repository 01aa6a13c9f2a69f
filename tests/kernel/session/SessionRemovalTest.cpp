// SPDX-License-Identifier: MIT
// vivid's ends, which the emulated camera has not: its driver lets go, and fails when it is told
// to.
#include "SessionCamera.h"
#include "Shell.h"
#include "ThreadState.h"
#include "VividBinding.h"

#include <filesystem>
#include <iostream>

using namespace KernelTest;

namespace
{

TEST(SessionRemovalTest, IsToldAsAnUnpluggingWithinATenthOfASecond)
{
    std::string const node = vividNode();
    std::optional<ia::Camera> camera = openVivid(node);
    camera->select("YUYV 320x180@25");
    std::optional<ia::Stream> stream = camera->stream();
    ASSERT_TRUE(stream->next(20s));
    double told = 0;
    WatchedThread reader([&] {
        while (stream->next(20s)) {
        }
        told = monotonicSeconds();
    });
    WatchedThread unbinding([] { bindVivid("unbind"); });
    EXPECT_TRUE(await([&] { return !std::filesystem::exists(node); }));
    double const gone = monotonicSeconds();
    reader.join();
    unbinding.join();
    EXPECT_LT(told - gone, 0.1);
    EXPECT_EQ(stream->state(), ia::StreamState::Unplugged);
    EXPECT_EQ(stream->statistics().timeOuts, 0U);
    stream.reset();
    camera.reset();
    bindVivid("bind");
    EXPECT_TRUE(waitFor([&] { return vividNode() == node; }));
    EXPECT_EQ(runShell("udevadm settle").status, 0);
    EXPECT_TRUE(openVivid(node).stream().next(20s));
}

TEST(SessionRemovalTest, IsNotWhatADriversErrorIsToldAs)
{
    ia::Camera camera = openVivid(vividNode());
    camera.select("YUYV 320x180@25");
    ia::Stream stream = camera.stream();
    ASSERT_TRUE(stream.next(20s));
    camera["inject_fatal_streaming_error"].press();
    while (stream.next(20s)) {
    }
    EXPECT_EQ(stream.state(), ia::StreamState::Failed);
    ASSERT_TRUE(stream.error());
    EXPECT_EQ(stream.error()->kind(), ia::ErrorKind::Refused);
    EXPECT_NE(stream.error()->systemError(), 0);
    std::cout << stream.error()->what() << "\n";
    stream = camera.stream();
    EXPECT_TRUE(stream.next(20s));
}

} // namespace
