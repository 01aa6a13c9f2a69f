// SPDX-License-Identifier: MIT
#include "Bytes.h"
#include "DriverComparison.h"
#include "OrdinaryCamera.h"
#include "Tool.h"

#include <ICameraControlBoolean.h>
#include <ICameraControlNumeric.h>
#include <ICameraControlStringMenu.h>

#include <algorithm>
#include <iterator>

using namespace ImageAcquisition;
using namespace KernelTest;

namespace
{

/// Sets another value than the present one; the result is what v4l2-ctl is to print then.
long long change(ICameraControl& control, ListedControl const& listed)
{
    if (auto* const boolean = dynamic_cast<ICameraControlBoolean*>(&control)) {
        bool const value = !boolean->value();
        EXPECT_TRUE(boolean->setValue(value));
        return value ? 1 : 0;
    }
    if (auto* const menu = dynamic_cast<ICameraControlStringMenu*>(&control)) {
        int const position = menu->currentIndex() == 0 ? menu->count() - 1 : 0;
        EXPECT_TRUE(menu->setCurrentIndex(position));
        return std::next(listed.items.begin(), position)->first;
    }
    auto& number = dynamic_cast<ICameraControlNumeric<int>&>(control);
    int const value = number.value() == number.minimum() ? number.maximum() : number.minimum();
    EXPECT_TRUE(number.setValue(value));
    return value;
}

/// A number as it lies in a request's data; pan and tilt share one control of the camera.
long long sentValue(EmulatedCameras::Json const& line, ListedControl const& listed)
{
    UsbCamera::Bytes const data = UsbCamera::fromHex(line["data"].get<std::string>());
    bool const isPair = data.size() == 8;
    std::size_t const size = isPair ? 4 : data.size();
    std::uint64_t const value =
        UsbCamera::readLittle(data, listed.name == "tilt_absolute" ? 4 : 0, size);
    std::uint64_t const sign = std::uint64_t{1} << (8 * size - 1);
    bool const isNegative = listed.type == "int" && (value & sign) != 0;
    return static_cast<long long>(isNegative ? value - 2 * sign : value);
}

/// The camera has a bit for each exposure mode, the driver a number.
long long exposureMode(long long bit)
{
    return bit == 1 ? 1 : bit == 8 ? 3 : -1;
}

/// The listed controls of a type that can be written, or of all other types.
std::vector<ListedControl> writable(std::string const& node, bool wantsNumbers)
{
    std::vector<ListedControl> controls = plainControls(node);
    controls.erase(std::remove_if(controls.begin(), controls.end(),
                                  [wantsNumbers](ListedControl const& one) {
                                      return one.flags.count("read-only") != 0 ||
                                             (one.type == "int") != wantsNumbers;
                                  }),
                   controls.end());
    return controls;
}

/// Another value than the present one.
long long otherValue(ListedControl const& listed)
{
    if (listed.type == "bool") {
        return 1 - listed.number("value");
    }
    long long const first =
        listed.items.empty() ? listed.number("min") : listed.items.begin()->first;
    return listed.number("value") == first ? listed.number("max") : first;
}

long long valueOf(ICameraControl const& control, ListedControl const& listed)
{
    if (auto const* const boolean = dynamic_cast<ICameraControlBoolean const*>(&control)) {
        return boolean->value() ? 1 : 0;
    }
    if (auto const* const menu = dynamic_cast<ICameraControlStringMenu const*>(&control)) {
        return std::next(listed.items.begin(), menu->currentIndex())->first;
    }
    return dynamic_cast<ICameraControlNumeric<int> const&>(control).value();
}

using ControlValueTest = FreshOrdinaryCamera;

TEST_F(ControlValueTest, WrittenHereReachTheCameraAndAreReadByV4l2Ctl)
{
    // The automatic modes first: they hold numbers back.
    for (bool const areNumbers : {false, true}) {
        std::vector<ListedControl> const controls = writable(m_node, areNumbers);
        ASSERT_EQ(controls.size(), areNumbers ? 14U : 6U);
        std::map<unsigned, long long> wanted;
        for (ListedControl const& listed : controls) {
            SCOPED_TRACE(listed.name);
            ICameraControl& control = *controlById(*m_camera, listed.id);
            control.updateState();
            EXPECT_FALSE(control.isInactive());
            m_cameras.mark();
            wanted[listed.id] = change(control, listed);
            std::vector<EmulatedCameras::Json> const sent = m_cameras.requests("SET_CUR");
            ASSERT_EQ(sent.size(), 1U);
            long long const value = sentValue(sent[0], listed);
            EXPECT_EQ(listed.name == "auto_exposure" ? exposureMode(value) : value,
                      wanted[listed.id]);
        }
        for (ListedControl const& listed : writable(m_node, areNumbers)) {
            EXPECT_EQ(listed.number("value"), wanted[listed.id]) << listed.name;
        }
    }
}

TEST_F(ControlValueTest, WrittenByV4l2CtlAreReadHere)
{
    for (bool const areNumbers : {false, true}) {
        std::vector<ListedControl> const controls = writable(m_node, areNumbers);
        std::string settings;
        for (ListedControl const& listed : controls) {
            settings += (settings.empty() ? "" : ",") + listed.name + "=" +
                        std::to_string(otherValue(listed));
        }
        v4l2Ctl(m_node, "--set-ctrl=" + settings);
        for (ListedControl const& listed : controls) {
            EXPECT_EQ(valueOf(*controlById(*m_camera, listed.id), listed), otherValue(listed))
                << listed.name;
        }
    }
}

TEST_F(ControlValueTest, ThatAnAutomaticHoldsAreRefusedUntilItIsOff)
{
    auto& automatic =
        dynamic_cast<ICameraControlBoolean&>(*m_camera->control("White Balance, Automatic"));
    auto& temperature =
        dynamic_cast<ICameraControlNumeric<int>&>(*m_camera->whiteBalanceTempControl());
    ASSERT_TRUE(automatic.value());
    EXPECT_TRUE(temperature.isInactive());
    m_cameras.mark();
    EXPECT_FALSE(temperature.setValue(3000));
    EXPECT_TRUE(m_cameras.requests("SET_CUR").empty());
    EXPECT_TRUE(automatic.setValue(false));
    EXPECT_TRUE(temperature.isInactive());
    EXPECT_TRUE(temperature.updateState());
    EXPECT_FALSE(temperature.isInactive());
    EXPECT_TRUE(temperature.setValue(3000));
    EXPECT_EQ(m_cameras.command("get 2 10"), "b80b");
}

TEST_F(ControlValueTest, AreReadAndSetByTheTool)
{
    EXPECT_EQ(runTool("set 0 brightness=-5 'Contrast=12' 2> /dev/null").status, 0);
    EXPECT_EQ(m_cameras.command("get 2 2"), "fbff");
    EXPECT_EQ(m_cameras.command("get 2 3"), "0c00");
    EXPECT_EQ(runTool("get 0 brightness contrast 2> /dev/null").output,
              "Brightness: -5\nContrast: 12\n");
    CommandResult const refused = runTool("set 0 brightness=999");
    EXPECT_NE(refused.status, 0);
    EXPECT_EQ(m_cameras.command("get 2 2"), "fbff");
}

} // namespace
