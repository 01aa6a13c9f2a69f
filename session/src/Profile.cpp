// SPDX-License-Identifier: MIT
#include "session/Profile.h"

#include "ProfileOrder.h"

#include "session/Camera.h"
#include "session/Error.h"

#include <algorithm>
#include <optional>
#include <set>

namespace ImageAcquisition::Session
{

namespace
{

/// Of a menu with two items of one label, the position.
ControlValue valueOf(Control const& control)
{
    ControlValue const value = control.value();
    std::vector<std::string> const items = control.items();
    return std::count(items.begin(), items.end(), value.text()) > 1 ? ControlValue(control.number())
                                                                    : value;
}

/// Nothing for a control that cannot be read, or not be set to what it has.
std::optional<ControlValue> valueToKeep(Control const& control)
{
    try {
        ControlValue const value = valueOf(control);
        return control.refusal(value).empty() ? std::optional(value) : std::nullopt;
    } catch (Error const& error) {
        if (error.kind() == ErrorKind::Unplugged) {
            throw;
        }
        return std::nullopt;
    }
}

} // namespace

Profile Profile::take(Camera const& camera)
{
    Profile profile;
    profile.m_camera = camera.found().text();
    profile.m_selection = camera.selection();
    ProfileOrder const order(camera);
    std::set<std::string> names;
    std::vector<std::pair<std::string, ControlValue>> governed;
    for (Control const& control : camera.controls()) {
        // By its name, only the first of several is found again.
        if (!names.insert(control.name()).second) {
            continue;
        }
        if (std::optional<ControlValue> const value = valueToKeep(control)) {
            auto& part = order.isAutomatic(control) ? profile.m_controls : governed;
            part.emplace_back(control.name(), *value);
        }
    }
    profile.m_controls.insert(profile.m_controls.end(), governed.begin(), governed.end());
    return profile;
}

void Profile::set(std::string const& name, ControlValue const& value)
{
    auto const known = std::find_if(m_controls.begin(), m_controls.end(),
                                    [&](auto const& control) { return control.first == name; });
    if (known == m_controls.end()) {
        m_controls.emplace_back(name, value);
    } else {
        known->second = value;
    }
}

} // namespace ImageAcquisition::Session
