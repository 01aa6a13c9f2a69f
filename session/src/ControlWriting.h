// SPDX-License-Identifier: MIT
#pragma once

#include "session/ControlValue.h"
#include "session/Error.h"

#include <functional>
#include <string>

namespace ImageAcquisition
{
class ICameraControl;
}

namespace ImageAcquisition::Session
{

/// Why a write cannot be, or was not. Empty means that nothing is known against it.
using Refusal = std::string;

/// A write that is known to be refused, or one that only the driver can still refuse.
struct Write
{
    Refusal refusal;
    std::function<Refusal()> carryOut;
    ErrorKind kind = ErrorKind::Refused; ///< Of the refusal.
    std::string hint = {};               ///< What could be set instead.
};

/// What in the control's state forbids writing, however other controls are set.
Refusal refusalByNature(ICameraControl const& control);
Refusal refusalByState(ICameraControl const& control);

/// Writing a value, judged by the control's type and range but not by its state.
Write writeValue(ICameraControl& control, ControlValue const& value);
/// Pressing a button.
Write press(ICameraControl& control);

} // namespace ImageAcquisition::Session
