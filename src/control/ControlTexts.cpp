// SPDX-License-Identifier: MIT
#include "control/ControlTexts.h"

#include <linux/videodev2.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>

namespace ImageAcquisition
{

namespace
{

constexpr unsigned int privateBase = V4L2_CID_PRIVATE_BASE;

constexpr char const* typeTexts[] = {"UnknownType", "BitMask", "Boolean",   "Button",
                                     "Int32",       "Int64",   "Int64Menu", "UInt8",
                                     "UInt16",      "UInt32",  "String",    "StringMenu"};

// These name V4L2's control classes, not the families; programs compare them as they are.
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
    // The vendor's extension unit: light mode and intensity, error status, temperature, trigger.
    {privateBase + 0, privateBase + 1, ICameraControl::Lighting},
    {privateBase + 2, privateBase + 2, ICameraControl::Status},
    {privateBase + 3, privateBase + 3, ICameraControl::Lighting},
    {privateBase + 4, privateBase + 4, ICameraControl::AutoControl},
    // Contrast/brightness, saturation and sharpness, automatic; keep-alive.
    {privateBase + 5, privateBase + 7, ICameraControl::ImageQuality},
    {privateBase + 8, privateBase + 8, ICameraControl::Connection},
    // Focus window corners; lock; window and focus range.
    {privateBase + 9, privateBase + 12, ICameraControl::Focus},
    {privateBase + 13, privateBase + 13, ICameraControl::AutoControl},
    {privateBase + 14, privateBase + 17, ICameraControl::Focus},
    // Custom white balance; focus sensitivity; test pictures; pixel ratio, pan, tilt.
    {privateBase + 18, privateBase + 20, ICameraControl::ImageQuality},
    {privateBase + 21, privateBase + 21, ICameraControl::Focus},
    {privateBase + 22, privateBase + 22, ICameraControl::Debug},
    {privateBase + 23, privateBase + 25, ICameraControl::ImageGeometry},
    // Focus strategy; exposure sensitivity; gamma, automatic.
    {privateBase + 26, privateBase + 26, ICameraControl::Focus},
    {privateBase + 27, privateBase + 27, ICameraControl::ImageQuality},
    {privateBase + 28, privateBase + 28, ICameraControl::Advanced},
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
