// SPDX-License-Identifier: MIT
#pragma once

namespace ImageAcquisition
{

/// Calls to a video node that survive being interrupted by a signal. Every call of the library to
/// a node goes through here and so through libv4l2, which converts formats in software.
class HelperV4l2
{
public:
    /// v4l2_ioctl(), repeated while it fails with EINTR. -1 and errno on failure.
    static int xioctl(int fd, int request, void* arg);

    /// The same for the request constants of the kernel's headers, which are unsigned long.
    static int xioctl(int fd, unsigned long request, void* arg)
    {
        return xioctl(fd, static_cast<int>(request), arg);
    }

    /// v4l2_close(), repeated until it returns 0 or fails with anything but EINTR.
    static int close(int fd);
};

} // namespace ImageAcquisition
