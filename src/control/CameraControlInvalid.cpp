// SPDX-License-Identifier: MIT
#include "control/CameraControlInvalid.h"

namespace ImageAcquisition
{

CameraControlInvalid::CameraControlInvalid(NodeReference node)
    : CameraControl(Invalid, node, 0xFFFFFFFFu, "Invalid control")
{
}

} // namespace ImageAcquisition
