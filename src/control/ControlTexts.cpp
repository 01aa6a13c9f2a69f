// SPDX-License-Identifier: MIT
#include "control/ControlTexts.h"

#include "control/ZorvaneExtensionUnit.h"

#include <linux/videodev2.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>

namespace ImageAcquisition
{

namespace
{

using Unit = ZorvaneExtensionUnit;

constexpr char const* typeTexts[] = {"UnknownType", "BitMask", "Boolean",   "Button",
                                     "Int32",       "Int64",   "Int64Menu", "UInt8",
                                     "UInt16",      "UInt32",  "String",    "StringMenu"};

// These name V4L2's control classes, not the families. Kept as they are: docs/behaviour.md,
// Controls.
constexpr char const* familyTexts[] = {"User",  "MPEG",     "Camera",       "FM Tx",
                                       "Flash", "JPEG",     "Image Source", "Image Proc",
                                       "FM Rx", "RF Tuner", "Detect",       "Unknown"};

struct FamilyRange
{
    unsigned int firstId;
    unsigned int lastId;
    ICameraControl::Family family;
};

constexpr FamilyRange families[] = {
    {V4L2_CID_BRIGHTNESS, V4L2_CID_SATURATION, ICameraControl::ImageQuality},
    {V4L2_CID_HUE, V4L2_CID_HUE, ICameraControl::Advanced},
    {V4L2_CID_AUTO_WHITE_BALANCE, V4L2_CID_AUTO_WHITE_BALANCE, ICameraControl::ImageQuality},
    {V4L2_CID_GAMMA, V4L2_CID_GAMMA, ICameraControl::Advanced},
    {V4L2_CID_GAIN, V4L2_CID_GAIN, ICameraControl::Advanced},
    {V4L2_CID_HUE_AUTO, V4L2_CID_HUE_AUTO, ICameraControl::Advanced},
    {V4L2_CID_WHITE_BALANCE_TEMPERATURE, V4L2_CID_SHARPNESS, ICameraControl::ImageQuality},
    {V4L2_CID_EXPOSURE_AUTO, V4L2_CID_EXPOSURE_ABSOLUTE, ICameraControl::ImageQuality},
    {V4L2_CID_FOCUS_ABSOLUTE, V4L2_CID_FOCUS_ABSOLUTE, ICameraControl::Focus},
    {V4L2_CID_FOCUS_AUTO, V4L2_CID_FOCUS_AUTO, ICameraControl::Focus},
    {Unit::LightMode, Unit::LightIntensity, ICameraControl::Lighting},
    {Unit::ErrorStatus, Unit::ErrorStatus, ICameraControl::Status},
    {Unit::Temperature, Unit::Temperature, ICameraControl::Lighting},
    {Unit::TriggerAutoControls, Unit::TriggerAutoControls, ICameraControl::AutoControl},
    {Unit::AutoContrastAndBrightness, Unit::AutoSharpness, ICameraControl::ImageQuality},
    {Unit::KeepAlive, Unit::KeepAlive, ICameraControl::Connection},
    {Unit::FocusWindow1X1, Unit::FocusWindow1Y2, ICameraControl::Focus},
    {Unit::LockAutoControls, Unit::LockAutoControls, ICameraControl::AutoControl},
    {Unit::FocusWindowSelect, Unit::FocusRangeStep, ICameraControl::Focus},
    {Unit::CustomWhiteBalanceRed, Unit::CustomWhiteBalanceGreen, ICameraControl::ImageQuality},
    {Unit::AutoFocusSensitivity, Unit::AutoFocusSensitivity, ICameraControl::Focus},
    {Unit::DebugImageMode, Unit::DebugImageMode, ICameraControl::Debug},
    {Unit::ImagePixelRatio, Unit::ImageTilt, ICameraControl::ImageGeometry},
    {Unit::FocusStrategy, Unit::FocusStrategy, ICameraControl::Focus},
    {Unit::AutoExposureSensitivity, Unit::AutoExposureSensitivity, ICameraControl::ImageQuality},
    {Unit::AutoGamma, Unit::AutoGamma, ICameraControl::Advanced},
};

} // namespace

char const* controlTypeText(ICameraControl::Type type)
{
    auto const index = static_cast<unsigned int>(type);
    return index < std::size(typeTexts) ? typeTexts[index] : typeTexts[0];
}

char const* controlFamilyText(ICameraControl::Family family)
{
    auto const index = static_cast<unsigned int>(family);
    return index < std::size(familyTexts) ? familyTexts[index] : "Unknown";
}

ICameraControl::Family controlFamilyOf(unsigned int id)
{
    auto const found =
        std::find_if(std::begin(families), std::end(families), [id](FamilyRange const& range) {
            return id >= range.firstId && id <= range.lastId;
        });
    return found == std::end(families) ? ICameraControl::Unknown : found->family;
}

} // namespace ImageAcquisition
