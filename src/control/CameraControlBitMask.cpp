// SPDX-License-Identifier: MIT
#include "control/CameraControlBitMask.h"

namespace ImageAcquisition
{

ICameraControlBitMask::~ICameraControlBitMask() = default;

CameraControlBitMask::CameraControlBitMask(NodeReference node, unsigned int id, char const* name)
    : CameraControl(BitMask, node, id, name)
{
}

void CameraControlBitMask::init(v4l2_queryctrl const& qc)
{
    CameraControl::init(qc);
    m_defaultValue = static_cast<unsigned int>(qc.default_value);
}

unsigned int CameraControlBitMask::value() const
{
    return isWriteOnly() ? 0 : static_cast<unsigned int>(inquireControlValue());
}

bool CameraControlBitMask::setValue(unsigned int value)
{
    return !refusesWrites() && setControlValue(static_cast<int>(value));
}

} // namespace ImageAcquisition
