// SPDX-License-Identifier: MIT
#include "serial/ZorvaneCameraControlNumeric.h"

#include "control/NumericType.h"

namespace ImageAcquisition
{

template <typename T>
ZorvaneCameraControlNumeric<T>::ZorvaneCameraControlNumeric(LinkReference link, char const* name,
                                                            int selector, int unit, Family family)
    : ZorvaneCameraControl(link, name, selector, unit, family, numericType<T>)
{
}

template <typename T>
bool ZorvaneCameraControlNumeric<T>::init()
{
    if (!ZorvaneCameraControl::init()) {
        return false;
    }
    int limit = 0;
    if (getMaximum(limit)) {
        m_maximum = static_cast<T>(limit);
    }
    m_minimum = getMinimum(limit) ? static_cast<T>(limit) : m_maximum;
    return true;
}

template <typename T>
T ZorvaneCameraControlNumeric<T>::value() const
{
    long long value = 0;
    if (!readValue(value)) {
        value = isShared() ? currentValue() : fallbackValue();
    }
    return static_cast<T>(value);
}

template <typename T>
bool ZorvaneCameraControlNumeric<T>::setValue(T value)
{
    return writeValue(static_cast<int>(value));
}

template class ZorvaneCameraControlNumeric<int>;
template class ZorvaneCameraControlNumeric<long long>;
template class ZorvaneCameraControlNumeric<unsigned char>;
template class ZorvaneCameraControlNumeric<unsigned short>;
template class ZorvaneCameraControlNumeric<unsigned int>;

} // namespace ImageAcquisition
