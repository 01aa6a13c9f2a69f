// SPDX-License-Identifier: MIT
#include "serial/ZorvaneCamera.h"

#include <array>

namespace ImageAcquisition
{

namespace
{

/// How the table calls a named control, and whether only the vendor's cameras are asked for it.
struct Row
{
    char const* const& name;
    bool vendorOnly;
};

std::array<Row, namedControls> const rows = {{
    {ZorvaneCamera::_focusControl, false},                 // Focus
    {ZorvaneCamera::_autoFocusControl, false},             // AutoFocus
    {ZorvaneCamera::_exposureAbsoluteControl, false},      // ExposureAbsolute
    {ZorvaneCamera::_autoExposureControl, false},          // AutoExposure
    {ZorvaneCamera::_gainControl, false},                  // Gain
    {ZorvaneCamera::_autoWhiteBalanceControl, false},      // AutoWhiteBalance
    {ZorvaneCamera::_whiteBalanceTempControl, true},       // WhiteBalanceTemp
    {ZorvaneCamera::_brightnessControl, false},            // Brightness
    {ZorvaneCamera::_contrastControl, true},               // Contrast
    {ZorvaneCamera::_saturationControl, true},             // Saturation
    {ZorvaneCamera::_hueControl, true},                    // Hue
    {ZorvaneCamera::_autoHueControl, false},               // AutoHue
    {ZorvaneCamera::_gammaControl, true},                  // Gamma
    {ZorvaneCamera::_sharpnessControl, true},              // Sharpness
    {ZorvaneCamera::_lightModeControl, true},              // LightMode
    {ZorvaneCamera::_lightIntensityControl, true},         // LightIntensity
    {ZorvaneCamera::_cameraErrorControl, true},            // CameraError
    {ZorvaneCamera::_triggerAutoControl, true},            // TriggerAuto
    {ZorvaneCamera::_autoContrastBrightnessControl, true}, // AutoContrastBrightness
    {ZorvaneCamera::_autoSaturationControl, true},         // AutoSaturation
    {ZorvaneCamera::_autoSharpnessControl, true},          // AutoSharpness
    {ZorvaneCamera::_keepAliveControl, true},              // KeepAlive
    {ZorvaneCamera::_focusWindowX1Control, true},          // FocusWindowX1
    {ZorvaneCamera::_focusWindowX2Control, true},          // FocusWindowX2
    {ZorvaneCamera::_focusWindowY1Control, true},          // FocusWindowY1
    {ZorvaneCamera::_focusWindowY2Control, true},          // FocusWindowY2
    {ZorvaneCamera::_lockAutoControlsControl, true},       // LockAutoControls
    {ZorvaneCamera::_windowSelectedControl, true},         // WindowSelected
    {ZorvaneCamera::_focusMinControl, true},               // FocusMin
    {ZorvaneCamera::_focusMaxControl, true},               // FocusMax
    {ZorvaneCamera::_focusStepControl, true},              // FocusStep
    {ZorvaneCamera::_focusSensitivityControl, true},       // FocusSensitivity
    {ZorvaneCamera::_focusStrategyControl, true},          // FocusStrategy
    {ZorvaneCamera::_exposureSensitivityControl, true},    // ExposureSensitivity
    {ZorvaneCamera::_autoGammaControl, true},              // AutoGamma
}};

} // namespace

ICameraControl* ZorvaneCamera::namedControl(NamedControl which) const
{
    Row const& row = rows.at(static_cast<std::size_t>(which));
    return row.vendorOnly && !device()->isaZorvaneDevice() ? invalidControl() : control(row.name);
}

} // namespace ImageAcquisition
