// SPDX-License-Identifier: MIT
#pragma once

#include "ICameraControl.h"

namespace ImageAcquisition
{

/// A setting that is on or off. Threads: the controls' thread.
class IMAGEACQUISITION_EXPORT ICameraControlBoolean : public virtual ICameraControl
{
public:
    ~ICameraControlBoolean() override;

    /// The present value, asked from the camera; false when it is write-only or does not answer.
    virtual bool value() const = 0;

    /// Sets the value. False when the control refuses writes at present (read-only, disabled,
    /// inactive, grabbed: nothing is sent then) or the camera refused it.
    virtual bool setValue(bool value) = 0;

    /// The value that the camera starts with.
    virtual bool defaultValue() const = 0;
};

} // namespace ImageAcquisition
