// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

/// Stands between the library and the virtual camera, for answers that no driver gives and for
/// measurements that must leave the driver's own work out. Programs that use it compile
/// V4l2Hook.cpp, whose functions take precedence over those of the virtual camera.
struct V4l2Hook
{
    using Ioctl = std::function<int(int fd, unsigned long request, void* argument)>;
    using Close = std::function<int(int fd)>;

    /// While it lives, every v4l2_ioctl() is answered by @p answer.
    explicit V4l2Hook(Ioctl answer);
    /// While it lives, every v4l2_close() is answered by @p answer.
    explicit V4l2Hook(Close answer);
    V4l2Hook(V4l2Hook const&) = delete;
    V4l2Hook& operator=(V4l2Hook const&) = delete;
    ~V4l2Hook();

    /// What the virtual camera answers.
    static int realIoctl(int fd, unsigned long request, void* argument);
    static int realClose(int fd);
};
