// SPDX-License-Identifier: MIT
#pragma once

#include <ICamera.h>
#include <ICameraControl.h>

#include <optional>
#include <string>
#include <vector>

namespace Iacq
{

/// What the user wants to be set: a control, and a value unless it is a button.
struct Assignment
{
    ImageAcquisition::ICameraControl* control;
    std::optional<std::string> value;
};

/// The control of this name or short form.
/// @throws Failure when there is none, or a short form fits several.
ImageAcquisition::ICameraControl& findControl(ImageAcquisition::ICamera const& camera,
                                              std::string const& name);

/// Takes "NAME=VALUE" or "NAME" apart. A control's name may itself hold a "=".
/// @throws Failure when there is no such control.
Assignment parseAssignment(ImageAcquisition::ICamera const& camera, std::string const& text);

/// Sets the value.
/// @throws Failure that says why not, as far as that can be known.
void apply(Assignment const& assignment);

/// Sets all that the texts say, in their order, once nothing is found against any of them: neither
/// a name, nor a value, nor the control's state. That a control is inactive counts only where no
/// earlier one can have activated it.
/// @throws Failure that tells all that was found; then nothing was written. What only the driver
/// refuses is told as apply() does, and what comes before it stays written.
void applyAll(ImageAcquisition::ICamera const& camera, std::vector<std::string> const& texts);

} // namespace Iacq
