// SPDX-License-Identifier: MIT
// The order of the virtual functions is what programs were compiled against: a new one goes to the
// end, and none ever moves.
#include "ImageAcquisition.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>

using namespace ImageAcquisition;

namespace
{

/// The place of a virtual function in its class, the destructor being the first. In the ABI of
/// Linux a pointer to it holds its offset in the table plus one, and a destructor takes two places.
template <typename Member>
std::ptrdiff_t slotOf(Member member)
{
    std::ptrdiff_t words[2];
    static_assert(sizeof member == sizeof words);
    std::memcpy(words, &member, sizeof words);
    return (words[0] - 1) / static_cast<std::ptrdiff_t>(sizeof(void*));
}

/// Expects the functions to take the places from @p slot on.
template <typename... Members>
void expectSlots(std::ptrdiff_t slot, Members... members)
{
    std::ptrdiff_t const first = slot;
    for (std::ptrdiff_t const actual : {slotOf(members)...}) {
        EXPECT_EQ(actual, slot) << "function " << slot - first << " of those that begin at "
                                << first;
        ++slot;
    }
}

constexpr std::ptrdiff_t afterDestructor = 2;

TEST(SlotOrderTest, OfTheFactoryStays)
{
    using I = ICameraFactory;
    expectSlots(afterDestructor, &I::createDevice, &I::createDeviceList, &I::createBlockingCamera,
                &I::createEvent, &I::createBlockingCameraMonitor,
                &I::createContinuousCameraMonitor);
}

TEST(SlotOrderTest, OfTheDeviceStays)
{
    using I = IDevice;
    expectSlots(afterDestructor, &I::index, &I::name, &I::systemName, &I::driverName, &I::busInfo,
                &I::driverVersion, &I::vendorId, &I::productId, &I::manufacturer, &I::serial,
                &I::firmwareVersion, &I::supportsAsynchIO, &I::supportsMultiplane,
                &I::supportsReadWrite, &I::supportsStreaming, &I::supportsVideoCapture,
                &I::isaZorvaneDevice, &I::usbRevision, &I::usbSpeed);
}

TEST(SlotOrderTest, OfTheDeviceListStays)
{
    using I = IDeviceList;
    expectSlots(afterDestructor, &I::size, &I::at, &I::deviceByName);
}

TEST(SlotOrderTest, OfTheCameraStays)
{
    using I = ICamera;
    using ByPosition = ICameraControl* (I::*)(int) const;
    using ByName = ICameraControl* (I::*)(char const*) const;
    expectSlots(
        afterDestructor, &I::controlNumber, &I::device, static_cast<ByPosition>(&I::control),
        static_cast<ByName>(&I::control), &I::autoContrastBrightnessControl,
        &I::autoExposureControl, &I::autoFocusControl, &I::autoHueControl,
        &I::autoSaturationControl, &I::autoSharpnessControl, &I::autoWhiteBalanceControl,
        &I::brightnessControl, &I::cameraErrorControl, &I::exposureAbsoluteControl, &I::gainControl,
        &I::focusControl, &I::keepAliveControl, &I::lightIntensityControl, &I::lightModeControl,
        &I::triggerAutoControl, &I::focusWindowX1Control, &I::focusWindowX2Control,
        &I::focusWindowY1Control, &I::focusWindowY2Control, &I::lockAutoControlsControl,
        &I::windowSelectedControl, &I::focusMinControl, &I::focusMaxControl, &I::focusStepControl,
        &I::focusSensitivityControl, &I::focusStrategyControl, &I::exposureSensitivityControl,
        &I::whiteBalanceTempControl, &I::sharpnessControl, &I::saturationControl,
        &I::contrastControl, &I::hueControl, &I::gammaControl, &I::autoGammaControl);
}

TEST(SlotOrderTest, OfTheCamerasFormatsStays)
{
    using I = ICamera;
    using ByPosition = bool (I::*)(int, int, int);
    using ByName = bool (I::*)(char const*, int, int, int, int);
    expectSlots(41, &I::invalidControl, &I::formatNumber, &I::format, &I::currentImageFormat,
                &I::currentFrameSize, &I::currentFrameInterval, &I::softwareReset,
                static_cast<ByPosition>(&I::setCurrentImageFormat),
                static_cast<ByName>(&I::setCurrentImageFormat));
}

TEST(SlotOrderTest, OfTheCamerasCaptureStays)
{
    using I = IBlockingCamera;
    expectSlots(50, &I::setup, &I::startCapture, &I::acquireFrame, &I::releaseFrame,
                &I::stopCapture, &I::cleanup);
}

TEST(SlotOrderTest, OfFormatsStays)
{
    expectSlots(afterDestructor, &IFramePeriod::isInvalid, &IFramePeriod::numerator,
                &IFramePeriod::denominator);
    expectSlots(afterDestructor, &IFrameSize::isInvalid, &IFrameSize::width, &IFrameSize::height,
                &IFrameSize::bytesPerLine, &IFrameSize::periodNumber, &IFrameSize::period);
    expectSlots(afterDestructor, &IImageFormat::isInvalid, &IImageFormat::isCompressed,
                &IImageFormat::isEmulated, &IImageFormat::name, &IImageFormat::description,
                &IImageFormat::sizeNumber, &IImageFormat::frameSize);
}

TEST(SlotOrderTest, OfFramesStays)
{
    using I = IFrame;
    using Bytes = unsigned char const* (I::*)() const;
    using WritableBytes = unsigned char* (I::*)();
    expectSlots(afterDestructor, &I::isInvalid, &I::size, static_cast<Bytes>(&I::bytePtr),
                &I::counter, &I::timeStamp, &I::isCorrupted, &I::allocSize, &I::bytesUsed,
                static_cast<WritableBytes>(&I::bytePtr));
}

TEST(SlotOrderTest, OfEventsStays)
{
    expectSlots(afterDestructor, &ICameraEvent::type, &ICameraEvent::deviceSystemName,
                &ICameraEvent::subSystemName);
}

/// The places of the first function that a typed control, and that a typed menu adds.
constexpr std::ptrdiff_t afterControl = afterDestructor + 17;
constexpr std::ptrdiff_t afterBaseMenu = afterControl + 4;

template <typename T>
void expectNumericSlots()
{
    using Numeric = ICameraControlNumeric<T>;
    expectSlots(afterControl, &Numeric::maximum, &Numeric::minimum, &Numeric::step, &Numeric::value,
                &Numeric::setValue);
}

TEST(SlotOrderTest, OfControlsStays)
{
    using C = ICameraControl;
    expectSlots(afterDestructor, &C::id, &C::type, &C::family, &C::name, &C::typeString,
                static_cast<char const* (C::*)() const>(&C::familyString), &C::isDisabled,
                &C::isGrabbed, &C::isReadOnly, &C::needsClassUpdate, &C::isInactive,
                &C::bestAsSlider, &C::isWriteOnly, &C::isVolatile, &C::hasPayload,
                &C::executesOnWrite, &C::updateState);
}

TEST(SlotOrderTest, OfTypedControlsStays)
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

TEST(SlotOrderTest, OfMenusStays)
{
    using Menu = ICameraControlBaseMenu;
    expectSlots(afterControl, &Menu::defaultIndex, &Menu::currentIndex, &Menu::setCurrentIndex,
                &Menu::count);
    using Texts = ICameraControlStringMenu;
    expectSlots(afterBaseMenu, &Texts::currentString, &Texts::defaultString, &Texts::string);
    using Numbers = ICameraControlInt64Menu;
    expectSlots(afterBaseMenu, &Numbers::currentValue, &Numbers::defaultValue, &Numbers::value);
}

TEST(SlotOrderTest, OfMonitorsStays)
{
    using Blocking = IBlockingCameraMonitor;
    expectSlots(afterDestructor, &Blocking::stopMonitoring, &Blocking::startMonitoring,
                &Blocking::getEvent);
    using Continuous = IContinuousCameraMonitor;
    expectSlots(afterDestructor, &Continuous::stopMonitoring, &Continuous::startMonitoring);
    expectSlots(afterDestructor, &Continuous::IClient::cameraEventReceived);
}

} // namespace
