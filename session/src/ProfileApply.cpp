// SPDX-License-Identifier: MIT
#include "Names.h"
#include "Parsing.h"
#include "ProfileOrder.h"
#include "SelectionSearch.h"

#include "session/Camera.h"
#include "session/Error.h"
#include "session/Profile.h"

#include <list>
#include <optional>

namespace ImageAcquisition::Session
{

namespace
{

using Result = ControlOutcome::Result;

/// What is unplugged ends everything; any other error is one control's.
void throwIfUnplugged(Error const& error)
{
    if (error.kind() == ErrorKind::Unplugged) {
        throw error;
    }
}

/// Whether a value that a person may have written is the camera's.
bool isSame(Control const& control, ControlValue const& wanted, ControlValue const& actual)
{
    if (actual == wanted) {
        return true;
    }
    if (auto const* const number = std::get_if<long long>(&wanted.content())) {
        return control.type() != ControlType::Text && control.number() == *number;
    }
    auto const* const text = std::get_if<std::string>(&wanted.content());
    if (text == nullptr) {
        return false;
    }
    switch (control.type()) {
    case ControlType::Menu:
        return equalIgnoringCase(*text, actual.text());
    case ControlType::Switch:
        return parseSwitch(*text) && actual == ControlValue(*parseSwitch(*text));
    default:
        return parseInteger(*text) && actual == ControlValue(*parseInteger(*text));
    }
}

/// A control of the profile, and what became of it so far.
class Entry
{
public:
    Entry(Camera const& camera, ProfileOrder const& order, std::string const& name,
          ControlValue const& wanted)
        : m_outcome{name, Result::Same, wanted, {}, {}, false}
    {
        try {
            m_control.emplace(camera.control(name));
            m_outcome.name = m_control->name();
            m_isAutomatic = order.isAutomatic(*m_control);
        } catch (Error const& error) {
            throwIfUnplugged(error);
            conclude(Result::Skipped, error.reason());
        }
    }

    bool isAutomatic() const { return m_isAutomatic; }
    ControlOutcome const& outcome() const { return m_outcome; }

    /// Asks what the camera has; of a control that was set, the result depends on it.
    void read()
    {
        if (!m_control || !readActual()) {
            return;
        }
        if (m_outcome.isMet) {
            conclude(m_wasSet == 0 ? Result::Same : Result::Set);
        } else if (m_wasSet != 0) {
            conclude(Result::Rounded, "the camera made " + m_outcome.actual + " of it");
        }
    }

    /// Sets it when it is not what is wanted. Returns whether it was, so that others may have
    /// changed.
    bool set()
    {
        read();
        if (!m_control || m_outcome.isMet || m_wasSet == mostTimes) {
            return false;
        }
        try {
            m_control->set(m_outcome.wanted);
        } catch (Error const& error) {
            throwIfUnplugged(error);
            conclude(resultOfRefusal(), error.reason());
            return false;
        }
        ++m_wasSet;
        m_outcome.isMet = !m_isReadable;
        conclude(Result::Set);
        return true;
    }

    /// Judges, and changes nothing.
    void judge()
    {
        read();
        if (!m_control || m_outcome.isMet) {
            return;
        }
        if (!m_isReadable) {
            conclude(Result::Skipped, "it cannot be read");
            return;
        }
        try {
            std::string const refusal = m_control->refusal(m_outcome.wanted);
            conclude(refusal.empty() ? Result::Set : resultOfRefusal(), refusal);
        } catch (Error const& error) {
            throwIfUnplugged(error);
            conclude(Result::Refused, error.reason());
        }
    }

private:
    /// One that was changed by another control's setting gets a second chance; one that the camera
    /// rounds is not set for ever.
    static constexpr int mostTimes = 2;

    void conclude(Result result, std::string const& reason = {})
    {
        m_outcome.result = result;
        m_outcome.reason = reason;
    }

    bool readActual()
    {
        try {
            ControlValue const actual = m_control->value();
            m_outcome.actual = actual.text();
            m_outcome.isMet = isSame(*m_control, m_outcome.wanted, actual);
            m_isReadable = true;
        } catch (Error const& error) {
            throwIfUnplugged(error);
            m_outcome.actual.clear();
            m_isReadable = false;
        }
        return m_isReadable;
    }

    /// Skipped, when its state forbids setting it whatever the value.
    Result resultOfRefusal() const
    {
        try {
            ControlState const state = m_control->state();
            return state.readOnly || state.inactive || state.disabled || state.grabbed
                       ? Result::Skipped
                       : Result::Refused;
        } catch (Error const& error) {
            throwIfUnplugged(error);
            return Result::Refused;
        }
    }

    ControlOutcome m_outcome;
    std::optional<Control> m_control;
    bool m_isAutomatic = false;
    bool m_isReadable = false;
    int m_wasSet = 0;
};

using Entries = std::list<Entry>;

/// Automatics first: they release, or take over, what the others set.
Entries entriesOf(Camera const& camera,
                  std::vector<std::pair<std::string, ControlValue>> const& controls)
{
    ProfileOrder const order(camera);
    Entries automatics;
    Entries others;
    for (auto const& [name, value] : controls) {
        Entries one;
        one.emplace_back(camera, order, name, value);
        Entries& part = one.front().isAutomatic() ? automatics : others;
        part.splice(part.end(), one);
    }
    automatics.splice(automatics.end(), others);
    return automatics;
}

bool setAll(Entries& entries)
{
    bool wasSet = false;
    for (Entry& entry : entries) {
        wasSet = entry.set() || wasSet;
    }
    return wasSet;
}

std::vector<ControlOutcome> outcomesOf(Entries const& entries)
{
    std::vector<ControlOutcome> outcomes;
    for (Entry const& entry : entries) {
        outcomes.push_back(entry.outcome());
    }
    return outcomes;
}

/// Empty when nothing that is wanted differs.
std::string differenceOf(Selection const& wanted, Selection const& actual)
{
    std::string parts;
    auto const add = [&parts](bool differs, char const* name) {
        parts += differs ? (parts.empty() ? "" : ", ") + std::string(name) : "";
    };
    add(!wanted.format.empty() && !isSameFormat(wanted.format, actual.format), "the format");
    add(wanted.width != 0 && (wanted.width != actual.width || wanted.height != actual.height),
        "the size");
    add(wanted.rate.isSaid() && !isSameRate(wanted.rate, actual.rate), "the rate");
    return parts.empty() ? parts : parts + " differs";
}

ProfileReport selectionReport(Camera const& camera, Selection const& wanted)
{
    Selection const actual = camera.selection();
    return {wanted, actual, differenceOf(wanted, actual), {}};
}

} // namespace

ProfileReport Profile::compare(Camera const& camera) const
{
    ProfileReport report = selectionReport(camera, m_selection);
    Entries entries = entriesOf(camera, m_controls);
    for (Entry& entry : entries) {
        entry.judge();
    }
    report.controls = outcomesOf(entries);
    return report;
}

ProfileReport Profile::apply(Camera& camera) const
{
    std::string refusal;
    if (!selectionReport(camera, m_selection).selectionReason.empty()) {
        try {
            camera.select(m_selection);
        } catch (Error const& error) {
            throwIfUnplugged(error);
            if (error.kind() == ErrorKind::Busy) {
                throw;
            }
            refusal = error.reason();
        }
    }
    Entries entries = entriesOf(camera, m_controls);
    // What was inactive or refused may be possible now, and what was set may have been changed.
    while (setAll(entries)) {
    }
    ProfileReport report = selectionReport(camera, m_selection);
    if (!report.selectionReason.empty() && !refusal.empty()) {
        report.selectionReason = refusal;
    }
    report.controls = outcomesOf(entries);
    return report;
}

} // namespace ImageAcquisition::Session
