// SPDX-License-Identifier: MIT
// What a camera tells of its formats, and how it selects one.
#include "camera/Camera.h"

#include "DeviceStub.h"
#include "IFramePeriod.h"
#include "IFrameSize.h"
#include "IImageFormat.h"
#include "VirtualCamera.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <stdexcept>

namespace
{

using namespace ImageAcquisition;
using VirtualCamera::Call;

class CameraFormat : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(camera.init());
        virtualCamera.clearLog();
    }

    VirtualCamera::InstalledCamera virtualCamera = VirtualCamera::aCamera()
                                                       .withFormat("YUYV")
                                                       .withSize(640, 480)
                                                       .withInterval(1, 30)
                                                       .withInterval(1, 15)
                                                       .withSize(320, 240)
                                                       .withInterval(1, 60)
                                                       .withFormat("MJPG")
                                                       .withSize(1280, 720)
                                                       .withInterval(1, 30)
                                                       .install();
    DeviceStub const device{};
    Camera camera{&device};
};

TEST_F(CameraFormat, ListsTheFormats)
{
    ASSERT_EQ(camera.formatNumber(), 2);
    EXPECT_STREQ(camera.format(0)->name(), "YUYV");
    EXPECT_STREQ(camera.format(1)->name(), "MJPG");
    EXPECT_EQ(IImageFormat::invalid(), camera.format(-1));
    EXPECT_EQ(IImageFormat::invalid(), camera.format(2));
}

TEST_F(CameraFormat, SelectsByPosition)
{
    EXPECT_TRUE(camera.setCurrentImageFormat(0, 0, 1));
    EXPECT_EQ(camera.format(0), camera.currentImageFormat());
    EXPECT_EQ(camera.format(0)->frameSize(0), camera.currentFrameSize());
    EXPECT_EQ(camera.format(0)->frameSize(0)->period(1), camera.currentFrameInterval());
    EXPECT_TRUE(camera.setCurrentImageFormat(1, 0, 0));
    EXPECT_EQ(camera.format(1), camera.currentImageFormat());
}

TEST_F(CameraFormat, SelectsByNameAndValue)
{
    EXPECT_TRUE(camera.setCurrentImageFormat("YUYV", 320, 240, 1, 60));
    EXPECT_EQ(camera.format(0)->frameSize(1), camera.currentFrameSize());
    EXPECT_EQ(camera.currentFrameInterval()->denominator(), 60u);
    EXPECT_FALSE(camera.setCurrentImageFormat("YUYV", 320, 240, 1, 30));
    EXPECT_FALSE(camera.setCurrentImageFormat("NV12", 320, 240, 1, 60));
    EXPECT_FALSE(camera.setCurrentImageFormat(nullptr, 320, 240, 1, 60));
}

TEST_F(CameraFormat, RefusesNegativePositionsWithoutAskingTheDevice)
{
    EXPECT_FALSE(camera.setCurrentImageFormat(0, -1, 0));
    EXPECT_FALSE(camera.setCurrentImageFormat(-1, 0, 0));
    EXPECT_FALSE(camera.setCurrentImageFormat(0, 0, -1));
    EXPECT_EQ(virtualCamera.countOf(Call::Ioctl), 0u);
}

TEST_F(CameraFormat, RefusesPositionsThatAreTooLarge)
{
    EXPECT_FALSE(camera.setCurrentImageFormat(2, 0, 0));
    EXPECT_FALSE(camera.setCurrentImageFormat(0, 2, 0));
    EXPECT_EQ(virtualCamera.countOf(Call::Ioctl), 0u);
}

TEST_F(CameraFormat, LetsTheDeviceChooseForAnIntervalPositionThatIsTooLarge)
{
    EXPECT_TRUE(camera.setCurrentImageFormat(0, 0, 2));
    EXPECT_EQ(camera.format(0)->frameSize(0)->period(0), camera.currentFrameInterval());
}

TEST_F(CameraFormat, ReportsWhatIsNotInTheListsAsInvalid)
{
    virtualCamera.setCurrentInterval(1, 7);
    EXPECT_EQ(camera.format(0)->frameSize(0), camera.currentFrameSize());
    EXPECT_EQ(IFramePeriod::invalid(), camera.currentFrameInterval());
    virtualCamera.setCurrentFormat("YUYV", 100, 100);
    EXPECT_EQ(camera.format(0), camera.currentImageFormat());
    EXPECT_EQ(IFrameSize::invalid(), camera.currentFrameSize());
    EXPECT_EQ(IFramePeriod::invalid(), camera.currentFrameInterval());
}

TEST_F(CameraFormat, ThrowsForTheSizeOfAFormatThatIsNotInTheList)
{
    virtualCamera.setCurrentFormat("NV12", 640, 480);
    EXPECT_EQ(IImageFormat::invalid(), camera.currentImageFormat());
    EXPECT_THROW(camera.currentFrameSize(), std::out_of_range);
    EXPECT_THROW(camera.currentFrameInterval(), std::out_of_range);
}

TEST_F(CameraFormat, ReportsEverythingInvalidWhenTheDeviceDoesNotAnswer)
{
    virtualCamera.failFrom(VIDIOC_G_FMT, EIO);
    EXPECT_EQ(IImageFormat::invalid(), camera.currentImageFormat());
    EXPECT_EQ(IFrameSize::invalid(), camera.currentFrameSize());
    EXPECT_EQ(IFramePeriod::invalid(), camera.currentFrameInterval());
}

// The size and the interval are looked up in two steps, and the device may fail between them.
TEST_F(CameraFormat, StaysSafeWhenTheDeviceStopsAnsweringInBetween)
{
    for (unsigned int answers = 1; answers <= 3; ++answers) {
        virtualCamera.failFrom(VIDIOC_G_FMT, ENODEV, answers);
        EXPECT_NE(camera.currentFrameSize(), nullptr);
        virtualCamera.stopFailing();
        virtualCamera.failFrom(VIDIOC_G_FMT, ENODEV, answers);
        EXPECT_NE(camera.currentFrameInterval(), nullptr);
        virtualCamera.stopFailing();
    }
}

} // namespace
