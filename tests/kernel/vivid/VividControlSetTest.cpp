// SPDX-License-Identifier: MIT
#include "VividControls.h"

#include <ICameraControlBitMask.h>
#include <ICameraControlBoolean.h>
#include <ICameraControlInt64Menu.h>
#include <ICameraControlNumeric.h>
#include <ICameraControlString.h>
#include <ICameraControlStringMenu.h>

#include <algorithm>
#include <cstring>

using namespace ImageAcquisition;
using namespace KernelTest;

namespace
{

using Type = ICameraControl::Type;

const std::map<std::string, Type> typesByPrint = {
    {"int", Type::Int32},       {"int64", Type::Int64},       {"bool", Type::Boolean},
    {"menu", Type::StringMenu}, {"intmenu", Type::Int64Menu}, {"bitmask", Type::BitMask},
    {"button", Type::Button},   {"str", Type::String},
};

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

/// The controls that v4l2-ctl lists and the library can have.
std::vector<ListedControl> plainControls()
{
    std::vector<ListedControl> controls = listControls(firstNode);
    controls.erase(std::remove_if(controls.begin(), controls.end(),
                                  [](const auto& one) { return one.isCompound(); }),
                   controls.end());
    return controls;
}

} // namespace

class VividControlSet : public VividControls
{
protected:
    const Control* byId(unsigned id) const
    {
        for (int i = 0; i < camera->controlNumber(); ++i) {
            if (camera->control(i)->id() == id) {
                return camera->control(i);
            }
        }
        return camera->invalidControl();
    }
};

TEST_F(VividControlSet, HasEveryPlainControlWithItsNameTypeAndFlags)
{
    const std::vector<ListedControl> listed = plainControls();
    ASSERT_GT(listed.size(), 50U);
    EXPECT_EQ(camera->controlNumber(), static_cast<int>(listed.size()));
    for (const ListedControl& one : listed) {
        SCOPED_TRACE(one.name);
        const Control* const control = byId(one.id);
        EXPECT_EQ(shortName(control->name()), one.name);
        EXPECT_EQ(control->type(), typesByPrint.at(one.type));
        EXPECT_EQ(flagsOf(*control), one.flags);
    }
}

TEST_F(VividControlSet, HasAControlOfEachTypeThatVividOffers)
{
    std::set<Type> types;
    for (int i = 0; i < camera->controlNumber(); ++i) {
        types.insert(camera->control(i)->type());
    }
    for (const auto& [print, type] : typesByPrint) {
        EXPECT_EQ(types.count(type), 1U) << print;
    }
}

TEST_F(VividControlSet, IsSortedByName)
{
    for (int i = 1; i < camera->controlNumber(); ++i) {
        EXPECT_LE(std::strcmp(camera->control(i - 1)->name(), camera->control(i)->name()), 0)
            << camera->control(i)->name();
    }
}

TEST_F(VividControlSet, HasNoCompoundControl)
{
    unsigned compound = 0;
    for (const ListedControl& one : listControls(firstNode)) {
        if (one.isCompound()) {
            ++compound;
            EXPECT_EQ(byId(one.id), camera->invalidControl()) << one.name;
        }
    }
    EXPECT_GE(compound, 6U);
    EXPECT_EQ(camera->control("U8 2x3x4x5 Array"), camera->invalidControl());
}

TEST_F(VividControlSet, HasTheListedRangesAndValuesOfNumbers)
{
    for (const ListedControl& one : plainControls()) {
        SCOPED_TRACE(one.name);
        if (const auto* const number =
                dynamic_cast<const ICameraControlNumeric<int>*>(byId(one.id))) {
            EXPECT_EQ(number->minimum(), one.number("min"));
            EXPECT_EQ(number->maximum(), one.number("max"));
            EXPECT_EQ(number->step(), one.number("step"));
            if (!number->isVolatile()) {
                EXPECT_EQ(number->value(), one.number("value"));
            }
        }
    }
}

TEST_F(VividControlSet, HasTheListedDefaultsAndValuesOfSwitchesAndMasks)
{
    for (const ListedControl& one : plainControls()) {
        SCOPED_TRACE(one.name);
        const Control* const control = byId(one.id);
        if (const auto* const boolean = dynamic_cast<const ICameraControlBoolean*>(control)) {
            EXPECT_EQ(boolean->defaultValue(), one.number("default") != 0);
            EXPECT_EQ(boolean->value(), one.number("value") != 0);
        }
        if (const auto* const mask = dynamic_cast<const ICameraControlBitMask*>(control)) {
            EXPECT_EQ(mask->defaultValue(), one.number("default"));
            EXPECT_EQ(mask->value(), static_cast<unsigned>(one.number("value")));
        }
        if (const auto* const text = dynamic_cast<const ICameraControlString*>(control)) {
            EXPECT_EQ(text->minLength(), one.number("min"));
            EXPECT_EQ(text->maxLength(), one.number("max"));
        }
    }
}

TEST_F(VividControlSet, HasTheListedItemsOfMenusWithoutTheirHoles)
{
    unsigned holes = 0;
    for (const ListedControl& one : plainControls()) {
        SCOPED_TRACE(one.name);
        const auto* const menu = dynamic_cast<const ICameraControlStringMenu*>(byId(one.id));
        if (menu == nullptr) {
            continue;
        }
        ASSERT_EQ(menu->count(), static_cast<int>(one.items.size()));
        holes += one.number("max") - one.number("min") + 1 > menu->count() ? 1 : 0;
        int position = 0;
        for (const auto& [index, label] : one.items) {
            EXPECT_EQ(menu->string(position), label);
            EXPECT_EQ(menu->currentIndex() == position,
                      one.number("value") == static_cast<long long>(index));
            EXPECT_EQ(menu->defaultIndex() == position,
                      one.number("default") == static_cast<long long>(index));
            ++position;
        }
    }
    EXPECT_GE(holes, 3U);
}

TEST_F(VividControlSet, AnswersByTheNamedGetters)
{
    EXPECT_STREQ(camera->brightnessControl()->name(), "Brightness");
    EXPECT_STREQ(camera->contrastControl()->name(), "Contrast");
    EXPECT_STREQ(camera->saturationControl()->name(), "Saturation");
    EXPECT_STREQ(camera->hueControl()->name(), "Hue");
    EXPECT_STREQ(camera->gainControl()->name(), "Gain");
    EXPECT_EQ(camera->focusControl(), camera->invalidControl());
    EXPECT_EQ(camera->lightModeControl(), camera->invalidControl());
}
