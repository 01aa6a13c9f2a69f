// SPDX-License-Identifier: MIT
#include "BayerConverter.h"

#include <libv4l-plugin.h>
#include <libv4lconvert.h>
#include <linux/videodev2.h>

#include <cerrno>
#include <new>

namespace ImageAcquisition::Session
{

namespace
{

/// Stands for the camera that the library wants to know. A camera with RGB of its own needs no
/// controls that are made in software, which would change the pictures.
int answer(void*, int, unsigned long request, void* argument)
{
    if (request == VIDIOC_ENUM_FMT) {
        auto& format = *static_cast<v4l2_fmtdesc*>(argument);
        if (format.index == 0) {
            format.pixelformat = V4L2_PIX_FMT_RGB24;
            return 0;
        }
        errno = EINVAL;
        return -1;
    }
    errno = ENOTTY;
    return -1;
}

v4lconvert_data* create()
{
    static libv4l_dev_ops const camera = [] {
        libv4l_dev_ops operations{};
        operations.ioctl = answer;
        return operations;
    }();
    return v4lconvert_create_with_dev_ops(-1, nullptr, &camera);
}

v4l2_format formatOf(BayerConverter::Picture const& picture, unsigned int pixelFormat,
                     unsigned int bytesPerLine)
{
    v4l2_format format{};
    format.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    format.fmt.pix.width = picture.width;
    format.fmt.pix.height = picture.lines;
    format.fmt.pix.pixelformat = pixelFormat;
    format.fmt.pix.field = V4L2_FIELD_NONE;
    format.fmt.pix.bytesperline = bytesPerLine;
    format.fmt.pix.sizeimage = bytesPerLine * picture.lines;
    return format;
}

} // namespace

void BayerConverter::Deleter::operator()(v4lconvert_data* converter) const
{
    v4lconvert_destroy(converter);
}

BayerConverter::BayerConverter() : m_converter(create())
{
    if (!m_converter) {
        throw std::bad_alloc();
    }
}

bool BayerConverter::convert(Picture const& picture, unsigned char* rgb) const
{
    v4l2_format const from = formatOf(picture, picture.pixelFormat, picture.bytesPerLine);
    v4l2_format const to = formatOf(picture, V4L2_PIX_FMT_RGB24, 3 * picture.width);
    // What is converted is not written to: only pictures that are flipped or corrected are.
    return v4lconvert_convert(m_converter.get(), &from, &to,
                              const_cast<unsigned char*>(picture.data),
                              static_cast<int>(from.fmt.pix.sizeimage), rgb,
                              static_cast<int>(to.fmt.pix.sizeimage)) >= 0;
}

} // namespace ImageAcquisition::Session
