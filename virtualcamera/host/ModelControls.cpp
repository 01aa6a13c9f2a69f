// SPDX-License-Identifier: MIT
#include "ModelControls.h"

#include "CameraModel.h"

#include <linux/videodev2.h>

namespace VirtualCamera
{

void addUsualControls(CameraBuilder& camera)
{
    camera.withControl(integerControl(V4L2_CID_BRIGHTNESS, "Brightness").range(-64, 64))
        .withControl(integerControl(V4L2_CID_CONTRAST, "Contrast").range(0, 64).byDefault(32))
        .withControl(integerControl(V4L2_CID_SATURATION, "Saturation").range(0, 128).byDefault(64))
        .withControl(integerControl(V4L2_CID_HUE, "Hue").range(-40, 40))
        .withControl(
            booleanControl(V4L2_CID_AUTO_WHITE_BALANCE, "White Balance, Automatic").byDefault(1))
        .withControl(integerControl(V4L2_CID_GAMMA, "Gamma").range(72, 500).byDefault(100))
        .withControl(integerControl(V4L2_CID_GAIN, "Gain").range(0, 100))
        .withControl(menuControl(V4L2_CID_POWER_LINE_FREQUENCY, "Power Line Frequency")
                         .withItem("Disabled")
                         .withItem("50 Hz")
                         .withItem("60 Hz")
                         .byDefault(1))
        .withControl(integerControl(V4L2_CID_WHITE_BALANCE_TEMPERATURE, "White Balance Temperature")
                         .range(2800, 6500)
                         .byDefault(4600)
                         .activeOnlyWhen(V4L2_CID_AUTO_WHITE_BALANCE, 0))
        .withControl(integerControl(V4L2_CID_SHARPNESS, "Sharpness").range(0, 6).byDefault(3))
        .withControl(menuControl(V4L2_CID_EXPOSURE_AUTO, "Auto Exposure")
                         .withItem(1, "Manual Mode")
                         .withItem(3, "Aperture Priority Mode")
                         .byDefault(3))
        .withControl(integerControl(V4L2_CID_EXPOSURE_ABSOLUTE, "Exposure Time, Absolute")
                         .range(1, 5000)
                         .byDefault(157)
                         .activeOnlyWhen(V4L2_CID_EXPOSURE_AUTO, 1))
        .withControl(integerControl(V4L2_CID_FOCUS_ABSOLUTE, "Focus, Absolute")
                         .range(0, 1023)
                         .activeOnlyWhen(V4L2_CID_FOCUS_AUTO, 0))
        .withControl(
            booleanControl(V4L2_CID_FOCUS_AUTO, "Focus, Automatic Continuous").byDefault(1));
}

void addControlOfEveryType(CameraBuilder& camera)
{
    // Ids of the user class that no standard control has.
    constexpr std::uint32_t base = V4L2_CID_USER_BASE | 0x1000;
    auto const flagged = [](std::uint32_t id, char const* name, std::uint32_t flag) {
        return integerControl(id, name).range(0, 10).withFlags(flag);
    };
    camera
        .withControl(integerControl(base + 0, "Integer")
                         .range(-100, 100, 5)
                         .withFlags(V4L2_CTRL_FLAG_SLIDER))
        .withControl(booleanControl(base + 1, "Boolean").byDefault(1))
        .withControl(menuControl(base + 2, "Menu")
                         .withItem(1, "First")
                         .withItem(3, "Third")
                         .withItem(4, "Fourth")
                         .byDefault(3))
        .withControl(buttonControl(base + 3, "Button"))
        .withControl(integer64Control(base + 4, "Integer 64 Bits")
                         .range(-(1LL << 40), 1LL << 40)
                         .byDefault(1LL << 33))
        .withControl(stringControl(base + 5, "String").range(2, 8).currently("text"))
        .withControl(bitMaskControl(base + 6, "Bitmask").range(0, 0x80002004LL, 0).byDefault(4))
        .withControl(integerMenuControl(base + 7, "Integer Menu")
                         .withItem(0, std::int64_t{1})
                         .withItem(2, std::int64_t{1000})
                         .withItem(3, std::int64_t{1} << 40)
                         .byDefault(2))
        .withControl(unsigned8Control(base + 8, "Unsigned 8 Bits").byDefault(0x18))
        .withControl(unsigned16Control(base + 9, "Unsigned 16 Bits").byDefault(0x1818))
        .withControl(unsigned32Control(base + 10, "Unsigned 32 Bits").range(0, 70000).byDefault(5))
        .withControl(
            integerControl(base + 11, "Read-Only Integer").range(0, 10).currently(7).readOnly())
        .withControl(flagged(base + 12, "Write-Only Integer", V4L2_CTRL_FLAG_WRITE_ONLY))
        .withControl(flagged(base + 13, "Inactive Integer", V4L2_CTRL_FLAG_INACTIVE))
        .withControl(flagged(base + 14, "Grabbed Integer", V4L2_CTRL_FLAG_GRABBED))
        .withControl(flagged(base + 15, "Disabled Integer", V4L2_CTRL_FLAG_DISABLED))
        .withControl(flagged(base + 16, "Volatile Integer", V4L2_CTRL_FLAG_VOLATILE).currently(3));
}

ExtensionUnitScript vendorExtensionUnit()
{
    constexpr std::uint8_t off = 0;
    std::vector<std::uint8_t> const widest{0xff, 0xff, 0xff, 0x7f};
    ExtensionUnitScript unit;
    unit.guid = {0x01};
    auto const add = [&unit](std::uint8_t selector, std::uint16_t size,
                             std::vector<std::uint8_t> current, std::vector<std::uint8_t> maximum) {
        SelectorScript script;
        script.selector = selector;
        script.size = size;
        script.defaults = current;
        script.current = std::move(current);
        script.maximum = std::move(maximum);
        unit.selectors.push_back(std::move(script));
        return unit.selectors.size() - 1;
    };
    add(1, 1, {off}, {3});                                         // light mode
    add(2, 2, {0x40, 0x00}, {0xff, 0x00});                         // light intensity
    unit.selectors[add(3, 4, {}, widest)].writable = false;        // error status
    unit.selectors[add(4, 2, {25, 0}, {100, 0})].writable = false; // temperature
    add(5, 4, {}, widest);                                         // trigger of automatic functions
    add(6, 1, {1}, {1});                                           // keep alive
    add(7, 4, {}, widest);                                         // lock of automatic functions
    add(8, 1, {0}, {3});                                           // window selected
    add(9, 6, {0, 0, 0xff, 0x03, 1, 0}, {0xff, 0x03, 0xff, 0x03, 0xff, 0x03}); // focus range
    add(10, 6, {0x80, 0, 0x80, 0, 0x80, 0}, {0xff, 0, 0xff, 0, 0xff, 0});      // white balance
    add(11, 1, {50}, {100});                                                   // focus sensitivity
    add(12, 1, {0}, {4});                                                      // debug image
    add(13, 1, {0}, {2});                                                      // pixel ratio
    unit.selectors[add(14, 4, {}, {40, 0, 40, 0})].minimum = {0xd8, 0xff, 0xd8, 0xff}; // pan, tilt
    add(15, 1, {0}, {2});                                   // focus strategy
    add(16, 1, {1}, {1});                                   // contrast and brightness
    add(17, 1, {1}, {1});                                   // saturation
    add(18, 1, {1}, {1});                                   // sharpness
    add(20, 8, {}, {0xff, 4, 0xff, 4, 0xff, 3, 0xff, 3});   // focus window
    unit.selectors[add(24, 1, {0}, {10})].minimum = {0xf6}; // exposure sensitivity
    add(25, 1, {1}, {1});                                   // gamma
    return unit;
}

} // namespace VirtualCamera
