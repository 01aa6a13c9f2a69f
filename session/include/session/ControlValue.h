// SPDX-License-Identifier: MIT
#pragma once

#include "session/SessionExport.h"

#include <string>
#include <type_traits>
#include <variant>

namespace ImageAcquisition::Session
{

/// A value of a control: a number, a Boolean or a text, which may be a menu's label. What a control
/// makes of it is told by its type; texts are understood by every type but buttons: "200", "0xff",
/// "on", "Manual Mode".
class IMAGEACQUISITION_SESSION_EXPORT ControlValue
{
public:
    /// A number, a Boolean or a text.
    using Content = std::variant<long long, bool, std::string>;

    /// A Boolean, or any whole number.
    /// @throws Error (BadRequest) when it does not fit a `long long`.
    template <typename T, std::enable_if_t<std::is_integral_v<T>, int> = 0>
    ControlValue(T value) : ControlValue(Sort<std::is_same_v<T, bool>>(), checked(value))
    {
    }
    /// A text.
    ControlValue(std::string value);
    /// Null is the empty text.
    ControlValue(char const* value);

    /// Copies the content.
    ControlValue(ControlValue const& other);
    /// Leaves @p other with some content.
    ControlValue(ControlValue&& other) noexcept;
    /// Copies the content.
    ControlValue& operator=(ControlValue const& other);
    /// Leaves @p other with some content.
    ControlValue& operator=(ControlValue&& other) noexcept;
    ~ControlValue();

    /// What it was made of.
    Content const& content() const noexcept { return m_content; }

    /// As a text: "200", "on", "Manual Mode".
    std::string text() const;

private:
    /// Whether a number stands for a Boolean.
    template <bool isBoolean>
    using Sort = std::integral_constant<bool, isBoolean>;

    ControlValue(Sort<true> boolean, long long value);
    ControlValue(Sort<false> number, long long value);

    template <typename T>
    static long long checked(T value)
    {
        auto const number = static_cast<long long>(value);
        if (std::is_unsigned_v<T> && number < 0) {
            throwTooLarge();
        }
        return number;
    }
    [[noreturn]] static void throwTooLarge();

    Content m_content;
};

/// Whether sort and content are equal: the number 1 is not `true`.
IMAGEACQUISITION_SESSION_EXPORT bool operator==(ControlValue const& a, ControlValue const& b);
/// Whether they are not.
IMAGEACQUISITION_SESSION_EXPORT bool operator!=(ControlValue const& a, ControlValue const& b);

} // namespace ImageAcquisition::Session
