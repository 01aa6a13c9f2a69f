// SPDX-License-Identifier: MIT
#include "OwnNode.h"

#include <algorithm>
#include <cerrno>

namespace ImageAcquisition::Session
{

namespace
{

FrameRate rateOf(v4l2_fract const& interval)
{
    return {interval.denominator, std::max(interval.numerator, 1U)};
}

} // namespace

int OwnNode::openingError()
{
    return m_node.isOpen() || m_node.open(m_path.c_str()) ? 0 : errno;
}

bool OwnNode::ask(unsigned long request, void* argument)
{
    return openingError() == 0 && m_node.xioctl(request, argument) != -1;
}

std::optional<SizeOffer> OwnNode::sizeRange(std::string const& format)
{
    v4l2_frmsizeenum size{};
    size.pixel_format = pixelFormatOf(format);
    if (!ask(VIDIOC_ENUM_FRAMESIZES, &size) || size.type == V4L2_FRMSIZE_TYPE_DISCRETE) {
        return std::nullopt;
    }
    v4l2_frmsize_stepwise const& range = size.stepwise;
    return SizeOffer{{range.min_width, std::max(range.min_width, range.max_width),
                      std::max(range.step_width, 1U)},
                     {range.min_height, std::max(range.min_height, range.max_height),
                      std::max(range.step_height, 1U)},
                     {},
                     false};
}

void OwnNode::addRateRange(std::string const& format, SizeOffer& size)
{
    v4l2_frmivalenum interval{};
    interval.pixel_format = pixelFormatOf(format);
    interval.width = size.width.maximum;
    interval.height = size.height.maximum;
    while (interval.index < 256 && ask(VIDIOC_ENUM_FRAMEINTERVALS, &interval)) {
        if (interval.type != V4L2_FRMIVAL_TYPE_DISCRETE) {
            size.rates = {rateOf(interval.stepwise.max), rateOf(interval.stepwise.min)};
            size.anyRate = true;
            return;
        }
        size.rates.push_back(rateOf(interval.discrete));
        ++interval.index;
    }
}

std::optional<v4l2_pix_format> OwnNode::format()
{
    v4l2_format format{};
    format.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    return ask(VIDIOC_G_FMT, &format) ? std::optional(format.fmt.pix) : std::nullopt;
}

std::optional<FrameRate> OwnNode::rate()
{
    v4l2_streamparm parameters{};
    parameters.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    bool const told =
        ask(VIDIOC_G_PARM, &parameters) && parameters.parm.capture.timeperframe.numerator != 0;
    return told ? std::optional(rateOf(parameters.parm.capture.timeperframe)) : std::nullopt;
}

bool OwnNode::setFormat(std::string const& format, unsigned int width, unsigned int height)
{
    v4l2_format wanted{};
    wanted.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    wanted.fmt.pix.pixelformat = pixelFormatOf(format);
    wanted.fmt.pix.width = width;
    wanted.fmt.pix.height = height;
    wanted.fmt.pix.field = V4L2_FIELD_ANY;
    return ask(VIDIOC_S_FMT, &wanted);
}

bool OwnNode::setRate(FrameRate rate)
{
    v4l2_streamparm parameters{};
    parameters.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    parameters.parm.capture.timeperframe = {rate.seconds, rate.frames};
    return ask(VIDIOC_S_PARM, &parameters);
}

unsigned int pixelFormatOf(std::string const& name)
{
    std::string const code = (name + "    ").substr(0, 4);
    return v4l2_fourcc(static_cast<unsigned char>(code[0]), static_cast<unsigned char>(code[1]),
                       static_cast<unsigned char>(code[2]), static_cast<unsigned char>(code[3]));
}

std::string nameOf(unsigned int pixelFormat)
{
    std::string name;
    for (unsigned int const shift : {0U, 8U, 16U, 24U}) {
        name += static_cast<char>((pixelFormat >> shift) & 0x7f);
    }
    return name;
}

} // namespace ImageAcquisition::Session
