// SPDX-License-Identifier: MIT
#pragma once

#include "V4l2Ctl.h"

#include <ICamera.h>
#include <ICameraControl.h>

namespace KernelTest
{

/// Expects a camera's formats to be those that v4l2-ctl lists, in order and in every field.
void expectListedFormats(ImageAcquisition::ICamera const& camera,
                         std::vector<ListedFormat> const& listed);

/// The controls that v4l2-ctl lists and the library can have.
std::vector<ListedControl> plainControls(std::string const& node);

/// The camera's invalid control when it has none with the id.
ImageAcquisition::ICameraControl* controlById(ImageAcquisition::ICamera const& camera, unsigned id);

/// The type that v4l2-ctl prints for a control.
std::map<std::string, ImageAcquisition::ICameraControl::Type> const& typesByPrint();

/// Expects a camera to have a control with the listed name, type, flags, range, default, items and
/// value.
void expectListedControl(ImageAcquisition::ICamera const& camera, ListedControl const& listed);

} // namespace KernelTest
