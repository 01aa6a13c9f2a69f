// SPDX-License-Identifier: MIT
#include "ControlWriting.h"

#include "Names.h"
#include "Parsing.h"
#include "session/Control.h"

#include <ICameraControlBitMask.h>
#include <ICameraControlBoolean.h>
#include <ICameraControlButton.h>
#include <ICameraControlInt64Menu.h>
#include <ICameraControlNumeric.h>
#include <ICameraControlString.h>
#include <ICameraControlStringMenu.h>

#include <limits>
#include <optional>
#include <type_traits>

namespace ImageAcquisition::Session
{

namespace
{

constexpr char none[] = "";
constexpr char refusedByDriver[] = "refused by the driver";

Write refused(Refusal const& reason)
{
    return {reason, {}};
}

/// For a value that is none for this type of control, whatever its state.
Write senseless(Refusal const& reason, std::string const& hint = {})
{
    return {reason, {}, ErrorKind::BadRequest, hint};
}

/// A number, or a text that is one.
std::optional<long long> integerIn(ControlValue const& value)
{
    if (auto const* const number = std::get_if<long long>(&value.content())) {
        return *number;
    }
    auto const* const text = std::get_if<std::string>(&value.content());
    return text == nullptr ? std::nullopt : parseInteger(*text);
}

std::optional<bool> switchIn(ControlValue const& value)
{
    auto const* const on = std::get_if<bool>(&value.content());
    return on == nullptr ? parseSwitch(value.text()) : *on;
}

/// A position, or a text that is one.
std::optional<int> positionIn(ControlValue const& value)
{
    auto const number =
        std::holds_alternative<bool>(value.content()) ? std::nullopt : parseCount(value.text());
    return number && *number <= static_cast<unsigned int>(std::numeric_limits<int>::max())
               ? std::optional<int>(static_cast<int>(*number))
               : std::nullopt;
}

/// The position that a label means.
std::optional<int> positionOfLabel(ICameraControlStringMenu const& menu, std::string const& label)
{
    for (int position = 0; position < menu.count(); ++position) {
        if (label == menu.string(position)) {
            return position;
        }
    }
    for (int position = 0; position < menu.count(); ++position) {
        if (equalIgnoringCase(label, menu.string(position))) {
            return position;
        }
    }
    return std::nullopt;
}

/// Judges a value for each typed interface.
struct Writer
{
    template <typename T>
    Write operator()(ICameraControlNumeric<T>* control) const
    {
        auto const number = integerIn(value);
        if (!number) {
            return senseless("'" + value.text() + "' is no number");
        }
        bool const fits = *number >= static_cast<long long>(std::numeric_limits<T>::min()) &&
                          *number <= static_cast<long long>(std::numeric_limits<T>::max());
        T const sent = fits ? static_cast<T>(*number) : T{};
        bool const inside = fits && sent >= control->minimum() && sent <= control->maximum();
        Refusal const otherwise = inside ? refusedByDriver
                                         : value.text() + " is outside " +
                                               std::to_string(control->minimum()) + ".." +
                                               std::to_string(control->maximum());
        // Behind the serial link a camera that tells no minimum shows a range of one value, and
        // takes others.
        bool const rangeIsTold =
            !std::is_same<T, int>::value || control->minimum() != control->maximum();
        if (!fits || (!inside && rangeIsTold)) {
            return refused(otherwise);
        }
        return {none,
                [control, sent, otherwise] { return control->setValue(sent) ? none : otherwise; }};
    }

    Write operator()(ICameraControlBoolean* control) const
    {
        auto const on = switchIn(value);
        return on ? sending([control, on] { return control->setValue(*on); })
                  : senseless("'" + value.text() + "' is neither on nor off");
    }

    Write operator()(ICameraControlBitMask* control) const
    {
        auto const number = integerIn(value);
        if (!number || *number < 0 || *number > std::numeric_limits<unsigned int>::max()) {
            return senseless("'" + value.text() + "' is no mask of 32 bits");
        }
        auto const bits = static_cast<unsigned int>(*number);
        return sending([control, bits] { return control->setValue(bits); });
    }

    Write operator()(ICameraControlStringMenu* menu) const
    {
        auto const* const text = std::get_if<std::string>(&value.content());
        auto const labelled = text == nullptr ? std::nullopt : positionOfLabel(*menu, *text);
        auto const position = labelled ? labelled : positionIn(value);
        if (!position || *position >= menu->count()) {
            return senseless("no such item: '" + value.text() + "'", itemsOf(*menu));
        }
        return sending([menu, position] { return menu->setCurrentIndex(*position); });
    }

    Write operator()(ICameraControlInt64Menu* menu) const
    {
        auto const position = positionIn(value);
        // How many items there are is not told: the driver refuses what is none.
        return position ? sending([menu, position] { return menu->setCurrentIndex(*position); },
                                  "no such item, or refused by the driver")
                        : senseless("'" + value.text() + "' is no position");
    }

    Write operator()(ICameraControlString* control) const
    {
        std::string const text = value.text();
        auto const length = static_cast<long long>(text.size());
        bool const rangeIsTold = control->maxLength() > 0;
        if (rangeIsTold && (length < control->minLength() || length > control->maxLength())) {
            return refused("its length " + std::to_string(length) + " is outside " +
                           std::to_string(control->minLength()) + ".." +
                           std::to_string(control->maxLength()));
        }
        return sending([control, text] { return control->setValue(text.c_str()); });
    }

    Write operator()(ICameraControlButton* /*control*/) const
    {
        return senseless("it is a button: give its name alone");
    }

    Write operator()(ICameraControl* /*control*/) const
    {
        return senseless("it has no value that can be set here");
    }

    template <typename Action>
    static Write sending(Action action, char const* otherwise = refusedByDriver)
    {
        return {none, [action, otherwise]() -> Refusal { return action() ? none : otherwise; }};
    }

    static std::string itemsOf(ICameraControlStringMenu const& menu)
    {
        std::string items;
        for (int position = 0; position < menu.count(); ++position) {
            items +=
                (items.empty() ? "it has '" : ", '") + std::string(menu.string(position)) + "'";
        }
        return items;
    }

    ControlValue const& value;
};

} // namespace

Refusal refusalByNature(ICameraControl const& control)
{
    if (control.isReadOnly()) {
        return "read-only";
    }
    if (control.isDisabled()) {
        return "disabled";
    }
    return control.isGrabbed() ? "grabbed by another program" : none;
}

Refusal refusalByState(ICameraControl const& control)
{
    Refusal const refusal = refusalByNature(control);
    return refusal.empty() && control.isInactive() ? "inactive" : refusal;
}

Write writeValue(ICameraControl& control, ControlValue const& value)
{
    return std::visit(Writer{value}, typed(control));
}

Write press(ICameraControl& control)
{
    auto* const button = dynamic_cast<ICameraControlButton*>(&control);
    return button == nullptr ? senseless("it needs a value: NAME=VALUE")
                             : Writer::sending([button] { return button->clicked(); });
}

} // namespace ImageAcquisition::Session
