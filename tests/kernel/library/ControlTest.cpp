// SPDX-License-Identifier: MIT
#include "DriverComparison.h"
#include "OrdinaryCamera.h"
#include "Tool.h"

#include <ICameraControlBoolean.h>
#include <ICameraControlNumeric.h>
#include <ICameraControlStringMenu.h>

#include <iterator>

using namespace ImageAcquisition;
using namespace KernelTest;

namespace
{

/// Sets another value than the present one; the result is what v4l2-ctl is to print then.
long long change(ICameraControl& control, const ListedControl& listed)
{
    if (auto* const boolean = dynamic_cast<ICameraControlBoolean*>(&control)) {
        const bool value = !boolean->value();
        EXPECT_TRUE(boolean->setValue(value));
        return value ? 1 : 0;
    }
    if (auto* const menu = dynamic_cast<ICameraControlStringMenu*>(&control)) {
        const int position = menu->currentIndex() == 0 ? menu->count() - 1 : 0;
        EXPECT_TRUE(menu->setCurrentIndex(position));
        return std::next(listed.items.begin(), position)->first;
    }
    auto& number = dynamic_cast<ICameraControlNumeric<int>&>(control);
    const int value = number.value() == number.minimum() ? number.maximum() : number.minimum();
    EXPECT_TRUE(number.setValue(value));
    return value;
}

bool isWritable(ICameraControl& control)
{
    control.updateState();
    return !control.isReadOnly() && !control.isInactive() && !control.isDisabled();
}

} // namespace

using Controls = OrdinaryCamera;

TEST_F(Controls, AreThoseThatV4l2CtlLists)
{
    const std::vector<ListedControl> listed = plainControls(node);
    ASSERT_GT(listed.size(), 15U);
    EXPECT_EQ(camera->controlNumber(), static_cast<int>(listed.size()));
    for (const ListedControl& one : listed) {
        expectListedControl(*camera, one);
    }
}

TEST_F(Controls, WrittenHereReachTheCameraAndAreReadByV4l2Ctl)
{
    int written = 0;
    for (const ListedControl& listed : plainControls(node)) {
        ICameraControl& control = *controlById(*camera, listed.id);
        if (!isWritable(control)) {
            continue;
        }
        SCOPED_TRACE(listed.name);
        cameras.mark();
        const long long wanted = change(control, listed);
        EXPECT_EQ(cameras.requests("SET_CUR").size(), 1U);
        // Behind a menu's number stands its text.
        const std::string printed = readControl(node, listed.name);
        EXPECT_EQ(printed.substr(0, printed.find(' ')), std::to_string(wanted));
        ++written;
    }
    EXPECT_GT(written, 15);
}

TEST_F(Controls, WrittenByV4l2CtlAreReadHere)
{
    for (const char* const name : {"Brightness", "Contrast", "Saturation", "Gamma", "Sharpness"}) {
        const auto& number = dynamic_cast<ICameraControlNumeric<int>&>(*camera->control(name));
        for (const int value : {number.minimum(), number.maximum()}) {
            v4l2Ctl(node, "--set-ctrl=" + shortName(name) + "=" + std::to_string(value));
            EXPECT_EQ(number.value(), value) << name;
        }
    }
}

TEST_F(Controls, ThatAnAutomaticHoldsAreRefusedUntilItIsOff)
{
    auto& automatic =
        dynamic_cast<ICameraControlBoolean&>(*camera->control("White Balance, Automatic"));
    auto& temperature =
        dynamic_cast<ICameraControlNumeric<int>&>(*camera->whiteBalanceTempControl());
    ASSERT_TRUE(automatic.value());
    EXPECT_TRUE(temperature.isInactive());
    cameras.mark();
    EXPECT_FALSE(temperature.setValue(3000));
    EXPECT_TRUE(cameras.requests("SET_CUR").empty());
    EXPECT_TRUE(automatic.setValue(false));
    EXPECT_TRUE(temperature.isInactive());
    EXPECT_TRUE(temperature.updateState());
    EXPECT_FALSE(temperature.isInactive());
    EXPECT_TRUE(temperature.setValue(3000));
    EXPECT_EQ(cameras.command("get 2 10"), "b80b");
}

TEST_F(Controls, AreReadAndSetByTheTool)
{
    EXPECT_EQ(runTool("set 0 brightness=-5 'Contrast=12' 2> /dev/null").status, 0);
    EXPECT_EQ(cameras.command("get 2 2"), "fbff");
    EXPECT_EQ(cameras.command("get 2 3"), "0c00");
    EXPECT_EQ(runTool("get 0 brightness contrast 2> /dev/null").output,
              "Brightness: -5\nContrast: 12\n");
    const CommandResult refused = runTool("set 0 brightness=999");
    EXPECT_NE(refused.status, 0);
    EXPECT_EQ(cameras.command("get 2 2"), "fbff");
}
