// SPDX-License-Identifier: MIT
#include "ControlSetting.h"

#include "ControlFinder.h"
#include "ControlWriting.h"
#include "Failure.h"

#include <ICameraControlBoolean.h>
#include <ICameraControlInt64Menu.h>
#include <ICameraControlStringMenu.h>

#include <algorithm>

namespace Iacq
{

using ImageAcquisition::Session::press;
using ImageAcquisition::Session::Refusal;
using ImageAcquisition::Session::refusalByNature;
using ImageAcquisition::Session::refusalByState;
using ImageAcquisition::Session::Write;
using ImageAcquisition::Session::writeValue;

namespace
{

using namespace ImageAcquisition;

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

/// The control of this name, short name or purpose; null when there is none.
ICameraControl* lookUp(ICamera const& camera, std::string const& name)
{
    try {
        return Session::lookUpControl(camera, name);
    } catch (Session::Error const& error) {
        throw Failure(BadUsage, error.reason());
    }
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
