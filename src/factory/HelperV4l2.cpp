// SPDX-License-Identifier: MIT
#include "factory/HelperV4l2.h"

namespace ImageAcquisition
{

int HelperV4l2::repeat(int fd, unsigned long request, void* arg)
{
    int result;
    do {
        result = v4l2_ioctl(fd, request, arg);
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
