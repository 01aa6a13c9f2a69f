// SPDX-License-Identifier: MIT
#include "camera/Camera.h"
#include "control/ZorvaneExtensionUnit.h"

#include <linux/videodev2.h>

#include <array>

namespace ImageAcquisition
{

namespace
{

using Unit = ZorvaneExtensionUnit;

/// How a driver calls a named control. Another maker's driver may use the private ids for
/// something else.
struct Row
{
    unsigned int id;
    bool vendorOnly;
};

std::array<Row, namedControls> const rows = {{
    {V4L2_CID_FOCUS_ABSOLUTE, false},            // Focus
    {V4L2_CID_FOCUS_AUTO, false},                // AutoFocus
    {V4L2_CID_EXPOSURE_ABSOLUTE, false},         // ExposureAbsolute
    {V4L2_CID_EXPOSURE_AUTO, false},             // AutoExposure
    {V4L2_CID_GAIN, false},                      // Gain
    {V4L2_CID_AUTO_WHITE_BALANCE, false},        // AutoWhiteBalance
    {V4L2_CID_WHITE_BALANCE_TEMPERATURE, false}, // WhiteBalanceTemp
    {V4L2_CID_BRIGHTNESS, false},                // Brightness
    {V4L2_CID_CONTRAST, false},                  // Contrast
    {V4L2_CID_SATURATION, false},                // Saturation
    {V4L2_CID_HUE, false},                       // Hue
    {V4L2_CID_HUE_AUTO, false},                  // AutoHue
    {V4L2_CID_GAMMA, false},                     // Gamma
    {V4L2_CID_SHARPNESS, false},                 // Sharpness
    {Unit::LightMode, true},                     // LightMode
    {Unit::LightIntensity, true},                // LightIntensity
    {Unit::ErrorStatus, true},                   // CameraError
    {Unit::TriggerAutoControls, true},           // TriggerAuto
    {Unit::AutoContrastAndBrightness, true},     // AutoContrastBrightness
    {Unit::AutoSaturation, true},                // AutoSaturation
    {Unit::AutoSharpness, true},                 // AutoSharpness
    {Unit::KeepAlive, true},                     // KeepAlive
    {Unit::FocusWindow1X1, true},                // FocusWindowX1
    {Unit::FocusWindow1X2, true},                // FocusWindowX2
    {Unit::FocusWindow1Y1, true},                // FocusWindowY1
    {Unit::FocusWindow1Y2, true},                // FocusWindowY2
    {Unit::LockAutoControls, true},              // LockAutoControls
    {Unit::FocusWindowSelect, true},             // WindowSelected
    {Unit::FocusRangeMin, true},                 // FocusMin
    {Unit::FocusRangeMax, true},                 // FocusMax
    {Unit::FocusRangeStep, true},                // FocusStep
    {Unit::AutoFocusSensitivity, true},          // FocusSensitivity
    {Unit::FocusStrategy, true},                 // FocusStrategy
    {Unit::AutoExposureSensitivity, true},       // ExposureSensitivity
    {Unit::AutoGamma, true},                     // AutoGamma
}};

} // namespace

ICameraControl* Camera::namedControl(NamedControl which) const
{
    Row const& row = rows.at(static_cast<std::size_t>(which));
    return row.vendorOnly && !m_device.isaZorvaneDevice() ? m_controls.invalid()
                                                          : controlById(row.id);
}

ICameraControl* Camera::focusControl() const
{
    return namedControl(NamedControl::Focus);
}

ICameraControl* Camera::autoFocusControl() const
{
    return namedControl(NamedControl::AutoFocus);
}

ICameraControl* Camera::exposureAbsoluteControl() const
{
    return namedControl(NamedControl::ExposureAbsolute);
}

ICameraControl* Camera::autoExposureControl() const
{
    return namedControl(NamedControl::AutoExposure);
}

ICameraControl* Camera::gainControl() const
{
    return namedControl(NamedControl::Gain);
}

ICameraControl* Camera::autoWhiteBalanceControl() const
{
    return namedControl(NamedControl::AutoWhiteBalance);
}

ICameraControl* Camera::whiteBalanceTempControl() const
{
    return namedControl(NamedControl::WhiteBalanceTemp);
}

ICameraControl* Camera::brightnessControl() const
{
    return namedControl(NamedControl::Brightness);
}

ICameraControl* Camera::contrastControl() const
{
    return namedControl(NamedControl::Contrast);
}

ICameraControl* Camera::saturationControl() const
{
    return namedControl(NamedControl::Saturation);
}

ICameraControl* Camera::hueControl() const
{
    return namedControl(NamedControl::Hue);
}

ICameraControl* Camera::autoHueControl() const
{
    return namedControl(NamedControl::AutoHue);
}

ICameraControl* Camera::gammaControl() const
{
    return namedControl(NamedControl::Gamma);
}

ICameraControl* Camera::sharpnessControl() const
{
    return namedControl(NamedControl::Sharpness);
}

ICameraControl* Camera::lightModeControl() const
{
    return namedControl(NamedControl::LightMode);
}

ICameraControl* Camera::lightIntensityControl() const
{
    return namedControl(NamedControl::LightIntensity);
}

ICameraControl* Camera::cameraErrorControl() const
{
    return namedControl(NamedControl::CameraError);
}

ICameraControl* Camera::triggerAutoControl() const
{
    return namedControl(NamedControl::TriggerAuto);
}

ICameraControl* Camera::autoContrastBrightnessControl() const
{
    return namedControl(NamedControl::AutoContrastBrightness);
}

ICameraControl* Camera::autoSaturationControl() const
{
    return namedControl(NamedControl::AutoSaturation);
}

ICameraControl* Camera::autoSharpnessControl() const
{
    return namedControl(NamedControl::AutoSharpness);
}

ICameraControl* Camera::keepAliveControl() const
{
    return namedControl(NamedControl::KeepAlive);
}

ICameraControl* Camera::focusWindowX1Control() const
{
    return namedControl(NamedControl::FocusWindowX1);
}

ICameraControl* Camera::focusWindowX2Control() const
{
    return namedControl(NamedControl::FocusWindowX2);
}

ICameraControl* Camera::focusWindowY1Control() const
{
    return namedControl(NamedControl::FocusWindowY1);
}

ICameraControl* Camera::focusWindowY2Control() const
{
    return namedControl(NamedControl::FocusWindowY2);
}

ICameraControl* Camera::lockAutoControlsControl() const
{
    return namedControl(NamedControl::LockAutoControls);
}

ICameraControl* Camera::windowSelectedControl() const
{
    return namedControl(NamedControl::WindowSelected);
}

ICameraControl* Camera::focusMinControl() const
{
    return namedControl(NamedControl::FocusMin);
}

ICameraControl* Camera::focusMaxControl() const
{
    return namedControl(NamedControl::FocusMax);
}

ICameraControl* Camera::focusStepControl() const
{
    return namedControl(NamedControl::FocusStep);
}

ICameraControl* Camera::focusSensitivityControl() const
{
    return namedControl(NamedControl::FocusSensitivity);
}

ICameraControl* Camera::focusStrategyControl() const
{
    return namedControl(NamedControl::FocusStrategy);
}

ICameraControl* Camera::exposureSensitivityControl() const
{
    return namedControl(NamedControl::ExposureSensitivity);
}

ICameraControl* Camera::autoGammaControl() const
{
    return namedControl(NamedControl::AutoGamma);
}

} // namespace ImageAcquisition
