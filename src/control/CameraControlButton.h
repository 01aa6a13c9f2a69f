// SPDX-License-Identifier: MIT
#pragma once

#include "ICameraControlButton.h"
#include "control/CameraControl.h"

namespace ImageAcquisition
{

/// A V4L2 control that acts when it is written.
class CameraControlButton : public CameraControl, public virtual ICameraControlButton
{
public:
    CameraControlButton(NodeReference node, unsigned int id, char const* name);

    /// A button has no value: 0, and the driver is not asked.
    int inquireControlValue() const override { return 0; }
    bool clicked() override;
};

} // namespace ImageAcquisition
