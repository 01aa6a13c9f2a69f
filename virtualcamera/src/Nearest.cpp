// SPDX-License-Identifier: MIT
#include "Nearest.h"

#include <algorithm>
#include <cmath>

namespace VirtualCamera
{

namespace
{

std::uint32_t toStep(std::uint32_t wanted, std::uint32_t lowest, std::uint32_t highest,
                     std::uint32_t step)
{
    std::uint32_t const bounded = std::clamp(wanted, lowest, std::max(lowest, highest));
    return step <= 1 ? bounded : lowest + (bounded - lowest) / step * step;
}

double seconds(Interval const& interval)
{
    return interval.denominator == 0 ? 0.0
                                     : static_cast<double>(interval.numerator) /
                                           static_cast<double>(interval.denominator);
}

} // namespace

FrameExtent nearestSize(FormatScript const& format, std::uint32_t width, std::uint32_t height)
{
    if (format.sizeKind != RangeKind::Discrete) {
        SizeRangeScript const& range = format.sizeRange;
        return {toStep(width, range.minimumWidth, range.maximumWidth, range.stepWidth),
                toStep(height, range.minimumHeight, range.maximumHeight, range.stepHeight)};
    }
    if (format.sizes.empty()) {
        return {std::max(width, 1u), std::max(height, 1u)};
    }
    FrameExtent best{format.sizes.front().width, format.sizes.front().height};
    std::uint64_t smallest = UINT64_MAX;
    for (SizeScript const& size : format.sizes) {
        std::uint64_t const common =
            std::uint64_t{std::min(width, size.width)} * std::min(height, size.height);
        std::uint64_t const uncovered =
            std::uint64_t{width} * height + std::uint64_t{size.width} * size.height - 2 * common;
        if (uncovered < smallest) {
            smallest = uncovered;
            best = {size.width, size.height};
        }
    }
    return best;
}

Interval nearestInterval(IntervalScript const& offered, Interval const& wanted,
                         Interval const& present)
{
    if (offered.kind != RangeKind::Discrete) {
        if (seconds(wanted) < seconds(offered.minimum)) {
            return offered.minimum;
        }
        if (seconds(wanted) > seconds(offered.maximum)) {
            return offered.maximum;
        }
        return wanted;
    }
    Interval best = present;
    double smallest = HUGE_VAL;
    for (Interval const& interval : offered.list) {
        double const distance = std::fabs(seconds(interval) - seconds(wanted));
        if (distance < smallest) {
            smallest = distance;
            best = interval;
        }
    }
    return best;
}

} // namespace VirtualCamera
