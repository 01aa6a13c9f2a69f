// SPDX-License-Identifier: MIT
#include "serial/ZorvaneCamera.h"

namespace ImageAcquisition
{

ICameraControl* ZorvaneCamera::invalidControl() const
{
    return Camera::invalidControl();
}

ICameraControl* ZorvaneCamera::ownControl(char const* name) const
{
    return device()->isaZorvaneDevice() ? control(name) : invalidControl();
}

ICameraControl* ZorvaneCamera::focusControl() const
{
    return control(_focusControl);
}

ICameraControl* ZorvaneCamera::autoFocusControl() const
{
    return control(_autoFocusControl);
}

ICameraControl* ZorvaneCamera::focusMinControl() const
{
    return ownControl(_focusMinControl);
}

ICameraControl* ZorvaneCamera::focusMaxControl() const
{
    return ownControl(_focusMaxControl);
}

ICameraControl* ZorvaneCamera::focusStepControl() const
{
    return ownControl(_focusStepControl);
}

ICameraControl* ZorvaneCamera::focusSensitivityControl() const
{
    return ownControl(_focusSensitivityControl);
}

ICameraControl* ZorvaneCamera::focusStrategyControl() const
{
    return ownControl(_focusStrategyControl);
}

ICameraControl* ZorvaneCamera::lightModeControl() const
{
    return ownControl(_lightModeControl);
}

ICameraControl* ZorvaneCamera::lightIntensityControl() const
{
    return ownControl(_lightIntensityControl);
}

ICameraControl* ZorvaneCamera::autoExposureControl() const
{
    return control(_autoExposureControl);
}

ICameraControl* ZorvaneCamera::exposureSensitivityControl() const
{
    return ownControl(_exposureSensitivityControl);
}

ICameraControl* ZorvaneCamera::exposureAbsoluteControl() const
{
    return control(_exposureAbsoluteControl);
}

ICameraControl* ZorvaneCamera::gainControl() const
{
    return control(_gainControl);
}

ICameraControl* ZorvaneCamera::autoContrastBrightnessControl() const
{
    return ownControl(_autoContrastBrightnessControl);
}

ICameraControl* ZorvaneCamera::brightnessControl() const
{
    return control(_brightnessControl);
}

ICameraControl* ZorvaneCamera::contrastControl() const
{
    return ownControl(_contrastControl);
}

ICameraControl* ZorvaneCamera::autoHueControl() const
{
    return control(_autoHueControl);
}

ICameraControl* ZorvaneCamera::hueControl() const
{
    return ownControl(_hueControl);
}

ICameraControl* ZorvaneCamera::autoSaturationControl() const
{
    return ownControl(_autoSaturationControl);
}

ICameraControl* ZorvaneCamera::saturationControl() const
{
    return ownControl(_saturationControl);
}

ICameraControl* ZorvaneCamera::autoSharpnessControl() const
{
    return ownControl(_autoSharpnessControl);
}

ICameraControl* ZorvaneCamera::sharpnessControl() const
{
    return ownControl(_sharpnessControl);
}

ICameraControl* ZorvaneCamera::gammaControl() const
{
    return ownControl(_gammaControl);
}

ICameraControl* ZorvaneCamera::autoGammaControl() const
{
    return ownControl(_autoGammaControl);
}

ICameraControl* ZorvaneCamera::triggerAutoControl() const
{
    return ownControl(_triggerAutoControl);
}

ICameraControl* ZorvaneCamera::cameraErrorControl() const
{
    return ownControl(_cameraErrorControl);
}

ICameraControl* ZorvaneCamera::keepAliveControl() const
{
    return ownControl(_keepAliveControl);
}

ICameraControl* ZorvaneCamera::windowSelectedControl() const
{
    return ownControl(_windowSelectedControl);
}

ICameraControl* ZorvaneCamera::focusWindowX1Control() const
{
    return ownControl(_focusWindowX1Control);
}

ICameraControl* ZorvaneCamera::focusWindowX2Control() const
{
    return ownControl(_focusWindowX2Control);
}

ICameraControl* ZorvaneCamera::focusWindowY1Control() const
{
    return ownControl(_focusWindowY1Control);
}

ICameraControl* ZorvaneCamera::focusWindowY2Control() const
{
    return ownControl(_focusWindowY2Control);
}

ICameraControl* ZorvaneCamera::lockAutoControlsControl() const
{
    return ownControl(_lockAutoControlsControl);
}

ICameraControl* ZorvaneCamera::autoWhiteBalanceControl() const
{
    return control(_autoWhiteBalanceControl);
}

ICameraControl* ZorvaneCamera::whiteBalanceTempControl() const
{
    return ownControl(_whiteBalanceTempControl);
}

} // namespace ImageAcquisition
