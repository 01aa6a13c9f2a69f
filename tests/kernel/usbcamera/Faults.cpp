// SPDX-License-Identifier: MIT
#include "Faults.h"

namespace UsbCamera
{

namespace
{

bool matches(std::optional<std::uint8_t> const& wanted, std::uint8_t value)
{
    return !wanted.has_value() || *wanted == value;
}

} // namespace

std::optional<UvcError> Faults::takeStall(std::uint8_t unit, std::uint8_t selector,
                                          std::uint8_t request)
{
    for (StallFault& stall : stalls) {
        if (stall.remaining > 0 && matches(stall.unit, unit) && matches(stall.selector, selector) &&
            matches(stall.request, request)) {
            --stall.remaining;
            return stall.error;
        }
    }
    return std::nullopt;
}

bool countDown(unsigned& remaining)
{
    return remaining > 0 && --remaining == 0;
}

} // namespace UsbCamera
