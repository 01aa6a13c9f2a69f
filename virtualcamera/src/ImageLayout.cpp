// SPDX-License-Identifier: MIT
#include "ImageLayout.h"

#include <linux/videodev2.h>

namespace VirtualCamera
{

ImageLayout imageLayout(std::uint32_t pixelFormat, std::uint32_t width, std::uint32_t height)
{
    switch (pixelFormat) {
    case V4L2_PIX_FMT_RGB24:
    case V4L2_PIX_FMT_BGR24:
        return {width * 3, width * height * 3};
    case V4L2_PIX_FMT_GREY:
        return {width, width * height};
    case V4L2_PIX_FMT_NV12:
    case V4L2_PIX_FMT_YUV420:
    case V4L2_PIX_FMT_YVU420: {
        std::uint32_t const chroma = ((width + 1) / 2) * ((height + 1) / 2);
        return {width, width * height + 2 * chroma};
    }
    case V4L2_PIX_FMT_MJPEG:
    case V4L2_PIX_FMT_JPEG:
        return {0, width * height * 2};
    default:
        return {width * 2, width * height * 2};
    }
}

} // namespace VirtualCamera
