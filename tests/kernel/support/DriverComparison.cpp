// SPDX-License-Identifier: MIT
#include "DriverComparison.h"

#include <ICameraControlBitMask.h>
#include <ICameraControlBoolean.h>
#include <ICameraControlNumeric.h>
#include <ICameraControlString.h>
#include <ICameraControlStringMenu.h>
#include <IFramePeriod.h>
#include <IFrameSize.h>
#include <IImageFormat.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>

using namespace ImageAcquisition;

namespace KernelTest
{

namespace
{

/// The library gives the four bytes as they are; v4l2-ctl takes the bit for the byte order out.
std::string printedCode(const IImageFormat& format)
{
    std::string code = format.name();
    const auto last = static_cast<unsigned char>(code.at(3));
    if (last < 0x80) {
        return code;
    }
    code[3] = static_cast<char>(last & 0x7f);
    return code + "-BE";
}

std::string printedInterval(const IFramePeriod& period)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.3fs (%.3f fps)",
                  1.0 * period.numerator() / period.denominator(),
                  1.0 * period.denominator() / period.numerator());
    return text;
}

void expectListedSize(const IFrameSize& size, const ListedSize& listed)
{
    EXPECT_FALSE(size.isInvalid());
    EXPECT_EQ(size.width(), listed.width);
    EXPECT_EQ(size.height(), listed.height);
    ASSERT_EQ(size.periodNumber(), static_cast<int>(listed.intervals.size()));
    for (int i = 0; i < size.periodNumber(); ++i) {
        EXPECT_EQ(printedInterval(*size.period(i)), listed.intervals[static_cast<std::size_t>(i)]);
    }
}

void expectListedFormat(const IImageFormat& format, const ListedFormat& listed)
{
    SCOPED_TRACE(listed.code);
    EXPECT_EQ(printedCode(format), listed.code);
    EXPECT_EQ(format.description(), listed.description);
    EXPECT_EQ(format.isCompressed(), listed.flags.count("compressed") != 0);
    EXPECT_EQ(format.isEmulated(), listed.flags.count("emulated") != 0);
    ASSERT_EQ(format.sizeNumber(), static_cast<int>(listed.sizes.size()));
    for (int i = 0; i < format.sizeNumber(); ++i) {
        expectListedSize(*format.frameSize(i), listed.sizes[static_cast<std::size_t>(i)]);
    }
}

std::set<std::string> flagsOf(const ICameraControl& control)
{
    const std::pair<bool, const char*> flags[] = {
        {control.isDisabled(), "disabled"},    {control.isGrabbed(), "grabbed"},
        {control.isReadOnly(), "read-only"},   {control.needsClassUpdate(), "update"},
        {control.isInactive(), "inactive"},    {control.bestAsSlider(), "slider"},
        {control.isWriteOnly(), "write-only"}, {control.isVolatile(), "volatile"},
        {control.hasPayload(), "has-payload"}, {control.executesOnWrite(), "execute-on-write"},
    };
    std::set<std::string> names;
    for (const auto& [isSet, name] : flags) {
        if (isSet) {
            names.insert(name);
        }
    }
    return names;
}

void expectListedNumber(const ICameraControlNumeric<int>& number, const ListedControl& listed)
{
    EXPECT_EQ(number.minimum(), listed.number("min"));
    EXPECT_EQ(number.maximum(), listed.number("max"));
    EXPECT_EQ(number.step(), listed.number("step"));
    if (!number.isVolatile()) {
        EXPECT_EQ(number.value(), listed.number("value"));
    }
}

void expectListedMenu(const ICameraControlStringMenu& menu, const ListedControl& listed)
{
    ASSERT_EQ(menu.count(), static_cast<int>(listed.items.size()));
    int position = 0;
    for (const auto& [index, label] : listed.items) {
        EXPECT_EQ(menu.string(position), label);
        EXPECT_EQ(menu.currentIndex() == position,
                  listed.number("value") == static_cast<long long>(index));
        EXPECT_EQ(menu.defaultIndex() == position,
                  listed.number("default") == static_cast<long long>(index));
        ++position;
    }
}

} // namespace

void expectListedFormats(const ICamera& camera, const std::vector<ListedFormat>& listed)
{
    ASSERT_EQ(camera.formatNumber(), static_cast<int>(listed.size()));
    for (int i = 0; i < camera.formatNumber(); ++i) {
        expectListedFormat(*camera.format(i), listed[static_cast<std::size_t>(i)]);
    }
}

std::vector<ListedControl> plainControls(const std::string& node)
{
    std::vector<ListedControl> controls = listControls(node);
    controls.erase(std::remove_if(controls.begin(), controls.end(),
                                  [](const auto& one) { return one.isCompound(); }),
                   controls.end());
    return controls;
}

ICameraControl* controlById(const ICamera& camera, unsigned id)
{
    for (int i = 0; i < camera.controlNumber(); ++i) {
        if (camera.control(i)->id() == id) {
            return camera.control(i);
        }
    }
    return camera.invalidControl();
}

const std::map<std::string, ICameraControl::Type>& typesByPrint()
{
    using Type = ICameraControl::Type;
    static const std::map<std::string, Type> types = {
        {"int", Type::Int32},       {"int64", Type::Int64},       {"bool", Type::Boolean},
        {"menu", Type::StringMenu}, {"intmenu", Type::Int64Menu}, {"bitmask", Type::BitMask},
        {"button", Type::Button},   {"str", Type::String},
    };
    return types;
}

void expectListedControl(const ICamera& camera, const ListedControl& listed)
{
    SCOPED_TRACE(listed.name);
    const ICameraControl* const control = controlById(camera, listed.id);
    EXPECT_EQ(shortName(control->name()), listed.name);
    EXPECT_EQ(control->type(), typesByPrint().at(listed.type));
    EXPECT_EQ(flagsOf(*control), listed.flags);
    if (const auto* const number = dynamic_cast<const ICameraControlNumeric<int>*>(control)) {
        expectListedNumber(*number, listed);
    } else if (const auto* const menu = dynamic_cast<const ICameraControlStringMenu*>(control)) {
        expectListedMenu(*menu, listed);
    } else if (const auto* const boolean = dynamic_cast<const ICameraControlBoolean*>(control)) {
        EXPECT_EQ(boolean->defaultValue(), listed.number("default") != 0);
        EXPECT_EQ(boolean->value(), listed.number("value") != 0);
    } else if (const auto* const mask = dynamic_cast<const ICameraControlBitMask*>(control)) {
        EXPECT_EQ(mask->defaultValue(), listed.number("default"));
        EXPECT_EQ(mask->value(), static_cast<unsigned>(listed.number("value")));
    } else if (const auto* const text = dynamic_cast<const ICameraControlString*>(control)) {
        EXPECT_EQ(text->minLength(), listed.number("min"));
        EXPECT_EQ(text->maxLength(), listed.number("max"));
    }
}

} // namespace KernelTest
