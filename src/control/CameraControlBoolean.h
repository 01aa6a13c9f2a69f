// SPDX-License-Identifier: MIT
#pragma once

#include "ICameraControlBoolean.h"
#include "control/CameraControl.h"

namespace ImageAcquisition
{

/// A V4L2 control that is on or off.
class CameraControlBoolean : public CameraControl, public virtual ICameraControlBoolean
{
public:
    CameraControlBoolean(NodeReference node, unsigned int id, char const* name);

    void init(v4l2_queryctrl const& qc) override;
    bool value() const override;
    bool setValue(bool value) override;
    bool defaultValue() const override { return m_defaultValue; }

private:
    bool m_defaultValue = false;
};

} // namespace ImageAcquisition
