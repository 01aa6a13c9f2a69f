// SPDX-License-Identifier: MIT
#pragma once

#include <session/Control.h>

#include <ICameraControl.h>

#include <nlohmann/json_fwd.hpp>

#include <string>

namespace Iacq
{

/// The library's interface, which tells more than the session's.
ImageAcquisition::ICameraControl& interfaceOf(ImageAcquisition::Session::Control const& control);

/// A family as a person would call it; the library's own texts name something else.
char const* familyName(ImageAcquisition::ICameraControl::Family family);

/// Everything that can be known of a control, its present value included, which is null when there
/// is none to be read.
/// @throws Error when the camera is gone.
nlohmann::ordered_json describeControl(ImageAcquisition::Session::Control const& control);

/// A described value as a text for people, without characters that act on a terminal.
std::string valueText(nlohmann::ordered_json const& value);

} // namespace Iacq
