// SPDX-License-Identifier: MIT
#pragma once

#include "session/SessionExport.h"

#include <string>
#include <type_traits>
#include <utility>
#include <variant>

namespace ImageAcquisition::Session
{

/// A value of a control: a number, a Boolean or a text, which may be a menu's label. What a control
/// makes of it is told by its type; texts are understood by every type but buttons: "200", "0xff",
/// "on", "Manual Mode".
class IMAGEACQUISITION_SESSION_EXPORT ControlValue
{
public:
    using Content = std::variant<long long, bool, std::string>;

    /// A Boolean, or any whole number.
    /// @throws Error (BadRequest) when it does not fit a `long long`.
    template <typename T, std::enable_if_t<std::is_integral_v<T>, int> = 0>
    ControlValue(T value)
    {
        if constexpr (std::is_same_v<T, bool>) {
            m_content = value;
        } else {
            m_content = static_cast<long long>(value);
            if (std::is_unsigned_v<T> && std::get<long long>(m_content) < 0) {
                throwTooLarge();
            }
        }
    }
    ControlValue(std::string value) : m_content(std::move(value)) {}
    /// Null is the empty text.
    ControlValue(char const* value) : m_content(std::string(value == nullptr ? "" : value)) {}

    Content const& content() const noexcept { return m_content; }

    /// As a text: "200", "on", "Manual Mode".
    std::string text() const;

private:
    [[noreturn]] static void throwTooLarge();

    Content m_content;
};

IMAGEACQUISITION_SESSION_EXPORT bool operator==(ControlValue const& a, ControlValue const& b);
IMAGEACQUISITION_SESSION_EXPORT bool operator!=(ControlValue const& a, ControlValue const& b);

} // namespace ImageAcquisition::Session
