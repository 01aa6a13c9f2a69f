// SPDX-License-Identifier: MIT
#pragma once

#include "ICameraControlBoolean.h"
#include "serial/ZorvaneCameraControl.h"

namespace ImageAcquisition
{

/// A serial-link control that is on or off.
class ZorvaneCameraControlBoolean : public ZorvaneCameraControl,
                                    public virtual ICameraControlBoolean
{
public:
    ZorvaneCameraControlBoolean(LinkReference link, char const* name, int selector, int unit,
                                Family family);

    /// The value last written when the camera does not answer.
    bool value() const override;
    bool setValue(bool value) override;
    /// True as long as nobody asked the camera, which init() does not.
    bool defaultValue() const override { return defaultValueNumber() != 0; }
};

} // namespace ImageAcquisition
