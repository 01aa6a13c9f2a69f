// SPDX-License-Identifier: MIT
#include "ControlSetting.h"

#include "Failure.h"
#include "Names.h"
#include "Parsing.h"

#include <session/Control.h>

#include <ICameraControlBitMask.h>
#include <ICameraControlBoolean.h>
#include <ICameraControlButton.h>
#include <ICameraControlInt64Menu.h>
#include <ICameraControlNumeric.h>
#include <ICameraControlString.h>
#include <ICameraControlStringMenu.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <limits>
#include <type_traits>

namespace Iacq
{

using ImageAcquisition::Session::equalIgnoringCase;
using ImageAcquisition::Session::parseCount;
using ImageAcquisition::Session::parseInteger;
using ImageAcquisition::Session::parseSwitch;
using ImageAcquisition::Session::shortName;

namespace
{

using namespace ImageAcquisition;

/// Why a write cannot be, or was not. Empty means that nothing is known against it.
using Refusal = std::string;

Refusal const none;
Refusal const refusedByDriver = "refused by the driver";

/// A write that is known to be refused, or one that only the driver can still refuse.
struct Write
{
    Refusal refusal;
    std::function<Refusal()> carryOut;
};

Write refused(Refusal const& reason)
{
    return {reason, {}};
}

/// What in the control's state forbids writing, however other controls are set.
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

template <typename T>
Write writeNumber(ICameraControlNumeric<T>& control, std::string const& text)
{
    auto const number = parseInteger(text);
    if (!number) {
        return refused("'" + text + "' is no number");
    }
    bool const fits = *number >= static_cast<long long>(std::numeric_limits<T>::min()) &&
                      *number <= static_cast<long long>(std::numeric_limits<T>::max());
    T const value = fits ? static_cast<T>(*number) : T{};
    bool const inside = fits && value >= control.minimum() && value <= control.maximum();
    Refusal const otherwise = inside ? refusedByDriver
                                     : text + " is outside " + std::to_string(control.minimum()) +
                                           ".." + std::to_string(control.maximum());
    // Behind the serial link a camera that tells no minimum shows a range of one value, and takes
    // others.
    bool const rangeIsTold = !std::is_same<T, int>::value || control.minimum() != control.maximum();
    if (!fits || (!inside && rangeIsTold)) {
        return refused(otherwise);
    }
    return {none,
            [&control, value, otherwise] { return control.setValue(value) ? none : otherwise; }};
}

Write writeBoolean(ICameraControlBoolean& control, std::string const& text)
{
    auto const value = parseSwitch(text);
    if (!value) {
        return refused("'" + text + "' is neither on nor off");
    }
    return {none, [&control, value] { return control.setValue(*value) ? none : refusedByDriver; }};
}

Write writeBits(ICameraControlBitMask& control, std::string const& text)
{
    auto const number = parseInteger(text);
    if (!number || *number < 0 || *number > std::numeric_limits<unsigned int>::max()) {
        return refused("'" + text + "' is no mask of 32 bits");
    }
    auto const bits = static_cast<unsigned int>(*number);
    return {none, [&control, bits] { return control.setValue(bits) ? none : refusedByDriver; }};
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

Write writeItem(ICameraControlStringMenu& menu, std::string const& text)
{
    int const position = menuPosition(menu, text);
    if (position == -1) {
        return refused("no such item: '" + text + "'");
    }
    return {none,
            [&menu, position] { return menu.setCurrentIndex(position) ? none : refusedByDriver; }};
}

Write writePosition(ICameraControlInt64Menu& menu, std::string const& text)
{
    auto const number = parseCount(text);
    if (!number || *number > static_cast<unsigned int>(std::numeric_limits<int>::max())) {
        return refused("'" + text + "' is no position");
    }
    auto const position = static_cast<int>(*number);
    // How many items there are is not told: the driver refuses what is none.
    return {none, [&menu, position] {
                return menu.setCurrentIndex(position) ? none
                                                      : "no such item, or refused by the driver";
            }};
}

Write writeText(ICameraControlString& control, std::string const& text)
{
    auto const length = static_cast<long long>(text.size());
    bool const rangeIsTold = control.maxLength() > 0;
    if (rangeIsTold && (length < control.minLength() || length > control.maxLength())) {
        return refused("its length " + std::to_string(length) + " is outside " +
                       std::to_string(control.minLength()) + ".." +
                       std::to_string(control.maxLength()));
    }
    return {none,
            [&control, text] { return control.setValue(text.c_str()) ? none : refusedByDriver; }};
}

template <typename Typed>
bool prepareAs(ICameraControl& control, std::string const& text,
               Write (*prepare)(Typed&, std::string const&), Write& write)
{
    auto* const typed = dynamic_cast<Typed*>(&control);
    if (typed != nullptr) {
        write = prepare(*typed, text);
    }
    return typed != nullptr;
}

Write writeValue(ICameraControl& control, std::string const& text)
{
    Write write = refused("it is a button: give its name alone");
    prepareAs(control, text, writeNumber<int>, write) ||
        prepareAs(control, text, writeNumber<long long>, write) ||
        prepareAs(control, text, writeNumber<unsigned char>, write) ||
        prepareAs(control, text, writeNumber<unsigned short>, write) ||
        prepareAs(control, text, writeNumber<unsigned int>, write) ||
        prepareAs(control, text, writeBoolean, write) ||
        prepareAs(control, text, writeBits, write) || prepareAs(control, text, writeItem, write) ||
        prepareAs(control, text, writePosition, write) ||
        prepareAs(control, text, writeText, write);
    return write;
}

Write press(ICameraControl& control)
{
    auto* const button = dynamic_cast<ICameraControlButton*>(&control);
    if (button == nullptr) {
        return refused("it needs a value: NAME=VALUE");
    }
    return {none, [button] { return button->clicked() ? none : refusedByDriver; }};
}

Write prepare(Assignment const& assignment)
{
    return assignment.value ? writeValue(*assignment.control, *assignment.value)
                            : press(*assignment.control);
}

Failure notSet(ICameraControl const& control, Refusal const& refusal)
{
    return {CameraFailed, std::string(control.name()) + " was not set: " + refusal};
}

/// Whether other controls can be active once this one is written, and inactive before: what lets
/// a camera choose by itself is a switch or a menu, or the driver says so.
bool mayActivateOthers(ICameraControl const& control)
{
    return dynamic_cast<ICameraControlBoolean const*>(&control) != nullptr ||
           dynamic_cast<ICameraControlStringMenu const*>(&control) != nullptr ||
           dynamic_cast<ICameraControlInt64Menu const*>(&control) != nullptr ||
           control.needsClassUpdate();
}

/// What was found against several assignments.
class Refusals
{
public:
    void add(Failure const& failure)
    {
        m_text += (m_text.empty() ? "" : "; ") + std::string(failure.what());
        m_status = std::max(m_status, failure.status());
    }

    void raise() const
    {
        if (!m_text.empty()) {
            throw Failure(m_status, m_text);
        }
    }

private:
    std::string m_text;
    ExitStatus m_status = CameraFailed; ///< Of those that differ, that the names are wrong.
};

void check(std::vector<Assignment> const& assignments, Refusals& refusals)
{
    bool othersActivated = false;
    for (Assignment const& assignment : assignments) {
        ICameraControl& control = *assignment.control;
        control.updateState();
        Refusal const byState =
            othersActivated ? refusalByNature(control) : refusalByState(control);
        Refusal const refusal = byState.empty() ? prepare(assignment).refusal : byState;
        if (!refusal.empty()) {
            refusals.add(notSet(control, refusal));
        }
        othersActivated = othersActivated || mayActivateOthers(control);
    }
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
        Write const write = prepare(assignment);
        refusal = write.refusal.empty() ? write.carryOut() : write.refusal;
    }
    if (!refusal.empty()) {
        throw notSet(control, refusal);
    }
}

void applyAll(ICamera const& camera, std::vector<std::string> const& texts)
{
    Refusals refusals;
    std::vector<Assignment> assignments;
    for (std::string const& text : texts) {
        try {
            assignments.push_back(parseAssignment(camera, text));
        } catch (Failure const& failure) {
            refusals.add(failure);
        }
    }
    check(assignments, refusals);
    refusals.raise();
    std::for_each(assignments.begin(), assignments.end(), apply);
}

} // namespace Iacq
