// SPDX-License-Identifier: MIT
#include "serial/ZorvaneCameraControlBoolean.h"

namespace ImageAcquisition
{

ZorvaneCameraControlBoolean::ZorvaneCameraControlBoolean(LinkReference link, char const* name,
                                                         int selector, int unit, Family family)
    : ZorvaneCameraControl(link, name, selector, unit, family, Boolean)
{
}

bool ZorvaneCameraControlBoolean::value() const
{
    long long value = 0;
    if (!readValue(value)) {
        value = currentValue();
    }
    return value != 0;
}

bool ZorvaneCameraControlBoolean::setValue(bool value)
{
    return writeValue(value ? 1 : 0);
}

} // namespace ImageAcquisition
