// SPDX-License-Identifier: MIT
#include "factory/HelperV4l2.h"

#include <libv4l2.h>

#include <cerrno>

namespace ImageAcquisition
{

int HelperV4l2::xioctl(int fd, int request, void* arg)
{
    // Read requests have the top bit set: widened as a signed number they would reach the driver
    // with 32 more bits set, and match nothing.
    auto const wideRequest = static_cast<unsigned long>(static_cast<unsigned int>(request));
    int result;
    do {
        result = v4l2_ioctl(fd, wideRequest, arg);
    } while (result == -1 && errno == EINTR);
    return result;
}

int HelperV4l2::close(int fd)
{
    for (;;) {
        int const result = v4l2_close(fd);
        if (result == 0 || (result == -1 && errno != EINTR)) {
            return result;
        }
    }
}

} // namespace ImageAcquisition
