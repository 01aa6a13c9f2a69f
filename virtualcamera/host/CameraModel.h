// SPDX-License-Identifier: MIT
#pragma once

#include "HostCamera.h"

namespace VirtualCamera
{

/// A ready-made camera. Models know neither nodes nor ports: those come from the place that a
/// camera takes among the others.
struct CameraModel
{
    std::string name;
    std::string description;
    /// The camera as the `place`-th one, counted from 0.
    HostCamera (*make)(unsigned place);
};

std::vector<CameraModel> const& cameraModels();
/// Null for a name that is none.
CameraModel const* cameraModel(std::string const& name);
/// A camera of the model behind the others, at the first place whose nodes and port are free.
HostCamera cameraBehind(std::vector<HostCamera> const& others, CameraModel const& model);

/// The vendor's extension unit, with a selector of the right size for each of its controls.
ExtensionUnitScript vendorExtensionUnit();

} // namespace VirtualCamera
