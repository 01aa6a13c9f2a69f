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
        EXPECT_EQ(slot, actual) << "function " << slot - first << " of those that begin at "
                                << first;
        ++slot;
    }
}

TEST(SlotOrderTest, OfTheFactoryStays)
{
    using I = ICameraFactory;
    expectSlots(2, &I::createDevice, &I::createDeviceList, &I::createBlockingCamera,
                &I::createEvent, &I::createBlockingCameraMonitor,
                &I::createContinuousCameraMonitor);
}

TEST(SlotOrderTest, OfTheDeviceStays)
{
    using I = IDevice;
    expectSlots(2, &I::index, &I::name, &I::systemName, &I::driverName, &I::busInfo,
                &I::driverVersion, &I::vendorId, &I::productId, &I::manufacturer, &I::serial,
                &I::firmwareVersion, &I::supportsAsynchIO, &I::supportsMultiplane,
                &I::supportsReadWrite, &I::supportsStreaming, &I::supportsVideoCapture,
                &I::isaZorvaneDevice, &I::usbRevision, &I::usbSpeed);
}

TEST(SlotOrderTest, OfTheDeviceListStays)
{
    using I = IDeviceList;
    expectSlots(2, &I::size, &I::at, &I::deviceByName);
}

TEST(SlotOrderTest, OfTheCameraStays)
{
    using I = ICamera;
    using ByPosition = ICameraControl* (I::*)(int) const;
    using ByName = ICameraControl* (I::*)(char const*) const;
    expectSlots(2, &I::controlNumber, &I::device, static_cast<ByPosition>(&I::control),
                static_cast<ByName>(&I::control), &I::autoContrastBrightnessControl,
                &I::autoExposureControl, &I::autoFocusControl, &I::autoHueControl,
                &I::autoSaturationControl, &I::autoSharpnessControl, &I::autoWhiteBalanceControl,
                &I::brightnessControl, &I::cameraErrorControl, &I::exposureAbsoluteControl,
                &I::gainControl, &I::focusControl, &I::keepAliveControl, &I::lightIntensityControl,
                &I::lightModeControl, &I::triggerAutoControl, &I::focusWindowX1Control,
                &I::focusWindowX2Control, &I::focusWindowY1Control, &I::focusWindowY2Control,
                &I::lockAutoControlsControl, &I::windowSelectedControl, &I::focusMinControl,
                &I::focusMaxControl, &I::focusStepControl, &I::focusSensitivityControl,
                &I::focusStrategyControl, &I::exposureSensitivityControl,
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
    expectSlots(2, &IFramePeriod::isInvalid, &IFramePeriod::numerator, &IFramePeriod::denominator);
    expectSlots(2, &IFrameSize::isInvalid, &IFrameSize::width, &IFrameSize::height,
                &IFrameSize::bytesPerLine, &IFrameSize::periodNumber, &IFrameSize::period);
    expectSlots(2, &IImageFormat::isInvalid, &IImageFormat::isCompressed, &IImageFormat::isEmulated,
                &IImageFormat::name, &IImageFormat::description, &IImageFormat::sizeNumber,
                &IImageFormat::frameSize);
}

TEST(SlotOrderTest, OfFramesStays)
{
    using I = IFrame;
    using Bytes = unsigned char const* (I::*)() const;
    using WritableBytes = unsigned char* (I::*)();
    expectSlots(2, &I::isInvalid, &I::size, static_cast<Bytes>(&I::bytePtr), &I::counter,
                &I::timeStamp, &I::isCorrupted, &I::allocSize, &I::bytesUsed,
                static_cast<WritableBytes>(&I::bytePtr));
}

TEST(SlotOrderTest, OfEventsStays)
{
    expectSlots(2, &ICameraEvent::type, &ICameraEvent::deviceSystemName,
                &ICameraEvent::subSystemName);
}

} // namespace
