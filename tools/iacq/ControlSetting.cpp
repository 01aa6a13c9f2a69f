// SPDX-License-Identifier: MIT
#include "ControlSetting.h"

#include "Failure.h"
#include "Names.h"
#include "Parsing.h"

#include <ICameraControlBitMask.h>
#include <ICameraControlBoolean.h>
#include <ICameraControlButton.h>
#include <ICameraControlInt64Menu.h>
#include <ICameraControlNumeric.h>
#include <ICameraControlString.h>
#include <ICameraControlStringMenu.h>

#include <cstring>
#include <limits>

namespace Iacq
{

namespace
{

using namespace ImageAcquisition;

/// Why a write did not happen. Empty means that it did.
using Refusal = std::string;

Refusal const done;
Refusal const refusedByDriver = "refused by the driver";

/// What in the control's state forbids writing; empty when nothing does.
Refusal refusalByState(ICameraControl const& control)
{
    if (control.isReadOnly()) {
        return "read-only";
    }
    if (control.isDisabled()) {
        return "disabled";
    }
    if (control.isInactive()) {
        return "inactive";
    }
    return control.isGrabbed() ? "grabbed by another program" : "";
}

template <typename T>
Refusal setNumber(ICameraControlNumeric<T>& control, std::string const& text)
{
    auto const number = parseInteger(text);
    if (!number) {
        return "'" + text + "' is no number";
    }
    bool const fits = *number >= static_cast<long long>(std::numeric_limits<T>::min()) &&
                      *number <= static_cast<long long>(std::numeric_limits<T>::max());
    if (fits && control.setValue(static_cast<T>(*number))) {
        return done;
    }
    if (!fits || static_cast<T>(*number) < control.minimum() ||
        static_cast<T>(*number) > control.maximum()) {
        return text + " is outside " + std::to_string(control.minimum()) + ".." +
               std::to_string(control.maximum());
    }
    return refusedByDriver;
}

Refusal setBoolean(ICameraControlBoolean& control, std::string const& text)
{
    auto const value = parseSwitch(text);
    if (!value) {
        return "'" + text + "' is neither on nor off";
    }
    return control.setValue(*value) ? done : refusedByDriver;
}

Refusal setBits(ICameraControlBitMask& control, std::string const& text)
{
    auto const number = parseInteger(text);
    if (!number || *number < 0 || *number > std::numeric_limits<unsigned int>::max()) {
        return "'" + text + "' is no mask of 32 bits";
    }
    return control.setValue(static_cast<unsigned int>(*number)) ? done : refusedByDriver;
}

/// The position that a label or a number means, or -1.
int menuPosition(ICameraControlStringMenu const& menu, std::string const& text)
{
    for (int position = 0; position < menu.count(); ++position) {
        if (text == menu.string(position)) {
            return position;
        }
    }
    for (int position = 0; position < menu.count(); ++position) {
        if (equalIgnoringCase(text, menu.string(position))) {
            return position;
        }
    }
    auto const number = parseCount(text);
    return number && *number < static_cast<unsigned int>(menu.count()) ? static_cast<int>(*number)
                                                                       : -1;
}

Refusal setItem(ICameraControlStringMenu& menu, std::string const& text)
{
    int const position = menuPosition(menu, text);
    if (position == -1) {
        return "no such item: '" + text + "'";
    }
    return menu.setCurrentIndex(position) ? done : refusedByDriver;
}

Refusal setPosition(ICameraControlInt64Menu& menu, std::string const& text)
{
    auto const position = parseCount(text);
    if (!position || *position > static_cast<unsigned int>(std::numeric_limits<int>::max())) {
        return "'" + text + "' is no position";
    }
    // How many items there are is not told: the driver refuses what is none.
    return menu.setCurrentIndex(static_cast<int>(*position))
               ? done
               : "no such item, or refused by the driver";
}

Refusal setText(ICameraControlString& control, std::string const& text)
{
    if (control.setValue(text.c_str())) {
        return done;
    }
    auto const length = static_cast<long long>(text.size());
    if (length < control.minLength() || length > control.maxLength()) {
        return "its length " + std::to_string(length) + " is outside " +
               std::to_string(control.minLength()) + ".." + std::to_string(control.maxLength());
    }
    return refusedByDriver;
}

template <typename Typed>
Refusal tryType(ICameraControl& control, std::string const& text,
                Refusal (*set)(Typed&, std::string const&), bool& found)
{
    auto* const typed = dynamic_cast<Typed*>(&control);
    if (found || typed == nullptr) {
        return done;
    }
    found = true;
    return set(*typed, text);
}

Refusal setByType(ICameraControl& control, std::string const& text)
{
    bool found = false;
    Refusal const refusal =
        tryType(control, text, setNumber<int>, found) +
        tryType(control, text, setNumber<long long>, found) +
        tryType(control, text, setNumber<unsigned char>, found) +
        tryType(control, text, setNumber<unsigned short>, found) +
        tryType(control, text, setNumber<unsigned int>, found) +
        tryType(control, text, setBoolean, found) + tryType(control, text, setBits, found) +
        tryType(control, text, setItem, found) + tryType(control, text, setPosition, found) +
        tryType(control, text, setText, found);
    return found ? refusal : "it is a button: give its name alone";
}

Refusal press(ICameraControl& control)
{
    auto* const button = dynamic_cast<ICameraControlButton*>(&control);
    if (button == nullptr) {
        return "it needs a value: NAME=VALUE";
    }
    return button->clicked() ? done : refusedByDriver;
}

ICameraControl* lookUp(ICamera const& camera, std::string const& name)
{
    ICameraControl* const exact = camera.control(name.c_str());
    if (exact != camera.invalidControl()) {
        return exact;
    }
    ICameraControl* found = nullptr;
    for (int position = 0; position < camera.controlNumber(); ++position) {
        ICameraControl* const control = camera.control(position);
        if (shortName(control->name()) != name) {
            continue;
        }
        if (found != nullptr && std::strcmp(found->name(), control->name()) != 0) {
            throw Failure(BadUsage, "'" + name + "' may be '" + found->name() + "' or '" +
                                        control->name() + "'; give the full name");
        }
        found = found == nullptr ? control : found;
    }
    return found;
}

} // namespace

ICameraControl& findControl(ICamera const& camera, std::string const& name)
{
    ICameraControl* const control = lookUp(camera, name);
    if (control == nullptr) {
        throw Failure(BadUsage, "the camera has no control '" + name + "'");
    }
    return *control;
}

Assignment parseAssignment(ICamera const& camera, std::string const& text)
{
    if (ICameraControl* const whole = lookUp(camera, text)) {
        return {whole, std::nullopt};
    }
    for (auto equals = text.find('='); equals != std::string::npos;
         equals = text.find('=', equals + 1)) {
        if (ICameraControl* const control = lookUp(camera, text.substr(0, equals))) {
            return {control, text.substr(equals + 1)};
        }
    }
    throw Failure(BadUsage, "the camera has no control '" + text.substr(0, text.find('=')) + "'");
}

void apply(Assignment const& assignment)
{
    ICameraControl& control = *assignment.control;
    control.updateState();
    Refusal refusal = refusalByState(control);
    if (refusal.empty()) {
        refusal = assignment.value ? setByType(control, *assignment.value) : press(control);
    }
    if (!refusal.empty()) {
        throw Failure(CameraFailed, std::string(control.name()) + " was not set: " + refusal);
    }
}

} // namespace Iacq
