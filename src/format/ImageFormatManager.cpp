// SPDX-License-Identifier: MIT
#include "format/ImageFormatManager.h"

#include "format/DeviceFormat.h"
#include "system/EarlierErrno.h"

#include <cstring>

namespace ImageAcquisition
{

void ImageFormatManager::init(NodeReference node)
{
    m_node = node;
    CatalogueBudget budget;
    v4l2_fmtdesc description{};
    description.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    while (description.index < maximumEnumerated &&
           m_node.xioctl(VIDIOC_ENUM_FMT, &description) != -1 && budget.take()) {
        auto format = std::make_unique<ImageFormat>(m_node, description, budget);
        // Of formats with the same code the first keeps its place in the map.
        m_indexByPixelFormat.emplace(description.pixelformat, formatNumber());
        m_formats.push_back(std::move(format));
        ++description.index;
    }
}

ImageFormat* ImageFormatManager::formatPtr(int index) const
{
    return m_formats.at(static_cast<std::size_t>(index)).get();
}

ImageFormat* ImageFormatManager::formatPtr(char const* name) const
{
    if (name == nullptr) {
        return nullptr;
    }
    for (auto const& format : m_formats) {
        if (std::strcmp(format->name(), name) == 0) {
            return format.get();
        }
    }
    return nullptr;
}

IImageFormat const* ImageFormatManager::format(int index) const
{
    if (index < 0 || index >= formatNumber()) {
        return IImageFormat::invalid();
    }
    return formatPtr(index);
}

int ImageFormatManager::formatIndexByPixelFormat(unsigned int pixelformat) const
{
    auto const found = m_indexByPixelFormat.find(pixelformat);
    return found == m_indexByPixelFormat.end() ? -1 : found->second;
}

bool ImageFormatManager::setCurrentFormat(int formatIndex, int sizeIndex, int intervalIndex)
{
    return formatIndex < formatNumber() &&
           formatPtr(formatIndex)->setToDevice(sizeIndex, intervalIndex);
}

bool ImageFormatManager::setCurrentFormat(char const* name, int width, int height, int numerator,
                                          int denominator)
{
    ImageFormat const* const format = formatPtr(name);
    return format != nullptr && format->setToDevice(width, height, numerator, denominator);
}

unsigned int ImageFormatManager::currentSizeImage() const
{
    ErrnoKept const earlier;
    v4l2_format format;
    return queryDeviceFormat(m_node, format) ? format.fmt.pix.sizeimage : 0;
}

int ImageFormatManager::currentFormat() const
{
    v4l2_format format;
    return queryDeviceFormat(m_node, format) ? formatIndexByPixelFormat(format.fmt.pix.pixelformat)
                                             : -1;
}

ImageFormatManager::Selection ImageFormatManager::currentSelection() const
{
    v4l2_format format;
    if (!queryDeviceFormat(m_node, format)) {
        return {};
    }
    ImageFormat const* const current =
        formatPtr(formatIndexByPixelFormat(format.fmt.pix.pixelformat));
    return {current, current->frameSizeIndex(format.fmt.pix.width, format.fmt.pix.height)};
}

int ImageFormatManager::currentInterval(Selection const& selection) const
{
    v4l2_streamparm parameters;
    if (selection.size == -1 || !queryDeviceParameters(m_node, parameters)) {
        return -1;
    }
    return selection.format->sizeAt(selection.size)
        .intervalIndex(parameters.parm.capture.timeperframe);
}

IFrameSize const* ImageFormatManager::frameSizeOfDevice() const
{
    Selection const selection = currentSelection();
    return selection.format == nullptr ? IFrameSize::invalid()
                                       : selection.format->frameSize(selection.size);
}

IFramePeriod const* ImageFormatManager::framePeriodOfDevice() const
{
    Selection const selection = currentSelection();
    int const interval = currentInterval(selection);
    return interval == -1 ? IFramePeriod::invalid()
                          : selection.format->sizeAt(selection.size).period(interval);
}

} // namespace ImageAcquisition
