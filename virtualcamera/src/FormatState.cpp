// SPDX-License-Identifier: MIT
#include "FormatState.h"

#include "FixedText.h"
#include "ImageLayout.h"
#include "Nearest.h"

#include <cerrno>

namespace VirtualCamera
{

FormatState::FormatState(CameraScript const& script) : m_script(script)
{
    std::uint32_t pixelFormat = script.currentPixelFormat;
    if (pixelFormat == 0 && !script.formats.empty()) {
        pixelFormat = script.formats.front().pixelFormat;
    }
    std::uint32_t width = script.currentWidth;
    std::uint32_t height = script.currentHeight;
    FormatScript const* chosen = find(pixelFormat);
    if (width == 0 && chosen != nullptr) {
        bool const listed = chosen->sizeKind == RangeKind::Discrete;
        if (!listed) {
            width = chosen->sizeRange.minimumWidth;
            height = chosen->sizeRange.minimumHeight;
        } else if (!chosen->sizes.empty()) {
            width = chosen->sizes.front().width;
            height = chosen->sizes.front().height;
        }
    }
    // A format without sizes still has to deliver pictures of some size.
    force(pixelFormat, width == 0 ? 640 : width, height == 0 ? 480 : height);
    m_interval = script.currentInterval ? *script.currentInterval : firstInterval();
}

FormatScript const* FormatState::find(std::uint32_t pixelFormat) const
{
    for (FormatScript const& format : m_script.formats) {
        if (format.pixelFormat == pixelFormat) {
            return &format;
        }
    }
    return nullptr;
}

IntervalScript const* FormatState::intervalsOf(FormatScript const& format, std::uint32_t width,
                                               std::uint32_t height) const
{
    if (format.sizeKind != RangeKind::Discrete) {
        SizeRangeScript const& range = format.sizeRange;
        bool const within = width >= range.minimumWidth && width <= range.maximumWidth &&
                            height >= range.minimumHeight && height <= range.maximumHeight;
        return within ? &range.intervals : nullptr;
    }
    for (SizeScript const& size : format.sizes) {
        if (size.width == width && size.height == height) {
            return &size.intervals;
        }
    }
    return nullptr;
}

Interval FormatState::firstInterval() const
{
    FormatScript const* format = present();
    if (format == nullptr) {
        return {};
    }
    IntervalScript const* offered = intervalsOf(*format, m_pixels.width, m_pixels.height);
    if (offered == nullptr) {
        return {};
    }
    if (offered->kind != RangeKind::Discrete) {
        return offered->minimum;
    }
    return offered->list.empty() ? Interval{} : offered->list.front();
}

v4l2_pix_format FormatState::layout(std::uint32_t pixelFormat, std::uint32_t width,
                                    std::uint32_t height) const
{
    ImageLayout usual = imageLayout(pixelFormat, width, height);
    if (FormatScript const* format = find(pixelFormat)) {
        if (format->bytesPerLine != 0) {
            usual.bytesPerLine = format->bytesPerLine;
        }
        if (format->sizeImage != 0) {
            usual.sizeImage = format->sizeImage;
        }
    }
    v4l2_pix_format pixels{};
    pixels.pixelformat = pixelFormat;
    pixels.width = width;
    pixels.height = height;
    pixels.field = V4L2_FIELD_NONE;
    pixels.bytesperline = usual.bytesPerLine;
    pixels.sizeimage = usual.sizeImage;
    pixels.colorspace = V4L2_COLORSPACE_SRGB;
    return pixels;
}

void FormatState::force(std::uint32_t pixelFormat, std::uint32_t width, std::uint32_t height)
{
    m_pixels = layout(pixelFormat, width, height);
}

int FormatState::enumerateFormats(v4l2_fmtdesc& description) const
{
    if (description.type != V4L2_BUF_TYPE_VIDEO_CAPTURE ||
        description.index >= m_script.formats.size()) {
        return -EINVAL;
    }
    FormatScript const& format = m_script.formats[description.index];
    std::uint32_t const index = description.index;
    description = {};
    description.index = index;
    description.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    description.flags = format.flags;
    description.pixelformat = format.pixelFormat;
    copyFixedText(description.description, format.description);
    return 0;
}

int FormatState::enumerateSizes(v4l2_frmsizeenum& size) const
{
    FormatScript const* format = find(size.pixel_format);
    if (format == nullptr) {
        return -EINVAL;
    }
    if (format->sizeKind != RangeKind::Discrete) {
        if (size.index != 0) {
            return -EINVAL;
        }
        SizeRangeScript const& range = format->sizeRange;
        bool const stepwise = format->sizeKind == RangeKind::Stepwise;
        size.type = stepwise ? V4L2_FRMSIZE_TYPE_STEPWISE : V4L2_FRMSIZE_TYPE_CONTINUOUS;
        size.stepwise = {range.minimumWidth,  range.maximumWidth,  range.stepWidth,
                         range.minimumHeight, range.maximumHeight, range.stepHeight};
        return 0;
    }
    if (size.index >= format->sizes.size()) {
        return -EINVAL;
    }
    size.type = V4L2_FRMSIZE_TYPE_DISCRETE;
    size.discrete = {format->sizes[size.index].width, format->sizes[size.index].height};
    return 0;
}

int FormatState::enumerateIntervals(v4l2_frmivalenum& interval) const
{
    FormatScript const* format = find(interval.pixel_format);
    if (format == nullptr) {
        return -EINVAL;
    }
    IntervalScript const* offered = intervalsOf(*format, interval.width, interval.height);
    if (offered == nullptr) {
        return -EINVAL;
    }
    auto const fraction = [](Interval const& from) {
        return v4l2_fract{from.numerator, from.denominator};
    };
    if (offered->kind != RangeKind::Discrete) {
        if (interval.index != 0) {
            return -EINVAL;
        }
        bool const stepwise = offered->kind == RangeKind::Stepwise;
        interval.type = stepwise ? V4L2_FRMIVAL_TYPE_STEPWISE : V4L2_FRMIVAL_TYPE_CONTINUOUS;
        interval.stepwise = {fraction(offered->minimum), fraction(offered->maximum),
                             fraction(offered->step)};
        return 0;
    }
    if (interval.index >= offered->list.size()) {
        return -EINVAL;
    }
    interval.type = V4L2_FRMIVAL_TYPE_DISCRETE;
    interval.discrete = fraction(offered->list[interval.index]);
    return 0;
}

int FormatState::currentFormat(v4l2_format& format) const
{
    if (format.type != V4L2_BUF_TYPE_VIDEO_CAPTURE) {
        return -EINVAL;
    }
    format.fmt.pix = m_pixels;
    return 0;
}

int FormatState::tryFormat(v4l2_format& format) const
{
    if (format.type != V4L2_BUF_TYPE_VIDEO_CAPTURE || m_script.formats.empty()) {
        return -EINVAL;
    }
    FormatScript const* chosen = find(format.fmt.pix.pixelformat);
    if (chosen == nullptr) {
        chosen = present();
    }
    if (chosen == nullptr) {
        chosen = &m_script.formats.front();
    }
    FrameExtent const size = nearestSize(*chosen, format.fmt.pix.width, format.fmt.pix.height);
    format.fmt.pix = layout(chosen->pixelFormat, size.width, size.height);
    return 0;
}

int FormatState::setFormat(v4l2_format& format)
{
    int const result = tryFormat(format);
    if (result != 0) {
        return result;
    }
    m_pixels = format.fmt.pix;
    // A UVC camera falls back to the new size's own default interval.
    m_interval = firstInterval();
    return 0;
}

int FormatState::currentParameters(v4l2_streamparm& parameters) const
{
    if (parameters.type != V4L2_BUF_TYPE_VIDEO_CAPTURE) {
        return -EINVAL;
    }
    parameters.parm.capture = {};
    parameters.parm.capture.capability = V4L2_CAP_TIMEPERFRAME;
    parameters.parm.capture.timeperframe = {m_interval.numerator, m_interval.denominator};
    return 0;
}

int FormatState::setParameters(v4l2_streamparm& parameters)
{
    if (parameters.type != V4L2_BUF_TYPE_VIDEO_CAPTURE) {
        return -EINVAL;
    }
    v4l2_fract const& wanted = parameters.parm.capture.timeperframe;
    FormatScript const* format = present();
    IntervalScript const* offered =
        format == nullptr ? nullptr : intervalsOf(*format, m_pixels.width, m_pixels.height);
    if (wanted.numerator == 0 || wanted.denominator == 0) {
        m_interval = firstInterval();
    } else if (offered != nullptr) {
        m_interval = nearestInterval(*offered, {wanted.numerator, wanted.denominator}, m_interval);
    }
    return currentParameters(parameters);
}

} // namespace VirtualCamera
