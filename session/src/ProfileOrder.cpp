// SPDX-License-Identifier: MIT
#include "ProfileOrder.h"

#include "session/Error.h"

namespace ImageAcquisition::Session
{

namespace
{

/// What each camera has them for, whatever their names.
constexpr char const* automatics[] = {
    "auto_contrast_brightness", "auto_exposure",  "auto_focus",        "auto_gamma", "auto_hue",
    "auto_saturation",          "auto_sharpness", "auto_white_balance"};

/// Whether the driver says that setting it may change others; of a silent one, that is not known.
bool changesOthers(Control const& control)
{
    try {
        return control.state().changesOthers;
    } catch (Error const& error) {
        if (error.kind() == ErrorKind::Unplugged) {
            throw;
        }
        return false;
    }
}

} // namespace

ProfileOrder::ProfileOrder(Camera const& camera)
{
    for (char const* const purpose : automatics) {
        try {
            m_automatics.insert(camera.control(purpose).name());
        } catch (Error const&) {
            // The camera has none.
        }
    }
}

bool ProfileOrder::isAutomatic(Control const& control) const
{
    if (control.type() != ControlType::Switch && control.type() != ControlType::Menu) {
        return false;
    }
    return m_automatics.count(control.name()) != 0 ||
           control.shortName().find("auto") != std::string::npos || changesOthers(control);
}

} // namespace ImageAcquisition::Session
