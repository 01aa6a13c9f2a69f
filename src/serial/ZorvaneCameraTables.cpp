// SPDX-License-Identifier: MIT
// The names, the table and the menus stand in one file: the table and the menus are made of the
// names' pointers when the library is loaded, and only within a file is the order certain.
#include "control/ZorvaneExtensionUnit.h"
#include "serial/ZorvaneCamera.h"

namespace ImageAcquisition
{

namespace
{

using Control = ICameraControl;

using Unit = ZorvaneExtensionUnit;

// The entities of the camera's video function.
constexpr int cameraTerminal = 1;
constexpr int processingUnit = 2;
constexpr int extensionUnit = 3;

std::vector<ZorvaneCameraControlStringMenu::IndexSetting>
settingsOf(std::vector<Unit::MenuItem> const& items)
{
    std::vector<ZorvaneCameraControlStringMenu::IndexSetting> settings;
    settings.reserve(items.size());
    for (Unit::MenuItem const& item : items) {
        settings.push_back({static_cast<int>(item.value), item.name});
    }
    return settings;
}

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
    {_focusControl, UVC_CT_FOCUS_ABSOLUTE_CONTROL, cameraTerminal, Control::Int32, Control::Focus,
     false, 0, 0},
    {_autoFocusControl, UVC_CT_FOCUS_AUTO_CONTROL, cameraTerminal, Control::Boolean, Control::Focus,
     false, 0, 0},
    {_focusMinControl, Unit::FocusRangeSelector, extensionUnit, Control::Int32, Control::Focus,
     true, 0, 2},
    {_focusMaxControl, Unit::FocusRangeSelector, extensionUnit, Control::Int32, Control::Focus,
     true, 2, 2},
    {_focusStepControl, Unit::FocusRangeSelector, extensionUnit, Control::Int32, Control::Focus,
     true, 4, 2},
    {_focusSensitivityControl, Unit::AutoFocusSensitivitySelector, extensionUnit, Control::Int32,
     Control::Focus, false, 0, 0},
    {_focusStrategyControl, Unit::FocusStrategySelector, extensionUnit, Control::StringMenu,
     Control::Focus, false, 0, 0},
    {_lightModeControl, Unit::LightModeSelector, extensionUnit, Control::StringMenu,
     Control::Lighting, false, 0, 0},
    {_lightIntensityControl, Unit::LightIntensitySelector, extensionUnit, Control::Int32,
     Control::Lighting, false, 0, 0},
    {_temperatureControl, Unit::TemperatureSelector, extensionUnit, Control::Int32,
     Control::Lighting, false, 0, 0},
    {_autoExposureControl, UVC_CT_AE_MODE_CONTROL, cameraTerminal, Control::StringMenu,
     Control::ImageQuality, false, 0, 0},
    {_exposureSensitivityControl, Unit::AutoExposureSensitivitySelector, extensionUnit,
     Control::Int32, Control::ImageQuality, false, 0, 0},
    {_exposureAbsoluteControl, UVC_CT_EXPOSURE_TIME_ABSOLUTE_CONTROL, cameraTerminal,
     Control::Int32, Control::ImageQuality, false, 0, 0},
    {_gainControl, UVC_PU_GAIN_CONTROL, processingUnit, Control::Int32, Control::ImageQuality,
     false, 0, 0},
    {_autoContrastBrightnessControl, Unit::AutoContrastAndBrightnessSelector, extensionUnit,
     Control::Boolean, Control::Advanced, false, 0, 0},
    {_brightnessControl, UVC_PU_BRIGHTNESS_CONTROL, processingUnit, Control::Int32,
     Control::Advanced, false, 0, 0},
    {_contrastControl, UVC_PU_CONTRAST_CONTROL, processingUnit, Control::Int32, Control::Advanced,
     false, 0, 0},
    {_autoHueControl, UVC_PU_HUE_AUTO_CONTROL, processingUnit, Control::Boolean, Control::Advanced,
     false, 0, 0},
    {_hueControl, UVC_PU_HUE_CONTROL, processingUnit, Control::Int32, Control::Advanced, false, 0,
     0},
    {_autoSaturationControl, Unit::AutoSaturationSelector, extensionUnit, Control::Boolean,
     Control::ImageQuality, false, 0, 0},
    {_saturationControl, UVC_PU_SATURATION_CONTROL, processingUnit, Control::Int32,
     Control::ImageQuality, false, 0, 0},
    {_autoSharpnessControl, Unit::AutoSharpnessSelector, extensionUnit, Control::Boolean,
     Control::ImageQuality, false, 0, 0},
    {_sharpnessControl, UVC_PU_SHARPNESS_CONTROL, processingUnit, Control::Int32,
     Control::ImageQuality, false, 0, 0},
    {_gammaControl, UVC_PU_GAMMA_CONTROL, processingUnit, Control::Int32, Control::Advanced, false,
     0, 0},
    {_autoGammaControl, Unit::AutoGammaSelector, extensionUnit, Control::Boolean, Control::Advanced,
     false, 0, 0},
    {_triggerAutoControl, Unit::TriggerAutoControlsSelector, extensionUnit, Control::Int32,
     Control::AutoControl, false, 0, 0},
    {_cameraErrorControl, Unit::ErrorStatusSelector, extensionUnit, Control::Int32, Control::Status,
     false, 0, 0},
    {_keepAliveControl, Unit::KeepAliveSelector, extensionUnit, Control::Boolean,
     Control::Connection, false, 0, 0},
    {_windowSelectedControl, Unit::FocusWindowSelectSelector, extensionUnit, Control::Int32,
     Control::Focus, false, 0, 0},
    {_focusWindowX1Control, Unit::FocusWindow1Selector, extensionUnit, Control::Int32,
     Control::Focus, true, 0, 2},
    {_focusWindowX2Control, Unit::FocusWindow1Selector, extensionUnit, Control::Int32,
     Control::Focus, true, 2, 2},
    {_focusWindowY1Control, Unit::FocusWindow1Selector, extensionUnit, Control::Int32,
     Control::Focus, true, 4, 2},
    {_focusWindowY2Control, Unit::FocusWindow1Selector, extensionUnit, Control::Int32,
     Control::Focus, true, 6, 2},
    {_lockAutoControlsControl, Unit::LockAutoControlsSelector, extensionUnit, Control::Int32,
     Control::AutoControl, false, 0, 0},
    {_autoWhiteBalanceControl, UVC_PU_WHITE_BALANCE_TEMPERATURE_AUTO_CONTROL, processingUnit,
     Control::Boolean, Control::ImageQuality, false, 0, 0},
    {_whiteBalanceTempControl, UVC_PU_WHITE_BALANCE_TEMPERATURE_CONTROL, processingUnit,
     Control::Int32, Control::ImageQuality, false, 0, 0},
    {_whiteBalanceRedControl, Unit::CustomWhiteBalanceSelector, extensionUnit, Control::Int32,
     Control::ImageQuality, true, 0, 2},
    {_whiteBalanceGreenControl, Unit::CustomWhiteBalanceSelector, extensionUnit, Control::Int32,
     Control::ImageQuality, true, 2, 2},
    {_whiteBalanceBlueControl, Unit::CustomWhiteBalanceSelector, extensionUnit, Control::Int32,
     Control::ImageQuality, true, 4, 2},
};

ZorvaneCamera::MenuSettings const ZorvaneCamera::_stringMenuSettings = {
    {_autoExposureControl, {{2, "Auto"}, {1, "Manual"}}},
    {_focusStrategyControl, settingsOf(Unit::focusStrategyItems())},
    {_lightModeControl, settingsOf(Unit::lightModeItems())},
};

} // namespace ImageAcquisition
