// SPDX-License-Identifier: MIT
#include "session/ControlValue.h"

#include "session/Error.h"

namespace ImageAcquisition::Session
{

std::string ControlValue::text() const
{
    if (auto const* const number = std::get_if<long long>(&m_content)) {
        return std::to_string(*number);
    }
    if (auto const* const on = std::get_if<bool>(&m_content)) {
        return *on ? "on" : "off";
    }
    return std::get<std::string>(m_content);
}

void ControlValue::throwTooLarge()
{
    throw Error({ErrorKind::BadRequest, "set a control", "the number does not fit 64 bits"});
}

bool operator==(ControlValue const& a, ControlValue const& b)
{
    return a.content() == b.content();
}

bool operator!=(ControlValue const& a, ControlValue const& b)
{
    return !(a == b);
}

} // namespace ImageAcquisition::Session
