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
std::string printedCode(IImageFormat const& format)
{
    std::string code = format.name();
    auto const last = static_cast<unsigned char>(code.at(3));
    if (last < 0x80) {
        return code;
    }
    code[3] = static_cast<char>(last & 0x7f);
    return code + "-BE";
}

std::string printedInterval(IFramePeriod const& period)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.3fs (%.3f fps)",
                  1.0 * period.numerator() / period.denominator(),
                  1.0 * period.denominator() / period.numerator());
    return text;
}

void expectListedSize(IFrameSize const& size, ListedSize const& listed)
{
    EXPECT_FALSE(size.isInvalid());
    EXPECT_EQ(size.width(), listed.width);
    EXPECT_EQ(size.height(), listed.height);
    ASSERT_EQ(size.periodNumber(), static_cast<int>(listed.intervals.size()));
    for (int i = 0; i < size.periodNumber(); ++i) {
        EXPECT_EQ(printedInterval(*size.period(i)), listed.intervals[static_cast<std::size_t>(i)]);
    }
}

void expectListedFormat(IImageFormat const& format, ListedFormat const& listed)
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

std::set<std::string> flagsOf(ICameraControl const& control)
{
    std::pair<bool, char const*> const flags[] = {
        {control.isDisabled(), "disabled"},    {control.isGrabbed(), "grabbed"},
        {control.isReadOnly(), "read-only"},   {control.needsClassUpdate(), "update"},
        {control.isInactive(), "inactive"},    {control.bestAsSlider(), "slider"},
        {control.isWriteOnly(), "write-only"}, {control.isVolatile(), "volatile"},
        {control.hasPayload(), "has-payload"}, {control.executesOnWrite(), "execute-on-write"},
    };
    std::set<std::string> names;
    for (auto const& [isSet, name] : flags) {
        if (isSet) {
            names.insert(name);
        }
    }
    return names;
}

void expectListedNumber(ICameraControlNumeric<int> const& number, ListedControl const& listed)
{
    EXPECT_EQ(number.minimum(), listed.number("min"));
    EXPECT_EQ(number.maximum(), listed.number("max"));
    EXPECT_EQ(number.step(), listed.number("step"));
    if (!number.isVolatile()) {
        EXPECT_EQ(number.value(), listed.number("value"));
    }
}

void expectListedMenu(ICameraControlStringMenu const& menu, ListedControl const& listed)
{
    ASSERT_EQ(menu.count(), static_cast<int>(listed.items.size()));
    int position = 0;
    for (auto const& [index, label] : listed.items) {
        EXPECT_EQ(menu.string(position), label);
        EXPECT_EQ(menu.currentIndex() == position,
                  listed.number("value") == static_cast<long long>(index));
        EXPECT_EQ(menu.defaultIndex() == position,
                  listed.number("default") == static_cast<long long>(index));
        ++position;
    }
}

} // namespace

void expectListedFormats(ICamera const& camera, std::vector<ListedFormat> const& listed)
{
    ASSERT_EQ(camera.formatNumber(), static_cast<int>(listed.size()));
    for (int i = 0; i < camera.formatNumber(); ++i) {
        expectListedFormat(*camera.format(i), listed[static_cast<std::size_t>(i)]);
    }
}

std::vector<ListedControl> plainControls(std::string const& node)
{
    std::vector<ListedControl> controls = listControls(node);
    controls.erase(std::remove_if(controls.begin(), controls.end(),
                                  [](auto const& one) { return one.isCompound(); }),
                   controls.end());
    return controls;
}

ICameraControl* controlById(ICamera const& camera, unsigned id)
{
    for (int i = 0; i < camera.controlNumber(); ++i) {
        if (camera.control(i)->id() == id) {
            return camera.control(i);
        }
    }
    return camera.invalidControl();
}

std::map<std::string, ICameraControl::Type> const& typesByPrint()
{
    using Type = ICameraControl::Type;
    static std::map<std::string, Type> const types = {
        {"int", Type::Int32},       {"int64", Type::Int64},       {"bool", Type::Boolean},
        {"menu", Type::StringMenu}, {"intmenu", Type::Int64Menu}, {"bitmask", Type::BitMask},
        {"button", Type::Button},   {"str", Type::String},
    };
    return types;
}

void expectListedControl(ICamera const& camera, ListedControl const& listed)
{
    SCOPED_TRACE(listed.name);
    ICameraControl const* const control = controlById(camera, listed.id);
    EXPECT_EQ(shortName(control->name()), listed.name);
    EXPECT_EQ(control->type(), typesByPrint().at(listed.type));
    EXPECT_EQ(flagsOf(*control), listed.flags);
    if (auto const* const number = dynamic_cast<ICameraControlNumeric<int> const*>(control)) {
        expectListedNumber(*number, listed);
    } else if (auto const* const menu = dynamic_cast<ICameraControlStringMenu const*>(control)) {
        expectListedMenu(*menu, listed);
    } else if (auto const* const boolean = dynamic_cast<ICameraControlBoolean const*>(control)) {
        EXPECT_EQ(boolean->defaultValue(), listed.number("default") != 0);
        EXPECT_EQ(boolean->value(), listed.number("value") != 0);
    } else if (auto const* const mask = dynamic_cast<ICameraControlBitMask const*>(control)) {
        EXPECT_EQ(mask->defaultValue(), listed.number("default"));
        EXPECT_EQ(mask->value(), static_cast<unsigned>(listed.number("value")));
    } else if (auto const* const text = dynamic_cast<ICameraControlString const*>(control)) {
        EXPECT_EQ(text->minLength(), listed.number("min"));
        EXPECT_EQ(text->maxLength(), listed.number("max"));
    }
}

} // namespace KernelTest
