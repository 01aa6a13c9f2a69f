// SPDX-License-Identifier: MIT
#pragma once

#include "ICameraControl.h"

namespace ImageAcquisition
{

/// A setting of single bits. Threads: the controls' thread.
class IMAGEACQUISITION_EXPORT ICameraControlBitMask : public virtual ICameraControl
{
public:
    ~ICameraControlBitMask() override;

    /// The bits that the camera starts with.
    virtual unsigned int defaultValue() const = 0;

    /// The present bits, asked from the camera; 0 when it is write-only or does not answer.
    virtual unsigned int value() const = 0;

    /// Sets all bits at once; which bits are allowed is for the driver to decide. False when the
    /// control refuses writes at present (read-only, disabled, inactive, grabbed: nothing is sent
    /// then) or the camera refused it.
    virtual bool setValue(unsigned int value) = 0;
};

} // namespace ImageAcquisition
