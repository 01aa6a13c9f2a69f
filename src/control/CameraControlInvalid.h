// SPDX-License-Identifier: MIT
#pragma once

#include "control/CameraControl.h"

namespace ImageAcquisition
{

/// Stands for a control that does not exist.
class CameraControlInvalid : public CameraControl
{
public:
    explicit CameraControlInvalid(NodeReference node);
};

} // namespace ImageAcquisition
