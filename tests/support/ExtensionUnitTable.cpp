// SPDX-License-Identifier: MIT
#include "ExtensionUnitTable.h"

namespace
{

// V4L2_CTRL_TYPE_... and UVC_CTRL_DATA_TYPE_..., as the kernel numbers them.
constexpr unsigned int integer = 1;
constexpr unsigned int boolean = 2;
constexpr unsigned int menu = 3;
constexpr unsigned int rawData = 0;
constexpr unsigned int signedData = 1;
constexpr unsigned int unsignedData = 2;
constexpr unsigned int booleanData = 3;
constexpr unsigned int enumData = 4;

// Families as the library numbers them.
constexpr unsigned int focus = 0x001;
constexpr unsigned int autoControl = 0x002;
constexpr unsigned int geometry = 0x004;
constexpr unsigned int quality = 0x008;
constexpr unsigned int debug = 0x010;
constexpr unsigned int lighting = 0x020;
constexpr unsigned int connection = 0x040;
constexpr unsigned int status = 0x080;
constexpr unsigned int advanced = 0x100;

} // namespace

std::vector<ExpectedMapping> const& expectedMappings()
{
    // clang-format off
    static std::vector<ExpectedMapping> const table = {
        {0x08000000, "Light Mode", 1, 8, 0, menu, enumData, lighting,
         {{0, "Off"}, {3, "Continuous"}}},
        {0x08000001, "Light Intensity", 2, 16, 0, integer, rawData, lighting, {}},
        {0x08000002, "Error Status", 3, 32, 0, integer, rawData, status, {}},
        {0x08000003, "Temperature (C)", 4, 16, 0, integer, rawData, lighting, {}},
        {0x08000004, "Trigger Auto Controls", 5, 32, 0, integer, rawData, autoControl, {}},
        {0x08000005, "Contrast/Brightness (Auto)", 16, 8, 0, boolean, booleanData, quality, {}},
        {0x08000006, "Saturation (Auto)", 17, 8, 0, boolean, booleanData, quality, {}},
        {0x08000007, "Sharpness (Auto)", 18, 8, 0, boolean, booleanData, quality, {}},
        {0x08000008, "Keep Alive", 6, 8, 0, boolean, booleanData, connection, {}},
        {0x08000009, "Window 1 x1 (Focus)", 20, 16, 0, integer, unsignedData, focus, {}},
        {0x0800000A, "Window 1 x2 (Focus)", 20, 16, 16, integer, unsignedData, focus, {}},
        {0x0800000B, "Window 1 y1 (Focus)", 20, 16, 32, integer, unsignedData, focus, {}},
        {0x0800000C, "Window 1 y2 (Focus)", 20, 16, 48, integer, unsignedData, focus, {}},
        {0x0800000D, "Lock Auto Controls", 7, 32, 0, integer, rawData, autoControl, {}},
        {0x0800000E, "Window Selected", 8, 8, 0, integer, unsignedData, focus, {}},
        {0x0800000F, "Focus, Min (Range)", 9, 16, 0, integer, unsignedData, focus, {}},
        {0x08000010, "Focus, Max (Range)", 9, 16, 16, integer, unsignedData, focus, {}},
        {0x08000011, "Focus, Step (Range)", 9, 16, 32, integer, unsignedData, focus, {}},
        {0x08000012, "White Balance, Red (custom)", 10, 16, 0, integer, unsignedData, quality, {}},
        {0x08000013, "White Balance, Blue (custom)", 10, 16, 32, integer, unsignedData, quality, {}},
        {0x08000014, "White Balance, Green (custom)", 10, 16, 16, integer, unsignedData, quality, {}},
        {0x08000015, "Focus Sensitivity, Auto", 11, 8, 0, integer, unsignedData, focus, {}},
        {0x08000016, "Image Mode, Debug", 12, 8, 0, menu, enumData, debug,
         {{0, "Normal"},
          {1, "Vertical Lines"},
          {2, "Random, noise"},
          {3, "Colored Squares"},
          {4, "Black"}}},
        {0x08000017, "Image Ratio, Pixel", 13, 8, 0, menu, enumData, geometry,
         {{0, "Full View"}, {1, "640p (640x480)"}, {2, "640p (1280x960)"}}},
        {0x08000018, "Image Pan", 14, 16, 0, integer, signedData, geometry, {}},
        {0x08000019, "Image Tilt", 14, 16, 16, integer, signedData, geometry, {}},
        {0x0800001A, "Focus Strategy", 15, 8, 0, menu, enumData, focus,
         {{0, "Smart Scan All"}, {1, "Bisection"}, {2, "Smart Scan Refocus"}}},
        {0x0800001B, "Exposure Sensitivity, Auto", 24, 8, 0, integer, signedData, quality, {}},
        {0x0800001C, "Gamma, Auto", 25, 8, 0, boolean, booleanData, advanced, {}},
    };
    // clang-format on
    return table;
}
