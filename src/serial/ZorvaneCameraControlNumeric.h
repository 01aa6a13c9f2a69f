// SPDX-License-Identifier: MIT
#pragma once

#include "ICameraControlNumeric.h"
#include "serial/ZorvaneCameraControl.h"

namespace ImageAcquisition
{

/// A serial-link control that is a number.
template <typename T>
class ZorvaneCameraControlNumeric : public ZorvaneCameraControl,
                                    public virtual ICameraControlNumeric<T>
{
public:
    ZorvaneCameraControlNumeric(LinkReference link, char const* name, int selector, int unit,
                                Family family);

    /// Asks for the limits too. Without a minimum the range is the maximum alone.
    bool init() override;

    T maximum() const override { return m_maximum; }
    T minimum() const override { return m_minimum; }
    T step() const override { return m_step; }
    /// When the camera does not answer, a field is the value last written and a whole control -1.
    T value() const override;
    /// Sends any value; the limits are for the camera to keep.
    bool setValue(T value) override;

private:
    T m_maximum = 0;
    T m_minimum = 0;
    T m_step = 1;
};

extern template class ZorvaneCameraControlNumeric<int>;
extern template class ZorvaneCameraControlNumeric<long long>;
extern template class ZorvaneCameraControlNumeric<unsigned char>;
extern template class ZorvaneCameraControlNumeric<unsigned short>;
extern template class ZorvaneCameraControlNumeric<unsigned int>;

} // namespace ImageAcquisition
