// SPDX-License-Identifier: MIT
#pragma once

#include "ICameraControl.h"

namespace ImageAcquisition
{

/// A setting that does something when it is pressed. Threads: the controls' thread.
class IMAGEACQUISITION_EXPORT ICameraControlButton : public virtual ICameraControl
{
public:
    ~ICameraControlButton() override;

    /// Presses it. False when the control refuses writes at present (read-only, disabled, inactive,
    /// grabbed: nothing is sent then) or the camera refused it.
    virtual bool clicked() = 0;
};

} // namespace ImageAcquisition
