// SPDX-License-Identifier: MIT
#include "Shell.h"
#include "VividControls.h"

#include <ICameraControlBitMask.h>
#include <ICameraControlBoolean.h>
#include <ICameraControlButton.h>
#include <ICameraControlInt64Menu.h>
#include <ICameraControlNumeric.h>
#include <ICameraControlString.h>
#include <ICameraControlStringMenu.h>

#include <climits>

using namespace ImageAcquisition;
using namespace KernelTest;

namespace
{

using Number = ICameraControlNumeric<int>;

/// A value one third of the range above its minimum.
int lowerThird(Number const& control)
{
    long long const width = static_cast<long long>(control.maximum()) - control.minimum();
    return static_cast<int>(control.minimum() + width / 3);
}

int upperThird(Number const& control)
{
    long long const width = static_cast<long long>(control.maximum()) - control.minimum();
    return static_cast<int>(control.maximum() - width / 3);
}

/// The driver's numbers of a menu's items, in order.
std::vector<unsigned> itemNumbers(ICameraControl const& menu)
{
    std::vector<unsigned> numbers;
    for (ListedControl const& one : listControls(firstNode)) {
        if (one.id == menu.id()) {
            for (auto const& item : one.items) {
                numbers.push_back(item.first);
            }
        }
    }
    return numbers;
}

bool v4l2CtlRefuses(std::string const& setting)
{
    return runShell(std::string("v4l2-ctl -d ") + firstNode + " --set-ctrl=" + setting).status != 0;
}

std::string textOf(ICameraControlString const& control)
{
    std::vector<char> buffer(16, '#');
    return control.getValue(buffer.data(), static_cast<int>(buffer.size())) ? buffer.data()
                                                                            : "refused";
}

using VividControlTest = VividControls;

TEST_F(VividControlTest, EveryNumberIsWrittenHereAndReadThere)
{
    expectWrittenHere(writable<Number>(), [](Number& control) {
        EXPECT_TRUE(control.setValue(lowerThird(control))) << control.name();
        EXPECT_EQ(control.value(), lowerThird(control)) << control.name();
        return std::to_string(lowerThird(control));
    });
}

TEST_F(VividControlTest, EveryNumberIsWrittenThereAndReadHere)
{
    std::vector<Number*> const numbers = writable<Number>();
    ASSERT_GE(numbers.size(), 7U);
    setThere(numbers, [](Number const& control) { return upperThird(control); });
    for (Number const* const control : numbers) {
        EXPECT_EQ(control->value(), upperThird(*control)) << control->name();
    }
}

TEST_F(VividControlTest, NumbersReachBothEndsOfTheirRangeAndNoFurther)
{
    auto& wide = control<Number>("Integer 32 Bits");
    for (int const end : {INT_MIN, INT_MAX, -1, 0}) {
        EXPECT_TRUE(wide.setValue(end));
        EXPECT_EQ(readControl(firstNode, "integer_32_bits"), std::to_string(end));
        EXPECT_EQ(wide.value(), end);
    }
    auto& brightness = control<Number>("Brightness");
    EXPECT_TRUE(brightness.setValue(255));
    EXPECT_FALSE(brightness.setValue(256));
    EXPECT_FALSE(brightness.setValue(-1));
    EXPECT_EQ(readControl(firstNode, "brightness"), "255");
}

TEST_F(VividControlTest, EverySwitchIsWrittenHereAndReadThere)
{
    std::vector<ICameraControlBoolean*> const switches = writable<ICameraControlBoolean>();
    ASSERT_GE(switches.size(), 10U);
    for (int round = 0; round < 2; ++round) {
        expectWrittenHere(switches, [](ICameraControlBoolean& control) {
            bool const value = !control.value();
            EXPECT_TRUE(control.setValue(value)) << control.name();
            EXPECT_EQ(control.value(), value) << control.name();
            return std::string(value ? "1" : "0");
        });
    }
}

TEST_F(VividControlTest, EverySwitchIsWrittenThereAndReadHere)
{
    std::vector<ICameraControlBoolean*> const switches = writable<ICameraControlBoolean>();
    setThere(switches, [](ICameraControlBoolean const& one) { return one.defaultValue() ? 0 : 1; });
    for (ICameraControlBoolean const* const control : switches) {
        EXPECT_NE(control->value(), control->defaultValue()) << control->name();
    }
}

TEST_F(VividControlTest, EveryMenuIsWrittenHereAndReadThere)
{
    std::vector<ICameraControlStringMenu*> const menus = writable<ICameraControlStringMenu>();
    ASSERT_GE(menus.size(), 10U);
    std::map<unsigned, std::vector<unsigned>> numbers;
    for (ListedControl const& one : listControls(firstNode)) {
        for (auto const& item : one.items) {
            numbers[one.id].push_back(item.first);
        }
    }
    expectWrittenHere(menus, [&](ICameraControlStringMenu& menu) {
        int const next = (menu.currentIndex() + 1) % menu.count();
        EXPECT_TRUE(menu.setCurrentIndex(next)) << menu.name();
        EXPECT_EQ(menu.currentIndex(), next) << menu.name();
        return std::to_string(numbers[menu.id()].at(static_cast<std::size_t>(next)));
    });
}

TEST_F(VividControlTest, EveryItemOfAMenuWithAHoleIsWrittenBothWays)
{
    auto& menu = control<ICameraControlStringMenu>("Menu");
    std::vector<unsigned> const numbers = itemNumbers(menu);
    ASSERT_EQ(numbers, (std::vector<unsigned>{1, 3, 4}));
    for (int position = 0; position < 3; ++position) {
        std::string const number = std::to_string(numbers[static_cast<std::size_t>(position)]);
        EXPECT_TRUE(menu.setCurrentIndex(position));
        EXPECT_EQ(readControl(firstNode, "menu").substr(0, 1), number);
        EXPECT_TRUE(menu.setCurrentIndex((position + 1) % 3));
        v4l2Ctl(firstNode, "--set-ctrl=menu=" + number);
        EXPECT_EQ(menu.currentIndex(), position);
        EXPECT_EQ(menu.currentString(), "Menu Item " + number);
    }
    EXPECT_FALSE(menu.setCurrentIndex(3));
    EXPECT_FALSE(menu.setCurrentIndex(-1));
    EXPECT_EQ(menu.currentIndex(), 2);
    EXPECT_STREQ(menu.defaultString(), "Menu Item 3");
}

TEST_F(VividControlTest, EveryItemOfANumberMenuIsWrittenBothWays)
{
    auto& menu = control<ICameraControlInt64Menu>("Integer Menu");
    std::vector<unsigned> const numbers = itemNumbers(menu);
    ASSERT_EQ(numbers, (std::vector<unsigned>{2, 3, 4, 5, 6, 7, 8}));
    EXPECT_EQ(menu.defaultIndex(), 2);
    EXPECT_EQ(menu.count(), 0);
    EXPECT_THROW(menu.value(0), std::out_of_range);
    for (int position = 0; position < 7; ++position) {
        std::string const number = std::to_string(numbers[static_cast<std::size_t>(position)]);
        EXPECT_TRUE(menu.setCurrentIndex(position));
        EXPECT_EQ(readControl(firstNode, "integer_menu").substr(0, 1), number);
        EXPECT_TRUE(menu.setCurrentIndex((position + 1) % 7));
        v4l2Ctl(firstNode, "--set-ctrl=integer_menu=" + number);
        EXPECT_EQ(menu.currentIndex(), position);
    }
    EXPECT_FALSE(menu.setCurrentIndex(7));
}

TEST_F(VividControlTest, BitMasksAreWrittenBothWays)
{
    auto& mask = control<ICameraControlBitMask>("Bitmask");
    EXPECT_EQ(mask.defaultValue(), 0x80002000U);
    for (unsigned const value : {0U, 0x80402010U, 0x80000000U, 0x10U}) {
        EXPECT_TRUE(mask.setValue(value));
        EXPECT_EQ(static_cast<unsigned>(std::stoll(readControl(firstNode, "bitmask"))), value);
        EXPECT_EQ(mask.value(), value);
    }
    v4l2Ctl(firstNode, "--set-ctrl=bitmask=0x402000");
    EXPECT_EQ(mask.value(), 0x402000U);
    // The driver drops the bits that the control has not.
    EXPECT_TRUE(mask.setValue(0xFFFFFFFF));
    EXPECT_EQ(mask.value(), 0x80402010U);
}

TEST_F(VividControlTest, SixtyFourBitNumbersAreReadWhole)
{
    auto const& wide = control<ICameraControlNumeric<long long>>("Integer 64 Bits");
    for (char const* const value : {"5000000000", "-5000000000", "9223372036854775807",
                                    "-9223372036854775808", "4294967296", "-1", "0"}) {
        v4l2Ctl(firstNode, std::string("--set-ctrl=integer_64_bits=") + value);
        EXPECT_EQ(std::to_string(wide.value()), value);
        EXPECT_EQ(readControl(firstNode, "integer_64_bits"), value);
    }
}

TEST_F(VividControlTest, OfSixtyFourBitNumbersOnlyZeroIsWritten)
{
    // Their range does not fit the record that the kernel describes controls with.
    auto& wide = control<ICameraControlNumeric<long long>>("Integer 64 Bits");
    EXPECT_EQ(wide.minimum(), 0);
    EXPECT_EQ(wide.maximum(), 0);
    v4l2Ctl(firstNode, "--set-ctrl=integer_64_bits=77");
    EXPECT_FALSE(wide.setValue(1));
    EXPECT_EQ(wide.value(), 77);
    EXPECT_TRUE(wide.setValue(0));
    EXPECT_EQ(readControl(firstNode, "integer_64_bits"), "0");
}

TEST_F(VividControlTest, TextsAreWrittenBothWays)
{
    auto& text = control<ICameraControlString>("String");
    EXPECT_TRUE(text.setValue("abcd"));
    EXPECT_EQ(readControl(firstNode, "string"), "'abcd'");
    EXPECT_EQ(textOf(text), "abcd");
    v4l2Ctl(firstNode, "--set-ctrl=string=xyz");
    EXPECT_EQ(textOf(text), "xyz");
}

TEST_F(VividControlTest, TextsHaveTheLengthsThatTheDriverAllows)
{
    auto& text = control<ICameraControlString>("String");
    EXPECT_EQ(text.minLength(), 2);
    EXPECT_EQ(text.maxLength(), 4);
    EXPECT_EQ(text.stringSize(), 5U);
    for (char const* const fitting : {"ab", "abc", "abcd"}) {
        EXPECT_TRUE(text.setValue(fitting));
        EXPECT_EQ(textOf(text), fitting);
    }
    for (char const* const unfitting : {"", "a", "abcde"}) {
        EXPECT_FALSE(text.setValue(unfitting)) << unfitting;
        EXPECT_EQ(textOf(text), "abcd");
    }
    EXPECT_FALSE(text.setValue(nullptr));
}

TEST_F(VividControlTest, ATextNeedsRoomForItsLongest)
{
    auto const& text = control<ICameraControlString>("String");
    char buffer[5];
    EXPECT_FALSE(text.getValue(buffer, 4));
    EXPECT_FALSE(text.getValue(buffer, 0));
    EXPECT_FALSE(text.getValue(buffer, -1));
    EXPECT_FALSE(text.getValue(nullptr, 5));
    EXPECT_TRUE(text.getValue(buffer, 5));
}

TEST_F(VividControlTest, ReadOnlyControlsAreReadAndNotWritten)
{
    auto& number = control<Number>("Read-Only Integer 32 Bits");
    EXPECT_TRUE(number.isReadOnly());
    EXPECT_FALSE(number.setValue(5));
    EXPECT_TRUE(v4l2CtlRefuses("read_only_integer_32_bits=5"));
    // The driver keeps the number of the last frame in it.
    EXPECT_EQ(std::to_string(number.value()), readControl(firstNode, "read_only_integer_32_bits"));
    auto& mask = control<ICameraControlBitMask>("Power Present");
    EXPECT_TRUE(mask.isReadOnly());
    EXPECT_EQ(mask.value(), 1U);
    EXPECT_FALSE(mask.setValue(0));
}

TEST_F(VividControlTest, AnInactiveControlIsKnownByTheLastUpdate)
{
    auto& gain = control<Number>("Gain");
    auto& automatic = control<ICameraControlBoolean>("Gain, Automatic");
    EXPECT_TRUE(gain.isInactive());
    EXPECT_TRUE(gain.isVolatile());
    EXPECT_TRUE(automatic.needsClassUpdate());
    EXPECT_FALSE(gain.setValue(44));

    EXPECT_TRUE(automatic.setValue(false));
    EXPECT_TRUE(gain.isInactive()) << "nothing updates it by itself";
    EXPECT_FALSE(gain.setValue(44));
    EXPECT_TRUE(gain.updateState());
    EXPECT_FALSE(gain.isInactive());
    EXPECT_TRUE(gain.setValue(44));
    EXPECT_EQ(readControl(firstNode, "gain"), "44");

    v4l2Ctl(firstNode, "--set-ctrl=gain_automatic=1");
    EXPECT_FALSE(gain.isInactive());
    EXPECT_TRUE(gain.updateState());
    EXPECT_TRUE(gain.isInactive());
    EXPECT_FALSE(gain.setValue(45));
}

TEST_F(VividControlTest, AGrabbedControlIsNotWrittenWhileStreaming)
{
    auto& cropping = control<ICameraControlBoolean>("Enable Capture Cropping");
    ASSERT_TRUE(selectSmall(*m_camera));
    {
        Stream const stream(*m_camera, 4);
        EXPECT_TRUE(cropping.updateState());
        EXPECT_TRUE(cropping.isGrabbed());
        EXPECT_FALSE(cropping.setValue(false));
        EXPECT_TRUE(v4l2CtlRefuses("enable_capture_cropping=0"));
        EXPECT_TRUE(cropping.value());
    }
    EXPECT_TRUE(cropping.updateState());
    EXPECT_FALSE(cropping.isGrabbed());
    EXPECT_TRUE(cropping.setValue(false));
}

TEST_F(VividControlTest, ButtonsAreWriteOnlyAndCanBePressed)
{
    auto& button = control<ICameraControlButton>("Button");
    EXPECT_TRUE(button.isWriteOnly());
    EXPECT_TRUE(button.executesOnWrite());
    EXPECT_TRUE(button.clicked());
    EXPECT_TRUE(button.clicked());
    // vivid refuses the next set-up when this one is pressed, which shows that it arrived.
    EXPECT_TRUE(control<ICameraControlButton>("Inject VIDIOC_REQBUFS Error").clicked());
    EXPECT_EQ(m_camera->setup(4), -1);
    EXPECT_EQ(m_camera->setup(4), 0);
    EXPECT_EQ(m_camera->cleanup(), 0);
}

TEST_F(VividControlTest, ControlsActOnThePictureWhileStreaming)
{
    showStillPicture();
    ASSERT_TRUE(selectSmall(*m_camera));
    v4l2Ctl(firstNode, "--set-ctrl=test_pattern=6");
    Bytes const white = capturedByV4l2Ctl(firstNode);
    showStillPicture();
    Stream const stream(*m_camera, 2);
    IFrame* const before = m_camera->acquireFrame();
    EXPECT_FALSE(bytesOf(*before) == white);
    m_camera->releaseFrame(before);
    auto& pattern = control<ICameraControlStringMenu>("Test Pattern");
    ASSERT_TRUE(pattern.setCurrentIndex(6));
    EXPECT_STREQ(pattern.currentString(), "100% White");
    bool isWhite = false;
    for (int i = 0; i < 20 && !isWhite; ++i) {
        IFrame* const frame = m_camera->acquireFrame();
        ASSERT_FALSE(frame->isInvalid());
        isWhite = bytesOf(*frame) == white;
        m_camera->releaseFrame(frame);
    }
    EXPECT_TRUE(isWhite);
}

} // namespace
