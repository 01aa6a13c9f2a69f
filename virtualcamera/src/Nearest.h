// SPDX-License-Identifier: MIT
#pragma once

#include "FormatScript.h"

namespace VirtualCamera
{

struct FrameExtent
{
    std::uint32_t width;
    std::uint32_t height;
};

/// The offered size that a driver takes for a wanted one: the one whose picture, laid over the
/// wanted one, leaves the fewest pixels uncovered on either side.
FrameExtent nearestSize(FormatScript const& format, std::uint32_t width, std::uint32_t height);

/// The offered interval next to the wanted one; `present` when none is offered.
Interval nearestInterval(IntervalScript const& offered, Interval const& wanted,
                         Interval const& present);

} // namespace VirtualCamera
