// SPDX-License-Identifier: MIT
#include "Settings.h"

#include "ControlFinder.h"
#include "CurrentLayout.h"
#include "SelectionSearch.h"

#include "session/Error.h"

#include <algorithm>

namespace ImageAcquisition::Session
{

namespace
{

bool isToBeKept(Control const& control)
{
    ControlType const type = control.type();
    if (type == ControlType::Button || type == ControlType::Other) {
        return false;
    }
    ControlState const state = control.state();
    return !state.readOnly && !state.writeOnly && !state.disabled && !state.changesItself;
}

} // namespace

Settings::Settings(std::shared_ptr<OpenCamera> camera) : m_camera(std::move(camera))
{
    m_selection =
        m_camera->call([](auto const& present) { return currentLayout(*present).selection; });
    for (Control const& control : ControlFinder(m_camera).all()) {
        try {
            if (isToBeKept(control)) {
                m_controls.emplace_back(control.name(), control.value());
            }
        } catch (Error const&) {
            // What cannot be read is not known, and so not put back.
        }
    }
}

/// With what was set since.
Settings::Values Settings::present() const
{
    Values values = m_controls;
    for (auto const& set : m_camera->setControls()) {
        auto const known = std::find_if(values.begin(), values.end(), [&](auto const& value) {
            return value.first == set.first;
        });
        if (known == values.end()) {
            values.push_back(set);
        } else {
            known->second = set.second;
        }
    }
    return values;
}

void Settings::putBack() const
{
    if (!m_selection.format.empty()) {
        m_camera->call([&](auto const& connection) {
            return selectOn(*connection, m_selection, Match::Exact);
        });
    }
    Values values = present();
    ControlFinder const finder(m_camera);
    auto const isSet = [&](auto const& value) {
        try {
            finder.named(value.first).set(value.second);
            return true;
        } catch (Error const&) {
            return false;
        }
    };
    // Once more those that refused, for an automatic that governs them may have come after them.
    values.erase(std::remove_if(values.begin(), values.end(), isSet), values.end());
    std::for_each(values.begin(), values.end(), isSet);
}

} // namespace ImageAcquisition::Session
