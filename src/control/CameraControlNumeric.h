// SPDX-License-Identifier: MIT
#pragma once

#include "ICameraControlNumeric.h"
#include "control/CameraControl.h"

namespace ImageAcquisition
{

/// A V4L2 control that is a number. 32-bit signed values travel by plain calls, all others by
/// extended ones.
template <typename T>
class CameraControlNumeric : public CameraControl, public virtual ICameraControlNumeric<T>
{
public:
    CameraControlNumeric(NodeReference node, unsigned int id, char const* name);

    void init(v4l2_queryctrl const& qc) override;
    int inquireControlValue() const override;

    T maximum() const override { return m_maximum; }
    T minimum() const override { return m_minimum; }
    T step() const override { return m_step; }
    T value() const override;
    bool setValue(T value) override;

    /// Bounds in the wrong order are exchanged, and the step is narrowed to the range's width.
    void setMinMaxStep(T minimum, T maximum, T step);

private:
    T m_maximum = 0;
    T m_minimum = 0;
    T m_step = 0;
};

extern template class CameraControlNumeric<int>;
extern template class CameraControlNumeric<long long>;
extern template class CameraControlNumeric<unsigned char>;
extern template class CameraControlNumeric<unsigned short>;
extern template class CameraControlNumeric<unsigned int>;

} // namespace ImageAcquisition
