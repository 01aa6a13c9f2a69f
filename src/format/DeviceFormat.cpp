// SPDX-License-Identifier: MIT
#include "format/DeviceFormat.h"

namespace ImageAcquisition
{

bool queryDeviceFormat(NodeReference node, v4l2_format& format)
{
    format = {};
    format.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    return node.xioctl(VIDIOC_G_FMT, &format) != -1;
}

bool queryDeviceParameters(NodeReference node, v4l2_streamparm& parameters)
{
    parameters = {};
    parameters.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    return node.xioctl(VIDIOC_G_PARM, &parameters) != -1;
}

} // namespace ImageAcquisition
