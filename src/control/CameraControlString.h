// SPDX-License-Identifier: MIT
#pragma once

#include "ICameraControlString.h"
#include "control/CameraControl.h"

namespace ImageAcquisition
{

/// A V4L2 control that is a text. The driver decides about lengths.
class CameraControlString : public CameraControl, public virtual ICameraControlString
{
public:
    CameraControlString(NodeReference node, unsigned int id, char const* name);

    void init(v4l2_queryctrl const& qc) override;
    unsigned int stringSize() const override;
    bool getValue(char* buffer, int size) const override;
    bool setValue(char const* value) override;
    int minLength() const override { return m_minLength; }
    int maxLength() const override { return m_maxLength; }

    /// Kept as they are, whatever their order.
    void setMinMaxStep(int minimum, int maximum, int step);
    int step() const { return m_step; }

private:
    int m_minLength = 0;
    int m_maxLength = 0;
    int m_step = 0;
};

} // namespace ImageAcquisition
