// SPDX-License-Identifier: MIT
#pragma once

#include <ICameraControl.h>

#include <nlohmann/json_fwd.hpp>

#include <string>

namespace Iacq
{

/// A family as a person would call it; the library's own texts name something else.
char const* familyName(ImageAcquisition::ICameraControl::Family family);

/// Everything that can be known of a control, its present value included.
nlohmann::ordered_json describeControl(ImageAcquisition::ICameraControl const& control);

/// The present value alone; null when there is none to be read.
nlohmann::ordered_json controlValue(ImageAcquisition::ICameraControl const& control);

/// A described value as a text for people, without characters that act on a terminal.
std::string valueText(nlohmann::ordered_json const& value);

} // namespace Iacq
