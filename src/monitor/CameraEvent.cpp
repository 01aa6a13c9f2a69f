// SPDX-License-Identifier: MIT
#include "monitor/CameraEvent.h"

#include "system/Text.h"

namespace ImageAcquisition
{

ICameraEvent::~ICameraEvent() = default;

std::string const CameraEvent::_addEventString = "add";
std::string const CameraEvent::_removeEventString = "remove";
std::string const CameraEvent::_changeEventString = "change";
std::string const CameraEvent::_moveEventString = "move";

void CameraEvent::setType(char const* action)
{
    m_type = 0;
    if (action == nullptr) {
        return;
    }
    std::string const* const actions[] = {&_addEventString, &_removeEventString,
                                          &_changeEventString, &_moveEventString};
    int number = 1;
    for (std::string const* const known : actions) {
        if (*known == action) {
            m_type = number;
            return;
        }
        ++number;
    }
}

void CameraEvent::setDeviceSystemName(char const* name)
{
    assignUnlessNull(m_deviceSystemName, name);
}

void CameraEvent::setSubSystemName(char const* name)
{
    assignUnlessNull(m_subSystemName, name);
}

void CameraEvent::setDeviceType(char const* type)
{
    assignUnlessNull(m_deviceType, type);
}

} // namespace ImageAcquisition
