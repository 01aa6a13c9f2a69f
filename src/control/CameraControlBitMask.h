// SPDX-License-Identifier: MIT
#pragma once

#include "ICameraControlBitMask.h"
#include "control/CameraControl.h"

namespace ImageAcquisition
{

/// A V4L2 control of single bits. Which of them are valid is left to the driver.
class CameraControlBitMask : public CameraControl, public virtual ICameraControlBitMask
{
public:
    CameraControlBitMask(NodeReference node, unsigned int id, char const* name);

    void init(v4l2_queryctrl const& qc) override;
    unsigned int defaultValue() const override { return m_defaultValue; }
    unsigned int value() const override;
    bool setValue(unsigned int value) override;

private:
    unsigned int m_defaultValue = 0;
};

} // namespace ImageAcquisition
