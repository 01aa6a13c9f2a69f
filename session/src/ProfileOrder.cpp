// SPDX-License-Identifier: MIT
#include "ProfileOrder.h"

#include "session/Error.h"

#include <IBlockingCamera.h>
#include <ICameraControl.h>

namespace ImageAcquisition::Session
{

namespace
{

using Getter = ICameraControl* (ICamera::*)() const;

constexpr Getter automatics[] = {&ICamera::autoContrastBrightnessControl,
                                 &ICamera::autoExposureControl,
                                 &ICamera::autoFocusControl,
                                 &ICamera::autoGammaControl,
                                 &ICamera::autoHueControl,
                                 &ICamera::autoSaturationControl,
                                 &ICamera::autoSharpnessControl,
                                 &ICamera::autoWhiteBalanceControl};

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
    ICamera const& interface = camera.interface();
    for (Getter const getter : automatics) {
        ICameraControl const* const control = (interface.*getter)();
        if (control != interface.invalidControl()) {
            m_automatics.insert(control->name());
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
