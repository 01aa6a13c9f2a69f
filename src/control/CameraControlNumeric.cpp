// SPDX-License-Identifier: MIT
#include "control/CameraControlNumeric.h"

#include "control/NumericType.h"

#include <utility>

namespace ImageAcquisition
{

template <typename T>
CameraControlNumeric<T>::CameraControlNumeric(NodeReference node, unsigned int id, char const* name)
    : CameraControl(numericType<T>, node, id, name)
{
}

template <typename T>
void CameraControlNumeric<T>::init(v4l2_queryctrl const& qc)
{
    CameraControl::init(qc);
    setMinMaxStep(static_cast<T>(qc.minimum), static_cast<T>(qc.maximum), static_cast<T>(qc.step));
}

template <typename T>
void CameraControlNumeric<T>::setMinMaxStep(T minimum, T maximum, T step)
{
    if (minimum > maximum) {
        std::swap(minimum, maximum);
    }
    m_minimum = minimum;
    m_maximum = maximum;
    m_step = step;
    // As unsigned 64-bit numbers, since the width of a signed range need not fit its own type.
    auto const width =
        static_cast<unsigned long long>(maximum) - static_cast<unsigned long long>(minimum);
    if (step > 0 && static_cast<unsigned long long>(step) > width) {
        m_step = static_cast<T>(width);
    }
}

template <typename T>
int CameraControlNumeric<T>::inquireControlValue() const
{
    return type() == Int32 ? CameraControl::inquireControlValue()
                           : static_cast<int>(inquireControlValueExt());
}

template <typename T>
T CameraControlNumeric<T>::value() const
{
    if (isWriteOnly()) {
        return 0;
    }
    // The 32 bits of inquireControlValue() would cut a 64-bit value.
    return static_cast<T>(type() == Int32 ? inquireControlValue() : inquireControlValueExt());
}

template <typename T>
bool CameraControlNumeric<T>::setValue(T value)
{
    if (refusesWrites() || value < minimum() || value > maximum()) {
        return false;
    }
    return type() == Int32 ? setControlValue(static_cast<int>(value))
                           : setControlValueExt(static_cast<long long>(value));
}

template class ICameraControlNumeric<int>;
template class ICameraControlNumeric<long long>;
template class ICameraControlNumeric<unsigned char>;
template class ICameraControlNumeric<unsigned short>;
template class ICameraControlNumeric<unsigned int>;

template class CameraControlNumeric<int>;
template class CameraControlNumeric<long long>;
template class CameraControlNumeric<unsigned char>;
template class CameraControlNumeric<unsigned short>;
template class CameraControlNumeric<unsigned int>;

} // namespace ImageAcquisition
