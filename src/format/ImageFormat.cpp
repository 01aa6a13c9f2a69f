// SPDX-License-Identifier: MIT
#include "format/ImageFormat.h"

#include "format/DeviceFormat.h"
#include "system/KernelText.h"

#include <algorithm>

namespace ImageAcquisition
{

namespace
{

// Room for so many at once; beyond that the list doubles.
constexpr std::size_t usualSizes = 8;

} // namespace

IImageFormat::~IImageFormat() = default;

IImageFormat const* IImageFormat::invalid()
{
    return &InvalidImageFormat::getUniqueInstance();
}

std::string fourCharacterCode(unsigned int pixelformat)
{
    std::string code;
    for (unsigned int shift = 0; shift < 32; shift += 8) {
        code += static_cast<char>((pixelformat >> shift) & 0xffu);
    }
    return code;
}

ImageFormat::ImageFormat(NodeReference node, v4l2_fmtdesc const& description,
                         CatalogueBudget& budget)
    : m_node(node), m_compressed((description.flags & V4L2_FMT_FLAG_COMPRESSED) != 0),
      m_emulated((description.flags & V4L2_FMT_FLAG_EMULATED) != 0),
      m_pixelFormat(description.pixelformat), m_name(fourCharacterCode(description.pixelformat)),
      m_description(kernelText(description.description))
{
    enumerateSizes(budget);
}

void ImageFormat::enumerateSizes(CatalogueBudget& budget)
{
    v4l2_frmsizeenum size{};
    size.pixel_format = m_pixelFormat;
    while (size.index < maximumEnumerated && m_node.xioctl(VIDIOC_ENUM_FRAMESIZES, &size) != -1) {
        // A range comes with the first answer, and is not expanded into a list.
        bool const isRange = size.index == 0 && size.type != V4L2_FRMSIZE_TYPE_DISCRETE;
        if (isRange || !budget.take()) {
            return;
        }
        if (m_sizes.empty()) {
            m_sizes.reserve(usualSizes);
        }
        m_sizes.emplace_back(m_node, m_pixelFormat, size.discrete.width, size.discrete.height,
                             budget);
        ++size.index;
    }
}

IFrameSize const* ImageFormat::frameSize(int index) const
{
    if (index < 0 || index >= sizeNumber()) {
        return IFrameSize::invalid();
    }
    return &m_sizes[static_cast<std::size_t>(index)];
}

int ImageFormat::frameSizeIndex(unsigned int width, unsigned int height) const
{
    auto const found = std::find_if(m_sizes.begin(), m_sizes.end(), [&](auto const& size) {
        return size.width() == width && size.height() == height;
    });
    return found == m_sizes.end() ? -1 : static_cast<int>(found - m_sizes.begin());
}

FrameSize const& ImageFormat::sizeAt(int index) const
{
    return m_sizes.at(static_cast<std::size_t>(index));
}

bool ImageFormat::setFormatToDevice(FrameSize const& size) const
{
    v4l2_format format{};
    format.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    format.fmt.pix.width = size.width();
    format.fmt.pix.height = size.height();
    format.fmt.pix.pixelformat = m_pixelFormat;
    return m_node.xioctl(VIDIOC_TRY_FMT, &format) != -1 &&
           m_node.xioctl(VIDIOC_S_FMT, &format) != -1;
}

bool ImageFormat::setToDevice(int sizeIndex, int intervalIndex) const
{
    if (sizeIndex >= sizeNumber()) {
        return false;
    }
    FrameSize const& size = sizeAt(sizeIndex);
    v4l2_streamparm parameters;
    if (!setFormatToDevice(size) || !queryDeviceParameters(m_node, parameters)) {
        return false;
    }
    if (size.periodNumber() <= 0) {
        return true;
    }
    IFramePeriod const* const period = size.period(intervalIndex);
    parameters.parm.capture.timeperframe.numerator = period->numerator();
    parameters.parm.capture.timeperframe.denominator = period->denominator();
    return m_node.xioctl(VIDIOC_S_PARM, &parameters) != -1;
}

bool ImageFormat::setToDevice(int width, int height, int numerator, int denominator) const
{
    int const sizeIndex =
        frameSizeIndex(static_cast<unsigned int>(width), static_cast<unsigned int>(height));
    if (sizeIndex == -1) {
        return false;
    }
    int const intervalIndex = sizeAt(sizeIndex).intervalIndex(
        {static_cast<unsigned int>(numerator), static_cast<unsigned int>(denominator)});
    return intervalIndex != -1 && setToDevice(sizeIndex, intervalIndex);
}

InvalidImageFormat const& InvalidImageFormat::getUniqueInstance()
{
    static InvalidImageFormat const instance;
    return instance;
}

IFrameSize const* InvalidImageFormat::frameSize(int /*index*/) const
{
    return IFrameSize::invalid();
}

} // namespace ImageAcquisition
