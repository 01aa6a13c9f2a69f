// SPDX-License-Identifier: MIT
#pragma once

#include "IFramePeriod.h"

#include <linux/videodev2.h>

namespace ImageAcquisition
{

/// One discrete frame interval.
class FramePeriod : public virtual IFramePeriod
{
public:
    explicit FramePeriod(v4l2_fract const& period);

    bool isInvalid() const override { return false; }
    unsigned int numerator() const override { return m_numerator; }
    unsigned int denominator() const override { return m_denominator; }

private:
    unsigned int m_numerator;
    unsigned int m_denominator;
};

/// Stands for an interval that does not exist.
class InvalidFramePeriod : public virtual IFramePeriod
{
public:
    static InvalidFramePeriod const& getUniqueInstance();

    bool isInvalid() const override { return true; }
    unsigned int numerator() const override { return 0; }
    /// Not 0, so that a caller who divides does not divide by zero.
    unsigned int denominator() const override { return 1; }
};

} // namespace ImageAcquisition
