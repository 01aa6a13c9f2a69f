// SPDX-License-Identifier: MIT
#include "control/CameraControlBoolean.h"

namespace ImageAcquisition
{

ICameraControlBoolean::~ICameraControlBoolean() = default;

CameraControlBoolean::CameraControlBoolean(NodeReference node, unsigned int id, char const* name)
    : CameraControl(Boolean, node, id, name)
{
}

void CameraControlBoolean::init(v4l2_queryctrl const& qc)
{
    CameraControl::init(qc);
    m_defaultValue = qc.default_value != 0;
}

bool CameraControlBoolean::value() const
{
    return !isWriteOnly() && inquireControlValue() != 0;
}

bool CameraControlBoolean::setValue(bool value)
{
    return !refusesWrites() && setControlValue(value ? 1 : 0);
}

} // namespace ImageAcquisition
