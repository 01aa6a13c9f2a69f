// SPDX-License-Identifier: MIT
#pragma once

#include "session/Camera.h"
#include "session/Control.h"
#include "session/Error.h"

/// Sets a control to something else than it has; false when it refuses.
inline bool change(ImageAcquisition::Session::Control const& control)
{
    using namespace ImageAcquisition::Session;
    try {
        switch (control.type()) {
        case ControlType::Switch:
            control.set(control.number() == 0);
            return true;
        case ControlType::Menu:
            control.set(control.number() == 0 ? 1 : 0);
            return true;
        case ControlType::Number:
            // Of 64 bits, whose range is not told: it could not be set back.
            if (control.minimum() == control.maximum()) {
                return false;
            }
            control.set(control.number() == control.maximum() ? control.minimum()
                                                              : control.maximum());
            return true;
        case ControlType::BitMask:
            control.set(control.number() ^ 4);
            return true;
        case ControlType::Text:
            control.set(control.value().text() == "some" ? "more" : "some");
            return true;
        default:
            return false;
        }
    } catch (Error const&) {
        return false;
    }
}

/// Changes every control that lets itself be changed; those behind an automatic once it is off.
inline int changeAll(ImageAcquisition::Session::Camera const& camera)
{
    int changed = 0;
    std::vector<ImageAcquisition::Session::Control> refused;
    for (auto const& control : camera.controls()) {
        if (change(control)) {
            ++changed;
        } else {
            refused.push_back(control);
        }
    }
    for (auto const& control : refused) {
        changed += change(control) ? 1 : 0;
    }
    return changed;
}
