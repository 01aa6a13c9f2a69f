// SPDX-License-Identifier: MIT
// Which way of transfer a camera chooses, and how it hands capture calls on to it.
#include "camera/Camera.h"

#include "DescriptorLimit.h"
#include "DeviceStub.h"
#include "SmallCamera.h"

#include <gtest/gtest.h>

#include <linux/videodev2.h>

#include <cerrno>
#include <optional>

namespace
{

using namespace ImageAcquisition;
using VirtualCamera::Call;
using VirtualCamera::CameraBuilder;

/// The way that a camera chooses whose record and whose driver offer what is said here.
std::optional<InputMethod::Type> chosen(CameraBuilder const& builder, bool streaming,
                                        bool readWrite)
{
    auto const virtualCamera = builder.install();
    DeviceStub device;
    device.streaming = streaming;
    device.readWrite = readWrite;
    Camera camera(&device);
    EXPECT_TRUE(camera.init());
    if (camera.inputMethod() == nullptr) {
        return std::nullopt;
    }
    return camera.inputMethod()->type();
}

CameraBuilder offering(bool mapping, bool userPointers)
{
    return smallCamera().offeringMmap(mapping).offeringUserPointers(userPointers);
}

TEST(CameraTransferTest, PrefersMemoryMappingToUserPointersToRead)
{
    EXPECT_EQ(chosen(offering(true, true), true, true), InputMethod::MemoryMapping);
    EXPECT_EQ(chosen(offering(true, false), true, true), InputMethod::MemoryMapping);
    EXPECT_EQ(chosen(offering(false, true), true, true), InputMethod::UserPointers);
    EXPECT_EQ(chosen(offering(false, false), true, true), InputMethod::Read);
}

TEST(CameraTransferTest, DoesNotStreamFromADeviceThatDoesNotSayThatItCan)
{
    EXPECT_EQ(chosen(offering(true, true), false, true), InputMethod::Read);
    EXPECT_EQ(chosen(offering(true, true), false, false), std::nullopt);
}

TEST(CameraTransferTest, HasNoWayWhenTheDeviceOffersNone)
{
    EXPECT_EQ(chosen(offering(false, false), true, false), std::nullopt);
    EXPECT_EQ(chosen(offering(false, false), false, false), std::nullopt);
}

TEST(CameraTransferTest, CountsABusyDeviceAsSupportingMemoryMapping)
{
    EXPECT_EQ(chosen(offering(false, true).failing(VIDIOC_REQBUFS, EBUSY), true, true),
              InputMethod::MemoryMapping);
}

TEST(CameraTransferTest, AsksTheDriverWhatItSupports)
{
    auto const virtualCamera = offering(false, true).install();
    DeviceStub const device{};
    Camera camera(&device);
    camera.init();
    EXPECT_FALSE(camera.supportsMemoryMapping());
    EXPECT_TRUE(camera.supportsUserPointers());
}

TEST(CameraTransferTest, FailsEveryCallWithoutAWay)
{
    auto const virtualCamera = offering(false, false).offeringRead(false).install();
    DeviceStub device;
    device.readWrite = false;
    Camera camera(&device);
    ASSERT_TRUE(camera.init());
    unsigned const before = virtualCamera.countOf(Call::Ioctl);
    EXPECT_EQ(camera.setup(4), -1);
    EXPECT_EQ(camera.startCapture(), -1);
    EXPECT_EQ(IFrame::invalid(), camera.acquireFrame());
    EXPECT_EQ(camera.releaseFrame(IFrame::invalid()), -1);
    EXPECT_EQ(camera.releaseFrame(nullptr), -1);
    EXPECT_EQ(camera.stopCapture(), -1);
    EXPECT_EQ(camera.cleanup(), -1);
    EXPECT_EQ(virtualCamera.countOf(Call::Ioctl), before);
}

TEST(CameraTransferTest, CapturesThroughMappedBuffers)
{
    auto const virtualCamera = smallCamera().install();
    DeviceStub const device{};
    Camera camera(&device);
    ASSERT_TRUE(camera.init());
    ASSERT_EQ(camera.setup(3), 0);
    EXPECT_EQ(virtualCamera.accounting().liveMappings, 3);
    ASSERT_EQ(camera.startCapture(), 0);
    for (unsigned int number = 0; number < 20; ++number) {
        IFrame* const frame = camera.acquireFrame();
        ASSERT_FALSE(frame->isInvalid());
        EXPECT_EQ(frame->counter(), number);
        EXPECT_EQ(frame->size(), smallImageSize);
        EXPECT_EQ(camera.releaseFrame(frame), 0);
    }
    EXPECT_EQ(camera.stopCapture(), 0);
    EXPECT_EQ(camera.cleanup(), 0);
    EXPECT_EQ(virtualCamera.accounting().liveMappings, 0);
    EXPECT_EQ(virtualCamera.accounting().allocatedBuffers, 0);
}

TEST(CameraTransferTest, SizesItsOwnBuffersForTheFormatThatIsSetNow)
{
    for (bool const userPointers : {true, false}) {
        auto const virtualCamera = VirtualCamera::aCamera()
                                       .withFormat("YUYV")
                                       .withSize(64, 48)
                                       .withInterval(1, 30)
                                       .withSize(32, 24)
                                       .withInterval(1, 30)
                                       .paced(VirtualCamera::Pace::Immediate)
                                       .offeringMmap(false)
                                       .offeringUserPointers(userPointers)
                                       .install();
        DeviceStub const device{};
        Camera camera(&device);
        ASSERT_TRUE(camera.init());
        ASSERT_TRUE(camera.setCurrentImageFormat(0, 1, 0));
        {
            DescriptorLimit const none;
            ASSERT_EQ(camera.setup(2), 0);
        }
        ASSERT_EQ(camera.startCapture(), 0);
        IFrame* const frame = camera.acquireFrame();
        EXPECT_FALSE(frame->isInvalid());
        EXPECT_EQ(frame->allocSize(), 32u * 24u * 2u);
        EXPECT_EQ(camera.releaseFrame(frame), 0);
        EXPECT_EQ(camera.stopCapture(), 0);
        EXPECT_EQ(camera.cleanup(), 0);
    }
}

TEST(CameraTransferTest, TakesANullFrameOnlyWhereItReads)
{
    struct
    {
        bool mapping;
        bool userPointers;
        int answer;
    } const cases[] = {{true, false, -1}, {false, true, -1}, {false, false, 0}};
    for (auto const& one : cases) {
        auto const virtualCamera = offering(one.mapping, one.userPointers).install();
        DeviceStub const device{};
        Camera camera(&device);
        ASSERT_TRUE(camera.init());
        EXPECT_EQ(camera.releaseFrame(nullptr), one.answer);
        EXPECT_EQ(camera.releaseFrame(IFrame::invalid()), 0);
    }
}

TEST(CameraTransferTest, FailsToSetUpReadAndUserPointersWhereAPipeCanBeMade)
{
    for (bool const userPointers : {true, false}) {
        auto const virtualCamera =
            smallCamera().offeringMmap(false).offeringUserPointers(userPointers).install();
        DeviceStub const device{};
        Camera camera(&device);
        ASSERT_TRUE(camera.init());
        EXPECT_EQ(camera.setup(2), -1);
        EXPECT_TRUE(camera.acquireFrame()->isInvalid());
        EXPECT_EQ(camera.cleanup(), 0);
    }
}

} // namespace
