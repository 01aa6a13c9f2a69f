// SPDX-License-Identifier: MIT
#include "IBlockingCameraMonitor.h"
#include "ICameraControlBitMask.h"
#include "ICameraControlBoolean.h"
#include "ICameraControlButton.h"
#include "ICameraControlInt64Menu.h"
#include "ICameraControlNumeric.h"
#include "ICameraControlString.h"
#include "ICameraControlStringMenu.h"
#include "IContinuousCameraMonitor.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>

// A virtual function's place in its interface is part of what programs are compiled against: one
// that moves breaks them without a word. A pointer to it holds that place, in Linux's C++ ABI.

using namespace ImageAcquisition;

namespace
{

constexpr std::size_t afterDestructor = 2; // A destructor takes two places.
constexpr std::size_t afterControl = afterDestructor + 17;
constexpr std::size_t afterBaseMenu = afterControl + 4;

template <typename Function>
std::size_t slotOf(Function function)
{
    std::size_t place = 0;
    std::memcpy(&place, &function, sizeof place);
    return (place - 1) / sizeof(void*);
}

template <typename... Functions>
void expectSlots(std::size_t first, Functions... functions)
{
    for (std::size_t const slot : {slotOf(functions)...}) {
        EXPECT_EQ(first, slot);
        ++first;
    }
}

template <typename T>
void expectNumericSlots()
{
    using Numeric = ICameraControlNumeric<T>;
    expectSlots(afterControl, &Numeric::maximum, &Numeric::minimum, &Numeric::step, &Numeric::value,
                &Numeric::setValue);
}

} // namespace

TEST(InterfaceSlotsTest, ControlsKeepTheirOrder)
{
    using C = ICameraControl;
    expectSlots(afterDestructor, &C::id, &C::type, &C::family, &C::name, &C::typeString,
                static_cast<char const* (C::*)() const>(&C::familyString), &C::isDisabled,
                &C::isGrabbed, &C::isReadOnly, &C::needsClassUpdate, &C::isInactive,
                &C::bestAsSlider, &C::isWriteOnly, &C::isVolatile, &C::hasPayload,
                &C::executesOnWrite, &C::updateState);
}

TEST(InterfaceSlotsTest, TypedControlsKeepTheirOrder)
{
    expectNumericSlots<int>();
    expectNumericSlots<long long>();
    expectNumericSlots<unsigned char>();
    expectNumericSlots<unsigned short>();
    expectNumericSlots<unsigned int>();
    using Boolean = ICameraControlBoolean;
    expectSlots(afterControl, &Boolean::value, &Boolean::setValue, &Boolean::defaultValue);
    expectSlots(afterControl, &ICameraControlButton::clicked);
    using Mask = ICameraControlBitMask;
    expectSlots(afterControl, &Mask::defaultValue, &Mask::value, &Mask::setValue);
    using Text = ICameraControlString;
    expectSlots(afterControl, &Text::stringSize, &Text::getValue, &Text::setValue, &Text::minLength,
                &Text::maxLength);
}

TEST(InterfaceSlotsTest, MenusKeepTheirOrder)
{
    using Menu = ICameraControlBaseMenu;
    expectSlots(afterControl, &Menu::defaultIndex, &Menu::currentIndex, &Menu::setCurrentIndex,
                &Menu::count);
    using Texts = ICameraControlStringMenu;
    expectSlots(afterBaseMenu, &Texts::currentString, &Texts::defaultString, &Texts::string);
    using Numbers = ICameraControlInt64Menu;
    expectSlots(afterBaseMenu, &Numbers::currentValue, &Numbers::defaultValue, &Numbers::value);
}

TEST(InterfaceSlotsTest, MonitorsKeepTheirOrder)
{
    using Blocking = IBlockingCameraMonitor;
    expectSlots(afterDestructor, &Blocking::stopMonitoring, &Blocking::startMonitoring,
                &Blocking::getEvent);
    using Continuous = IContinuousCameraMonitor;
    expectSlots(afterDestructor, &Continuous::stopMonitoring, &Continuous::startMonitoring);
    expectSlots(afterDestructor, &Continuous::IClient::cameraEventReceived);
}
