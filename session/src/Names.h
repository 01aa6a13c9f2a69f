// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace Iacq
{

/// The short form of a control's name as v4l2-ctl prints it: "Exposure Time, Absolute" becomes
/// exposure_time_absolute.
std::string shortName(std::string const& name);

/// Whether two texts are equal but for the case of their letters.
bool equalIgnoringCase(std::string const& a, std::string const& b);

} // namespace Iacq
