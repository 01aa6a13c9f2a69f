// SPDX-License-Identifier: MIT
#pragma once

#include "Bytes.h"
#include "CameraModel.h"

namespace UsbCamera
{

/// The only configuration, with all its interfaces, endpoints and class descriptors.
Bytes makeConfiguration(CameraModel const& model);

} // namespace UsbCamera
