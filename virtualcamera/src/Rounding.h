// SPDX-License-Identifier: MIT
#pragma once

#include "ControlNode.h"

namespace VirtualCamera
{

/// The value of the range, counted in steps from its minimum, that is nearest to `value`.
std::int64_t roundToRange(std::int64_t value, ControlRange const& range);

} // namespace VirtualCamera
