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

TEST(CameraTransfer, PrefersMemoryMappingToUserPointersToRead)
{
    EXPECT_EQ(InputMethod::MemoryMapping, chosen(offering(true, true), true, true));
    EXPECT_EQ(InputMethod::MemoryMapping, chosen(offering(true, false), true, true));
    EXPECT_EQ(InputMethod::UserPointers, chosen(offering(false, true), true, true));
    EXPECT_EQ(InputMethod::Read, chosen(offering(false, false), true, true));
}

TEST(CameraTransfer, DoesNotStreamFromADeviceThatDoesNotSayThatItCan)
{
    EXPECT_EQ(InputMethod::Read, chosen(offering(true, true), false, true));
    EXPECT_EQ(std::nullopt, chosen(offering(true, true), false, false));
}

TEST(CameraTransfer, HasNoWayWhenTheDeviceOffersNone)
{
    EXPECT_EQ(std::nullopt, chosen(offering(false, false), true, false));
    EXPECT_EQ(std::nullopt, chosen(offering(false, false), false, false));
}

TEST(CameraTransfer, CountsABusyDeviceAsSupportingMemoryMapping)
{
    EXPECT_EQ(InputMethod::MemoryMapping,
              chosen(offering(false, true).failing(VIDIOC_REQBUFS, EBUSY), true, true));
}

TEST(CameraTransfer, AsksTheDriverWhatItSupports)
{
    auto const virtualCamera = offering(false, true).install();
    DeviceStub const device;
    Camera camera(&device);
    camera.init();
    EXPECT_FALSE(camera.supportsMemoryMapping());
    EXPECT_TRUE(camera.supportsUserPointers());
}

TEST(CameraTransfer, FailsEveryCallWithoutAWay)
{
    auto const virtualCamera = offering(false, false).offeringRead(false).install();
    DeviceStub device;
    device.readWrite = false;
    Camera camera(&device);
    ASSERT_TRUE(camera.init());
    unsigned const before = virtualCamera.countOf(Call::Ioctl);
    EXPECT_EQ(-1, camera.setup(4));
    EXPECT_EQ(-1, camera.startCapture());
    EXPECT_EQ(IFrame::invalid(), camera.acquireFrame());
    EXPECT_EQ(-1, camera.releaseFrame(IFrame::invalid()));
    EXPECT_EQ(-1, camera.releaseFrame(nullptr));
    EXPECT_EQ(-1, camera.stopCapture());
    EXPECT_EQ(-1, camera.cleanup());
    EXPECT_EQ(before, virtualCamera.countOf(Call::Ioctl));
}

TEST(CameraTransfer, CapturesThroughMappedBuffers)
{
    auto const virtualCamera = smallCamera().install();
    DeviceStub const device;
    Camera camera(&device);
    ASSERT_TRUE(camera.init());
    ASSERT_EQ(0, camera.setup(3));
    EXPECT_EQ(3, virtualCamera.accounting().liveMappings);
    ASSERT_EQ(0, camera.startCapture());
    for (unsigned int number = 0; number < 20; ++number) {
        IFrame* const frame = camera.acquireFrame();
        ASSERT_FALSE(frame->isInvalid());
        EXPECT_EQ(number, frame->counter());
        EXPECT_EQ(smallImageSize, frame->size());
        EXPECT_EQ(0, camera.releaseFrame(frame));
    }
    EXPECT_EQ(0, camera.stopCapture());
    EXPECT_EQ(0, camera.cleanup());
    EXPECT_EQ(0, virtualCamera.accounting().liveMappings);
    EXPECT_EQ(0, virtualCamera.accounting().allocatedBuffers);
}

TEST(CameraTransfer, SizesItsOwnBuffersForTheFormatThatIsSetNow)
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
        DeviceStub const device;
        Camera camera(&device);
        ASSERT_TRUE(camera.init());
        ASSERT_TRUE(camera.setCurrentImageFormat(0, 1, 0));
        {
            DescriptorLimit const none;
            ASSERT_EQ(0, camera.setup(2));
        }
        ASSERT_EQ(0, camera.startCapture());
        IFrame* const frame = camera.acquireFrame();
        EXPECT_FALSE(frame->isInvalid());
        EXPECT_EQ(32u * 24u * 2u, frame->allocSize());
        EXPECT_EQ(0, camera.releaseFrame(frame));
        EXPECT_EQ(0, camera.stopCapture());
        EXPECT_EQ(0, camera.cleanup());
    }
}

TEST(CameraTransfer, TakesANullFrameOnlyWhereItReads)
{
    struct
    {
        bool mapping;
        bool userPointers;
        int answer;
    } const cases[] = {{true, false, -1}, {false, true, -1}, {false, false, 0}};
    for (auto const& one : cases) {
        auto const virtualCamera = offering(one.mapping, one.userPointers).install();
        DeviceStub const device;
        Camera camera(&device);
        ASSERT_TRUE(camera.init());
        EXPECT_EQ(camera.releaseFrame(nullptr), one.answer);
        EXPECT_EQ(camera.releaseFrame(IFrame::invalid()), 0);
    }
}

TEST(CameraTransfer, FailsToSetUpReadAndUserPointersWhereAPipeCanBeMade)
{
    for (bool const userPointers : {true, false}) {
        auto const virtualCamera =
            smallCamera().offeringMmap(false).offeringUserPointers(userPointers).install();
        DeviceStub const device;
        Camera camera(&device);
        ASSERT_TRUE(camera.init());
        EXPECT_EQ(-1, camera.setup(2));
        EXPECT_TRUE(camera.acquireFrame()->isInvalid());
        EXPECT_EQ(0, camera.cleanup());
    }
}

} // namespace
