// SPDX-License-Identifier: MIT
#include "session/ControlValue.h"

#include "session/Error.h"

#include <utility>

namespace ImageAcquisition::Session
{

ControlValue::ControlValue(Sort<true> /*boolean*/, long long value)
    : m_content(std::in_place_type<bool>, value != 0)
{
}

ControlValue::ControlValue(Sort<false> /*number*/, long long value)
    : m_content(std::in_place_type<long long>, value)
{
}

ControlValue::ControlValue(std::string value) : m_content(std::move(value)) {}

ControlValue::ControlValue(char const* value)
    : m_content(std::string(value == nullptr ? "" : value))
{
}

ControlValue::ControlValue(ControlValue const& other) = default;
ControlValue::ControlValue(ControlValue&& other) noexcept = default;
ControlValue& ControlValue::operator=(ControlValue const& other) = default;
ControlValue& ControlValue::operator=(ControlValue&& other) noexcept = default;
ControlValue::~ControlValue() = default;

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
