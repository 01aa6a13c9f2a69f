// SPDX-License-Identifier: MIT
#include "format/FrameSize.h"

#include "format/DeviceFormat.h"

#include <algorithm>

namespace ImageAcquisition
{

namespace
{

// Room for so many at once; beyond that the list doubles.
constexpr std::size_t usualPeriods = 8;

} // namespace

IFrameSize::~IFrameSize() = default;

IFrameSize const* IFrameSize::invalid()
{
    return &InvalidFrameSize::getUniqueInstance();
}

FrameSize::FrameSize(NodeReference node, unsigned int pixelformat, unsigned int width,
                     unsigned int height, CatalogueBudget& budget)
    : m_node(node), m_width(width), m_height(height)
{
    enumeratePeriods(pixelformat, budget);
}

void FrameSize::enumeratePeriods(unsigned int pixelformat, CatalogueBudget& budget)
{
    v4l2_frmivalenum interval{};
    interval.pixel_format = pixelformat;
    interval.width = m_width;
    interval.height = m_height;
    while (interval.index < maximumEnumerated &&
           m_node.xioctl(VIDIOC_ENUM_FRAMEINTERVALS, &interval) != -1) {
        // A range comes with the first answer, and is not expanded into a list.
        bool const isRange = interval.index == 0 && interval.type != V4L2_FRMIVAL_TYPE_DISCRETE;
        if (isRange || !budget.take()) {
            return;
        }
        if (m_periods.empty()) {
            m_periods.reserve(usualPeriods);
        }
        m_periods.emplace_back(interval.discrete);
        ++interval.index;
    }
}

int FrameSize::bytesPerLine() const
{
    v4l2_format format;
    return queryDeviceFormat(m_node, format) ? static_cast<int>(format.fmt.pix.bytesperline) : -1;
}

IFramePeriod const* FrameSize::period(int index) const
{
    if (index < 0 || index >= periodNumber()) {
        return IFramePeriod::invalid();
    }
    return &m_periods[static_cast<std::size_t>(index)];
}

int FrameSize::intervalIndex(v4l2_fract const& interval) const
{
    auto const found =
        std::find_if(m_periods.begin(), m_periods.end(), [&](FramePeriod const& period) {
            return period.denominator() == interval.denominator &&
                   period.numerator() == interval.numerator;
        });
    return found == m_periods.end() ? -1 : static_cast<int>(found - m_periods.begin());
}

InvalidFrameSize const& InvalidFrameSize::getUniqueInstance()
{
    static InvalidFrameSize const instance;
    return instance;
}

IFramePeriod const* InvalidFrameSize::period(int /*index*/) const
{
    return IFramePeriod::invalid();
}

} // namespace ImageAcquisition
