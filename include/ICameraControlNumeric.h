// SPDX-License-Identifier: MIT
#pragma once

#include "ICameraControl.h"

namespace ImageAcquisition
{

/**
 * @brief A setting that is a number.
 *
 * @tparam T `int` for type Int32, `long long` for Int64, `unsigned char` for UInt8,
 * `unsigned short` for UInt16 and `unsigned int` for UInt32. The range was read when the camera was
 * opened and does not follow a driver that changes it.
 *
 * Threads: the controls' thread.
 */
template <typename T>
class IMAGEACQUISITION_EXPORT ICameraControlNumeric : public virtual ICameraControl
{
public:
    ~ICameraControlNumeric() override;

    /// The largest value that may be set.
    virtual T maximum() const = 0;

    /// The smallest value that may be set.
    virtual T minimum() const = 0;

    /// Distance between values, never larger than the range. Values in between may be set all the
    /// same; what becomes of them is for the driver to decide.
    virtual T step() const = 0;

    /// The present value, asked from the camera; 0 when it is write-only or the driver does not
    /// answer, -1 when a camera does not answer over its serial link.
    virtual T value() const = 0;

    /// Sets the value. False when the control refuses writes at present (read-only, disabled,
    /// inactive, grabbed), when @p value is outside minimum() to maximum() (nothing is sent in
    /// either case), or when the camera refused it. Serial-link controls send any value.
    virtual bool setValue(T value) = 0;
};

template <typename T>
ICameraControlNumeric<T>::~ICameraControlNumeric() = default;

extern template class IMAGEACQUISITION_EXPORT ICameraControlNumeric<int>;
extern template class IMAGEACQUISITION_EXPORT ICameraControlNumeric<long long>;
extern template class IMAGEACQUISITION_EXPORT ICameraControlNumeric<unsigned char>;
extern template class IMAGEACQUISITION_EXPORT ICameraControlNumeric<unsigned short>;
extern template class IMAGEACQUISITION_EXPORT ICameraControlNumeric<unsigned int>;

} // namespace ImageAcquisition
