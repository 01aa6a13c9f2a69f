// SPDX-License-Identifier: MIT
#pragma once

#include "ICameraEvent.h"

#include <string>

namespace ImageAcquisition
{

/// What udev told about one video device. Texts that it does not supply keep their earlier value.
class CameraEvent : public virtual ICameraEvent
{
public:
    int type() const override { return m_type; }
    char const* deviceSystemName() const override { return m_deviceSystemName.c_str(); }
    char const* subSystemName() const override { return m_subSystemName.c_str(); }

    /// Not part of the interface.
    char const* deviceType() const { return m_deviceType.c_str(); }

    /// Sets the type from udev's name of the action; an unknown one or null gives 0.
    void setType(char const* action);
    void setDeviceSystemName(char const* name);
    void setSubSystemName(char const* name);
    void setDeviceType(char const* type);

private:
    static std::string const _addEventString;
    static std::string const _removeEventString;
    static std::string const _changeEventString;
    static std::string const _moveEventString;

    int m_type = 0;
    std::string m_deviceSystemName;
    std::string m_subSystemName;
    std::string m_deviceType;
};

} // namespace ImageAcquisition
