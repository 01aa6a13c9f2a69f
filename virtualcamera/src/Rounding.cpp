// SPDX-License-Identifier: MIT
#include "Rounding.h"

namespace VirtualCamera
{

std::int64_t roundToRange(std::int64_t value, ControlRange const& range)
{
    if (range.minimum > range.maximum) {
        return value;
    }
    if (value <= range.minimum) {
        return range.minimum;
    }
    if (value >= range.maximum) {
        value = range.maximum;
    }
    if (range.step <= 1) {
        return value;
    }
    // Unsigned, since the width of a 64-bit range may not fit in a signed number.
    auto const step = static_cast<std::uint64_t>(range.step);
    auto const above =
        static_cast<std::uint64_t>(value) - static_cast<std::uint64_t>(range.minimum);
    auto const width =
        static_cast<std::uint64_t>(range.maximum) - static_cast<std::uint64_t>(range.minimum);
    std::uint64_t steps = above / step;
    if (above % step >= step - above % step && (steps + 1) * step <= width) {
        ++steps;
    }
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(range.minimum) + steps * step);
}

} // namespace VirtualCamera
