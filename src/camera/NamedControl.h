// SPDX-License-Identifier: MIT
#pragma once

namespace ImageAcquisition
{

/// The controls that a camera has a function for.
enum class NamedControl {
    Focus,
    AutoFocus,
    ExposureAbsolute,
    AutoExposure,
    Gain,
    AutoWhiteBalance,
    WhiteBalanceTemp,
    Brightness,
    Contrast,
    Saturation,
    Hue,
    AutoHue,
    Gamma,
    Sharpness,
    LightMode,
    LightIntensity,
    CameraError,
    TriggerAuto,
    AutoContrastBrightness,
    AutoSaturation,
    AutoSharpness,
    KeepAlive,
    FocusWindowX1,
    FocusWindowX2,
    FocusWindowY1,
    FocusWindowY2,
    LockAutoControls,
    WindowSelected,
    FocusMin,
    FocusMax,
    FocusStep,
    FocusSensitivity,
    FocusStrategy,
    ExposureSensitivity,
    AutoGamma
};

/// So many.
constexpr int namedControls = static_cast<int>(NamedControl::AutoGamma) + 1;

} // namespace ImageAcquisition
