// SPDX-License-Identifier: MIT
#include "ControlClass.h"

#include <linux/videodev2.h>

namespace VirtualCamera
{

char const* controlClassName(std::uint32_t controlId)
{
    switch (controlClassOf(controlId)) {
    case V4L2_CTRL_CLASS_USER:
        return "User Controls";
    case V4L2_CTRL_CLASS_CAMERA:
        return "Camera Controls";
    case V4L2_CTRL_CLASS_FLASH:
        return "Flash Controls";
    case V4L2_CTRL_CLASS_JPEG:
        return "JPEG Compression Controls";
    case V4L2_CTRL_CLASS_IMAGE_SOURCE:
        return "Image Source Controls";
    case V4L2_CTRL_CLASS_IMAGE_PROC:
        return "Image Processing Controls";
    case V4L2_CTRL_CLASS_DETECT:
        return "Detection Controls";
    default:
        return "Controls";
    }
}

} // namespace VirtualCamera
