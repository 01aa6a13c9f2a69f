// SPDX-License-Identifier: MIT
#include "control/ZorvaneExtensionUnit.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iterator>

namespace ImageAcquisition
{

namespace
{

using Unit = ZorvaneExtensionUnit;

/// How a control shows in V4L2, and how its bits are to be read.
struct Kind
{
    v4l2_ctrl_type v4l2Type;
    unsigned int dataType;
};

constexpr Kind menu{V4L2_CTRL_TYPE_MENU, UVC_CTRL_DATA_TYPE_ENUM};
constexpr Kind boolean{V4L2_CTRL_TYPE_BOOLEAN, UVC_CTRL_DATA_TYPE_BOOLEAN};
constexpr Kind raw{V4L2_CTRL_TYPE_INTEGER, UVC_CTRL_DATA_TYPE_RAW};
constexpr Kind unsignedNumber{V4L2_CTRL_TYPE_INTEGER, UVC_CTRL_DATA_TYPE_UNSIGNED};
constexpr Kind signedNumber{V4L2_CTRL_TYPE_INTEGER, UVC_CTRL_DATA_TYPE_SIGNED};

using Items = std::vector<Unit::MenuItem>;

Items noItems()
{
    return {};
}

Items debugImageModeItems()
{
    return {{0, "Normal"},
            {1, "Vertical Lines"},
            {2, "Random, noise"},
            {3, "Colored Squares"},
            {4, "Black"}};
}

Items imagePixelRatioItems()
{
    return {{0, "Full View"}, {1, "640p (640x480)"}, {2, "640p (1280x960)"}};
}

struct Row
{
    Unit::ExtensionUnitId id;
    char const* name;
    Unit::ExtensionUnitSelector selector;
    unsigned char sizeInBits;
    unsigned char offsetInBits;
    Kind kind;
    Items (*items)();
};

// The custom white-balance fields lie in the order red, green, blue, though their ids do not.
constexpr Row rows[] = {
    {Unit::LightMode, "Light Mode", Unit::LightModeSelector, 8, 0, menu, Unit::lightModeItems},
    {Unit::LightIntensity, "Light Intensity", Unit::LightIntensitySelector, 16, 0, raw, noItems},
    {Unit::ErrorStatus, "Error Status", Unit::ErrorStatusSelector, 32, 0, raw, noItems},
    {Unit::Temperature, "Temperature (C)", Unit::TemperatureSelector, 16, 0, raw, noItems},
    {Unit::TriggerAutoControls, "Trigger Auto Controls", Unit::TriggerAutoControlsSelector, 32, 0,
     raw, noItems},
    {Unit::AutoContrastAndBrightness, "Contrast/Brightness (Auto)",
     Unit::AutoContrastAndBrightnessSelector, 8, 0, boolean, noItems},
    {Unit::AutoSaturation, "Saturation (Auto)", Unit::AutoSaturationSelector, 8, 0, boolean,
     noItems},
    {Unit::AutoSharpness, "Sharpness (Auto)", Unit::AutoSharpnessSelector, 8, 0, boolean, noItems},
    {Unit::KeepAlive, "Keep Alive", Unit::KeepAliveSelector, 8, 0, boolean, noItems},
    {Unit::FocusWindow1X1, "Window 1 x1 (Focus)", Unit::FocusWindow1Selector, 16, 0, unsignedNumber,
     noItems},
    {Unit::FocusWindow1X2, "Window 1 x2 (Focus)", Unit::FocusWindow1Selector, 16, 16,
     unsignedNumber, noItems},
    {Unit::FocusWindow1Y1, "Window 1 y1 (Focus)", Unit::FocusWindow1Selector, 16, 32,
     unsignedNumber, noItems},
    {Unit::FocusWindow1Y2, "Window 1 y2 (Focus)", Unit::FocusWindow1Selector, 16, 48,
     unsignedNumber, noItems},
    {Unit::LockAutoControls, "Lock Auto Controls", Unit::LockAutoControlsSelector, 32, 0, raw,
     noItems},
    {Unit::FocusWindowSelect, "Window Selected", Unit::FocusWindowSelectSelector, 8, 0,
     unsignedNumber, noItems},
    {Unit::FocusRangeMin, "Focus, Min (Range)", Unit::FocusRangeSelector, 16, 0, unsignedNumber,
     noItems},
    {Unit::FocusRangeMax, "Focus, Max (Range)", Unit::FocusRangeSelector, 16, 16, unsignedNumber,
     noItems},
    {Unit::FocusRangeStep, "Focus, Step (Range)", Unit::FocusRangeSelector, 16, 32, unsignedNumber,
     noItems},
    {Unit::CustomWhiteBalanceRed, "White Balance, Red (custom)", Unit::CustomWhiteBalanceSelector,
     16, 0, unsignedNumber, noItems},
    {Unit::CustomWhiteBalanceBlue, "White Balance, Blue (custom)", Unit::CustomWhiteBalanceSelector,
     16, 32, unsignedNumber, noItems},
    {Unit::CustomWhiteBalanceGreen, "White Balance, Green (custom)",
     Unit::CustomWhiteBalanceSelector, 16, 16, unsignedNumber, noItems},
    {Unit::AutoFocusSensitivity, "Focus Sensitivity, Auto", Unit::AutoFocusSensitivitySelector, 8,
     0, unsignedNumber, noItems},
    {Unit::DebugImageMode, "Image Mode, Debug", Unit::DebugImageModeSelector, 8, 0, menu,
     debugImageModeItems},
    {Unit::ImagePixelRatio, "Image Ratio, Pixel", Unit::ImagePixelRatioSelector, 8, 0, menu,
     imagePixelRatioItems},
    {Unit::ImagePan, "Image Pan", Unit::ImagePanTiltSelector, 16, 0, signedNumber, noItems},
    {Unit::ImageTilt, "Image Tilt", Unit::ImagePanTiltSelector, 16, 16, signedNumber, noItems},
    {Unit::FocusStrategy, "Focus Strategy", Unit::FocusStrategySelector, 8, 0, menu,
     Unit::focusStrategyItems},
    {Unit::AutoExposureSensitivity, "Exposure Sensitivity, Auto",
     Unit::AutoExposureSensitivitySelector, 8, 0, signedNumber, noItems},
    {Unit::AutoGamma, "Gamma, Auto", Unit::AutoGammaSelector, 8, 0, boolean, noItems},
};

// The GUID that the camera gives its extension unit.
constexpr unsigned char entity[16] = {0x01};

std::vector<uvc_menu_info> menuOf(Row const& row)
{
    std::vector<uvc_menu_info> infos;
    for (Unit::MenuItem const& item : row.items()) {
        infos.emplace_back().value = item.value;
        std::snprintf(reinterpret_cast<char*>(infos.back().name), sizeof infos.back().name, "%s",
                      item.name);
    }
    return infos;
}

uvc_xu_control_mapping mappingOf(Row const& row)
{
    uvc_xu_control_mapping mapping{};
    mapping.id = row.id;
    std::snprintf(reinterpret_cast<char*>(mapping.name), sizeof mapping.name, "%s", row.name);
    std::memcpy(mapping.entity, entity, sizeof entity);
    mapping.selector = row.selector;
    mapping.size = row.sizeInBits;
    mapping.offset = row.offsetInBits;
    mapping.v4l2_type = row.kind.v4l2Type;
    mapping.data_type = row.kind.dataType;
    return mapping;
}

} // namespace

ZorvaneExtensionUnit::ZorvaneExtensionUnit(NodeReference node)
    : ExtensionUnit("ZorvaneExtensionUnit"), m_node(node)
{
    setup();
}

ZorvaneExtensionUnit::~ZorvaneExtensionUnit()
{
    cleanup();
}

void ZorvaneExtensionUnit::setup()
{
    for (Row const& row : rows) {
        uvc_xu_control_mapping mapping = mappingOf(row);
        // Only read during the call.
        std::vector<uvc_menu_info> items = menuOf(row);
        if (!items.empty()) {
            mapping.menu_info = items.data();
            mapping.menu_count = static_cast<unsigned int>(items.size());
        }
        // The camera may have been opened before, or its firmware may lack the selector.
        addControl(mapping);
    }
}

void ZorvaneExtensionUnit::cleanup() {}

std::vector<ZorvaneExtensionUnit::MenuItem> ZorvaneExtensionUnit::lightModeItems()
{
    return {{0, "Off"}, {3, "Continuous"}};
}

std::vector<ZorvaneExtensionUnit::MenuItem> ZorvaneExtensionUnit::focusStrategyItems()
{
    return {{0, "Smart Scan All"}, {1, "Bisection"}, {2, "Smart Scan Refocus"}};
}

int ZorvaneExtensionUnit::addControl(uvc_xu_control_mapping& mapping)
{
    return m_node.xioctl(UVCIOC_CTRL_MAP, &mapping);
}

bool ZorvaneExtensionUnit::idToSelector(ExtensionUnitId id, ExtensionUnitSelector& selector)
{
    auto const found = std::find_if(std::begin(rows), std::end(rows),
                                    [id](Row const& row) { return row.id == id; });
    if (found == std::end(rows)) {
        return false;
    }
    selector = found->selector;
    return true;
}

} // namespace ImageAcquisition
