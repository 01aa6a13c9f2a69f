// SPDX-License-Identifier: MIT
#include "SerialRows.h"

namespace
{

using ImageAcquisition::ICamera;

// clang-format off
SerialRows const rows = {{
    {"Focus", 6, 1, 4, 1, -1, 0, &ICamera::focusControl, false},
    {"Auto Focus", 8, 1, 2, 1, -1, 0, &ICamera::autoFocusControl, false},
    {"Focus Min", 9, 3, 4, 1, 0, 2, &ICamera::focusMinControl, true},
    {"Focus Max", 9, 3, 4, 1, 2, 2, &ICamera::focusMaxControl, true},
    {"Focus Step", 9, 3, 4, 1, 4, 2, &ICamera::focusStepControl, true},
    {"Focus Sensitivity", 11, 3, 4, 1, -1, 0, &ICamera::focusSensitivityControl, true},
    {"Focus Strategy", 15, 3, 11, 1, -1, 0, &ICamera::focusStrategyControl, true},
    {"Lighting Mode", 1, 3, 11, 32, -1, 0, &ICamera::lightModeControl, true},
    {"Lighting Value", 2, 3, 4, 32, -1, 0, &ICamera::lightIntensityControl, true},
    {"Temperature (C)", 4, 3, 4, 32, -1, 0, nullptr, false},
    {"Auto Exposure", 2, 1, 11, 8, -1, 0, &ICamera::autoExposureControl, false},
    {"Exposure Sensitivity", 24, 3, 4, 8, -1, 0, &ICamera::exposureSensitivityControl, true},
    {"Exposure", 4, 1, 4, 8, -1, 0, &ICamera::exposureAbsoluteControl, false},
    {"Gain", 4, 2, 4, 8, -1, 0, &ICamera::gainControl, false},
    {"Disable Contrast/Brightness", 16, 3, 2, 256, -1, 0, &ICamera::autoContrastBrightnessControl, true},
    {"Brightness", 2, 2, 4, 256, -1, 0, &ICamera::brightnessControl, false},
    {"Contrast", 3, 2, 4, 256, -1, 0, &ICamera::contrastControl, true},
    {"Disable Hue", 16, 2, 2, 256, -1, 0, &ICamera::autoHueControl, false},
    {"Hue", 6, 2, 4, 256, -1, 0, &ICamera::hueControl, true},
    {"Disable Saturation", 17, 3, 2, 8, -1, 0, &ICamera::autoSaturationControl, true},
    {"Saturation", 7, 2, 4, 8, -1, 0, &ICamera::saturationControl, true},
    {"Disable sharpness", 18, 3, 2, 8, -1, 0, &ICamera::autoSharpnessControl, true},
    {"Sharpness", 8, 2, 4, 8, -1, 0, &ICamera::sharpnessControl, true},
    {"Gamma", 9, 2, 4, 256, -1, 0, &ICamera::gammaControl, true},
    {"Disable Gamma", 25, 3, 2, 256, -1, 0, &ICamera::autoGammaControl, true},
    {"Trigger Auto Controls", 5, 3, 4, 2, -1, 0, &ICamera::triggerAutoControl, true},
    {"Error Status", 3, 3, 4, 128, -1, 0, &ICamera::cameraErrorControl, true},
    {"Keep Alive", 6, 3, 2, 64, -1, 0, &ICamera::keepAliveControl, true},
    {"Focus Window Selected", 8, 3, 4, 1, -1, 0, &ICamera::windowSelectedControl, true},
    {"Focus Window X1", 20, 3, 4, 1, 0, 2, &ICamera::focusWindowX1Control, true},
    {"Focus Window X2", 20, 3, 4, 1, 2, 2, &ICamera::focusWindowX2Control, true},
    {"Focus Window Y1", 20, 3, 4, 1, 4, 2, &ICamera::focusWindowY1Control, true},
    {"Focus Window Y2", 20, 3, 4, 1, 6, 2, &ICamera::focusWindowY2Control, true},
    {"Lock Auto Controls", 7, 3, 4, 2, -1, 0, &ICamera::lockAutoControlsControl, true},
    {"Auto White Balance", 11, 2, 2, 8, -1, 0, &ICamera::autoWhiteBalanceControl, false},
    {"White Balance Temperature", 10, 2, 4, 8, -1, 0, &ICamera::whiteBalanceTempControl, true},
    {"White Balance, Red (custom)", 10, 3, 4, 8, 0, 2, nullptr, false},
    {"White Balance, Green (custom)", 10, 3, 4, 8, 2, 2, nullptr, false},
    {"White Balance, Blue (custom)", 10, 3, 4, 8, 4, 2, nullptr, false},
}};
// clang-format on

} // namespace

SerialRows const& serialRows()
{
    return rows;
}
