// SPDX-License-Identifier: MIT
#include "format/DeviceFormat.h"

#include "factory/HelperV4l2.h"

namespace ImageAcquisition
{

bool queryDeviceFormat(int fd, v4l2_format& format)
{
    format = {};
    format.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    return HelperV4l2::xioctl(fd, VIDIOC_G_FMT, &format) != -1;
}

bool queryDeviceParameters(int fd, v4l2_streamparm& parameters)
{
    parameters = {};
    parameters.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    return HelperV4l2::xioctl(fd, VIDIOC_G_PARM, &parameters) != -1;
}

} // namespace ImageAcquisition
