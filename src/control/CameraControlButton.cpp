// SPDX-License-Identifier: MIT
#include "control/CameraControlButton.h"

namespace ImageAcquisition
{

ICameraControlButton::~ICameraControlButton() = default;

CameraControlButton::CameraControlButton(NodeReference node, unsigned int id, char const* name)
    : CameraControl(Button, node, id, name)
{
}

bool CameraControlButton::clicked()
{
    return !refusesWrites() && setControlValue(1);
}

} // namespace ImageAcquisition
