// SPDX-License-Identifier: MIT
#pragma once

#include <libv4l2.h>

#include <cerrno>

namespace ImageAcquisition
{

/// Calls to a video node that survive being interrupted by a signal. Every call of the library to
/// a node goes through here and so through libv4l2, which converts formats in software.
class HelperV4l2
{
public:
    /// v4l2_ioctl(), repeated while it fails with EINTR. -1 and errno on failure.
    static int xioctl(int fd, int request, void* arg)
    {
        // Read requests have the top bit set: widened as a signed number they would reach the
        // driver with 32 more bits set, and match nothing.
        return xioctl(fd, static_cast<unsigned long>(static_cast<unsigned int>(request)), arg);
    }

    /// The same for the request constants of the kernel's headers, which are unsigned long.
    static int xioctl(int fd, unsigned long request, void* arg)
    {
        int const result = v4l2_ioctl(fd, request, arg);
        return result == -1 && errno == EINTR ? repeat(fd, request, arg) : result;
    }

    /// v4l2_close(), repeated until it returns 0 or fails with anything but EINTR.
    static int close(int fd);

private:
    // Apart, so that what every frame passes through twice stays short.
    static int repeat(int fd, unsigned long request, void* arg);
};

} // namespace ImageAcquisition
