// SPDX-License-Identifier: MIT
// The names, the table and the menus stand in one file: the table and the menus are made of the
// names' pointers when the library is loaded, and only within a file is the order certain.
#include "serial/ZorvaneCamera.h"

namespace ImageAcquisition
{

namespace
{

using Control = ICameraControl;

constexpr int cameraTerminal = 1;
constexpr int processingUnit = 2;
constexpr int extensionUnit = 3;

} // namespace

char const* const ZorvaneCamera::_focusControl = "Focus";
char const* const ZorvaneCamera::_autoFocusControl = "Auto Focus";
char const* const ZorvaneCamera::_focusMinControl = "Focus Min";
char const* const ZorvaneCamera::_focusMaxControl = "Focus Max";
char const* const ZorvaneCamera::_focusStepControl = "Focus Step";
char const* const ZorvaneCamera::_focusSensitivityControl = "Focus Sensitivity";
char const* const ZorvaneCamera::_focusStrategyControl = "Focus Strategy";
char const* const ZorvaneCamera::_lightModeControl = "Lighting Mode";
char const* const ZorvaneCamera::_lightIntensityControl = "Lighting Value";
char const* const ZorvaneCamera::_temperatureControl = "Temperature (C)";
char const* const ZorvaneCamera::_autoExposureControl = "Auto Exposure";
char const* const ZorvaneCamera::_exposureSensitivityControl = "Exposure Sensitivity";
char const* const ZorvaneCamera::_exposureAbsoluteControl = "Exposure";
char const* const ZorvaneCamera::_gainControl = "Gain";
char const* const ZorvaneCamera::_autoContrastBrightnessControl = "Disable Contrast/Brightness";
char const* const ZorvaneCamera::_brightnessControl = "Brightness";
char const* const ZorvaneCamera::_contrastControl = "Contrast";
char const* const ZorvaneCamera::_autoHueControl = "Disable Hue";
char const* const ZorvaneCamera::_hueControl = "Hue";
char const* const ZorvaneCamera::_autoSaturationControl = "Disable Saturation";
char const* const ZorvaneCamera::_saturationControl = "Saturation";
char const* const ZorvaneCamera::_autoSharpnessControl = "Disable sharpness";
char const* const ZorvaneCamera::_sharpnessControl = "Sharpness";
char const* const ZorvaneCamera::_gammaControl = "Gamma";
char const* const ZorvaneCamera::_autoGammaControl = "Disable Gamma";
char const* const ZorvaneCamera::_triggerAutoControl = "Trigger Auto Controls";
char const* const ZorvaneCamera::_cameraErrorControl = "Error Status";
char const* const ZorvaneCamera::_keepAliveControl = "Keep Alive";
char const* const ZorvaneCamera::_windowSelectedControl = "Focus Window Selected";
char const* const ZorvaneCamera::_focusWindowX1Control = "Focus Window X1";
char const* const ZorvaneCamera::_focusWindowX2Control = "Focus Window X2";
char const* const ZorvaneCamera::_focusWindowY1Control = "Focus Window Y1";
char const* const ZorvaneCamera::_focusWindowY2Control = "Focus Window Y2";
char const* const ZorvaneCamera::_lockAutoControlsControl = "Lock Auto Controls";
char const* const ZorvaneCamera::_autoWhiteBalanceControl = "Auto White Balance";
char const* const ZorvaneCamera::_whiteBalanceTempControl = "White Balance Temperature";
char const* const ZorvaneCamera::_whiteBalanceRedControl = "White Balance, Red (custom)";
char const* const ZorvaneCamera::_whiteBalanceGreenControl = "White Balance, Green (custom)";
char const* const ZorvaneCamera::_whiteBalanceBlueControl = "White Balance, Blue (custom)";

// Selector, unit, type, family; for a field of a larger control its first byte and its length.
std::vector<ZorvaneCamera::ControlStruct> const ZorvaneCamera::_controlMap = {
    {_focusControl, 6, cameraTerminal, Control::Int32, Control::Focus, false, 0, 0},
    {_autoFocusControl, 8, cameraTerminal, Control::Boolean, Control::Focus, false, 0, 0},
    {_focusMinControl, 9, extensionUnit, Control::Int32, Control::Focus, true, 0, 2},
    {_focusMaxControl, 9, extensionUnit, Control::Int32, Control::Focus, true, 2, 2},
    {_focusStepControl, 9, extensionUnit, Control::Int32, Control::Focus, true, 4, 2},
    {_focusSensitivityControl, 11, extensionUnit, Control::Int32, Control::Focus, false, 0, 0},
    {_focusStrategyControl, 15, extensionUnit, Control::StringMenu, Control::Focus, false, 0, 0},
    {_lightModeControl, 1, extensionUnit, Control::StringMenu, Control::Lighting, false, 0, 0},
    {_lightIntensityControl, 2, extensionUnit, Control::Int32, Control::Lighting, false, 0, 0},
    {_temperatureControl, 4, extensionUnit, Control::Int32, Control::Lighting, false, 0, 0},
    {_autoExposureControl, 2, cameraTerminal, Control::StringMenu, Control::ImageQuality, false, 0,
     0},
    {_exposureSensitivityControl, 24, extensionUnit, Control::Int32, Control::ImageQuality, false,
     0, 0},
    {_exposureAbsoluteControl, 4, cameraTerminal, Control::Int32, Control::ImageQuality, false, 0,
     0},
    {_gainControl, 4, processingUnit, Control::Int32, Control::ImageQuality, false, 0, 0},
    {_autoContrastBrightnessControl, 16, extensionUnit, Control::Boolean, Control::Advanced, false,
     0, 0},
    {_brightnessControl, 2, processingUnit, Control::Int32, Control::Advanced, false, 0, 0},
    {_contrastControl, 3, processingUnit, Control::Int32, Control::Advanced, false, 0, 0},
    {_autoHueControl, 16, processingUnit, Control::Boolean, Control::Advanced, false, 0, 0},
    {_hueControl, 6, processingUnit, Control::Int32, Control::Advanced, false, 0, 0},
    {_autoSaturationControl, 17, extensionUnit, Control::Boolean, Control::ImageQuality, false, 0,
     0},
    {_saturationControl, 7, processingUnit, Control::Int32, Control::ImageQuality, false, 0, 0},
    {_autoSharpnessControl, 18, extensionUnit, Control::Boolean, Control::ImageQuality, false, 0,
     0},
    {_sharpnessControl, 8, processingUnit, Control::Int32, Control::ImageQuality, false, 0, 0},
    {_gammaControl, 9, processingUnit, Control::Int32, Control::Advanced, false, 0, 0},
    {_autoGammaControl, 25, extensionUnit, Control::Boolean, Control::Advanced, false, 0, 0},
    {_triggerAutoControl, 5, extensionUnit, Control::Int32, Control::AutoControl, false, 0, 0},
    {_cameraErrorControl, 3, extensionUnit, Control::Int32, Control::Status, false, 0, 0},
    {_keepAliveControl, 6, extensionUnit, Control::Boolean, Control::Connection, false, 0, 0},
    {_windowSelectedControl, 8, extensionUnit, Control::Int32, Control::Focus, false, 0, 0},
    {_focusWindowX1Control, 20, extensionUnit, Control::Int32, Control::Focus, true, 0, 2},
    {_focusWindowX2Control, 20, extensionUnit, Control::Int32, Control::Focus, true, 2, 2},
    {_focusWindowY1Control, 20, extensionUnit, Control::Int32, Control::Focus, true, 4, 2},
    {_focusWindowY2Control, 20, extensionUnit, Control::Int32, Control::Focus, true, 6, 2},
    {_lockAutoControlsControl, 7, extensionUnit, Control::Int32, Control::AutoControl, false, 0, 0},
    {_autoWhiteBalanceControl, 11, processingUnit, Control::Boolean, Control::ImageQuality, false,
     0, 0},
    {_whiteBalanceTempControl, 10, processingUnit, Control::Int32, Control::ImageQuality, false, 0,
     0},
    {_whiteBalanceRedControl, 10, extensionUnit, Control::Int32, Control::ImageQuality, true, 0, 2},
    {_whiteBalanceGreenControl, 10, extensionUnit, Control::Int32, Control::ImageQuality, true, 2,
     2},
    {_whiteBalanceBlueControl, 10, extensionUnit, Control::Int32, Control::ImageQuality, true, 4,
     2},
};

ZorvaneCamera::MenuSettings const ZorvaneCamera::_stringMenuSettings = {
    {_autoExposureControl, {{2, "Auto"}, {1, "Manual"}}},
    {_focusStrategyControl, {{0, "Smart Scan All"}, {1, "Bisection"}, {2, "Smart Scan Refocus"}}},
    {_lightModeControl, {{0, "Off"}, {3, "Continuous"}}},
};

} // namespace ImageAcquisition
