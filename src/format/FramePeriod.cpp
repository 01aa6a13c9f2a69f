// SPDX-License-Identifier: MIT
#include "format/FramePeriod.h"

namespace ImageAcquisition
{

IFramePeriod::~IFramePeriod() = default;

IFramePeriod const* IFramePeriod::invalid()
{
    return &InvalidFramePeriod::getUniqueInstance();
}

FramePeriod::FramePeriod(v4l2_fract const& period)
    : m_numerator(period.numerator), m_denominator(period.denominator)
{
}

InvalidFramePeriod const& InvalidFramePeriod::getUniqueInstance()
{
    static InvalidFramePeriod const instance;
    return instance;
}

} // namespace ImageAcquisition
