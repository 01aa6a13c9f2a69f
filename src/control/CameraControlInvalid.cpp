// SPDX-License-Identifier: MIT
#include "control/CameraControlInvalid.h"

namespace ImageAcquisition
{

CameraControlInvalid::CameraControlInvalid(Camera& camera)
    : CameraControl(Invalid, camera, 0xFFFFFFFFu, "Invalid control")
{
}

} // namespace ImageAcquisition
