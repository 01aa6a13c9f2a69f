// SPDX-License-Identifier: MIT
#pragma once

#include "Export.h"

namespace ImageAcquisition
{

/**
 * @brief A frame interval: the seconds from one frame to the next, as a fraction.
 *
 * Periods belong to their frame size and live as long as the camera. Threads: any.
 */
class IMAGEACQUISITION_EXPORT IFramePeriod
{
public:
    virtual ~IFramePeriod();

    /// True for the object that stands for "no such period": 0/1.
    virtual bool isInvalid() const = 0;

    /// Seconds, above the line. 1 of 1/30.
    virtual unsigned int numerator() const = 0;

    /// Seconds, below the line. 30 of 1/30.
    virtual unsigned int denominator() const = 0;

    /// The one invalid period of the process; never null.
    static IFramePeriod const* invalid();
};

} // namespace ImageAcquisition
