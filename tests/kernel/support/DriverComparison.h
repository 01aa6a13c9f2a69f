// SPDX-License-Identifier: MIT
#pragma once

#include "V4l2Ctl.h"

#include <ICamera.h>
#include <ICameraControl.h>

namespace KernelTest
{

/// Expects a camera's formats to be those that v4l2-ctl lists, in order and in every field.
void expectListedFormats(const ImageAcquisition::ICamera& camera,
                         const std::vector<ListedFormat>& listed);

/// The controls that v4l2-ctl lists and the library can have.
std::vector<ListedControl> plainControls(const std::string& node);

/// The camera's invalid control when it has none with the id.
ImageAcquisition::ICameraControl* controlById(const ImageAcquisition::ICamera& camera, unsigned id);

/// The type that v4l2-ctl prints for a control.
const std::map<std::string, ImageAcquisition::ICameraControl::Type>& typesByPrint();

/// Expects a camera to have a control with the listed name, type, flags, range, default, items and
/// value.
void expectListedControl(const ImageAcquisition::ICamera& camera, const ListedControl& listed);

} // namespace KernelTest
