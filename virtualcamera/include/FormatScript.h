// SPDX-License-Identifier: MIT
#pragma once

#include "VirtualCameraExport.h"

#include <cstdint>
#include <string>
#include <vector>

namespace VirtualCamera
{

/// A frame interval in seconds.
struct Interval
{
    std::uint32_t numerator = 1;
    std::uint32_t denominator = 30;

    bool operator==(Interval const& other) const
    {
        return numerator == other.numerator && denominator == other.denominator;
    }
};

/// How a driver describes a set of sizes or intervals.
enum class RangeKind : std::uint8_t { Discrete, Stepwise, Continuous };

/// The intervals that a size offers: a list, or a range.
struct IntervalScript
{
    RangeKind kind = RangeKind::Discrete;
    std::vector<Interval> list; ///< For discrete intervals, in the order of enumeration.
    Interval minimum;           ///< The other three: for stepwise and continuous ranges.
    Interval maximum;
    Interval step;
};

struct SizeScript
{
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    IntervalScript intervals;
};

/// A stepwise or continuous range of sizes, all with the same intervals.
struct SizeRangeScript
{
    std::uint32_t minimumWidth = 0;
    std::uint32_t maximumWidth = 0;
    std::uint32_t stepWidth = 1;
    std::uint32_t minimumHeight = 0;
    std::uint32_t maximumHeight = 0;
    std::uint32_t stepHeight = 1;
    IntervalScript intervals;
};

struct FormatScript
{
    std::uint32_t pixelFormat = 0;
    std::string description;
    std::uint32_t flags = 0; ///< V4L2_FMT_FLAG_...
    RangeKind sizeKind = RangeKind::Discrete;
    std::vector<SizeScript> sizes;  ///< For discrete sizes, in the order of enumeration.
    SizeRangeScript sizeRange;      ///< For stepwise and continuous sizes.
    std::uint32_t bytesPerLine = 0; ///< 0: what a driver would compute from format and width.
    std::uint32_t sizeImage = 0;    ///< 0: what a driver would compute from format and size.
    /// Bytes to deliver instead of the test pattern; empty: the test pattern.
    std::vector<std::uint8_t> frameBytes;
};

/// "YUYV" to V4L2_PIX_FMT_YUYV; throws `std::invalid_argument` unless there are four characters.
VIRTUALCAMERA_EXPORT std::uint32_t pixelFormatByName(std::string const& name);
VIRTUALCAMERA_EXPORT std::string pixelFormatName(std::uint32_t pixelFormat);

} // namespace VirtualCamera
