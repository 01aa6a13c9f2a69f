// SPDX-License-Identifier: MIT
// What a camera tells of its formats, and how it selects one.
#include "camera/Camera.h"

#include "DeviceStub.h"
#include "IFramePeriod.h"
#include "IFrameSize.h"
#include "IImageFormat.h"
#include "TwoFormatCamera.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <stdexcept>

namespace
{

using namespace ImageAcquisition;
using VirtualCamera::Call;

class CameraFormatTest : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_camera.init());
        m_virtualCamera.clearLog();
    }

    VirtualCamera::InstalledCamera m_virtualCamera = twoFormatCamera().install();
    DeviceStub const m_device{};
    Camera m_camera{&m_device};
};

TEST_F(CameraFormatTest, ListsTheFormats)
{
    ASSERT_EQ(m_camera.formatNumber(), 2);
    EXPECT_STREQ(m_camera.format(0)->name(), "YUYV");
    EXPECT_STREQ(m_camera.format(1)->name(), "MJPG");
    EXPECT_EQ(IImageFormat::invalid(), m_camera.format(-1));
    EXPECT_EQ(IImageFormat::invalid(), m_camera.format(2));
}

TEST_F(CameraFormatTest, SelectsByPosition)
{
    EXPECT_TRUE(m_camera.setCurrentImageFormat(0, 0, 1));
    EXPECT_EQ(m_camera.format(0), m_camera.currentImageFormat());
    EXPECT_EQ(m_camera.format(0)->frameSize(0), m_camera.currentFrameSize());
    EXPECT_EQ(m_camera.format(0)->frameSize(0)->period(1), m_camera.currentFrameInterval());
    EXPECT_TRUE(m_camera.setCurrentImageFormat(1, 0, 0));
    EXPECT_EQ(m_camera.format(1), m_camera.currentImageFormat());
}

TEST_F(CameraFormatTest, SelectsByNameAndValue)
{
    EXPECT_TRUE(m_camera.setCurrentImageFormat("YUYV", 320, 240, 1, 60));
    EXPECT_EQ(m_camera.format(0)->frameSize(1), m_camera.currentFrameSize());
    EXPECT_EQ(m_camera.currentFrameInterval()->denominator(), 60u);
    EXPECT_FALSE(m_camera.setCurrentImageFormat("YUYV", 320, 240, 1, 30));
    EXPECT_FALSE(m_camera.setCurrentImageFormat("NV12", 320, 240, 1, 60));
    EXPECT_FALSE(m_camera.setCurrentImageFormat(nullptr, 320, 240, 1, 60));
}

TEST_F(CameraFormatTest, AsksTheDeviceOnceForWhatIsSet)
{
    m_camera.currentImageFormat();
    m_camera.currentFrameSize();
    EXPECT_EQ(m_virtualCamera.countOf(Call::Ioctl), 2u);
    m_virtualCamera.clearLog();
    m_camera.currentFrameInterval();
    EXPECT_EQ(m_virtualCamera.countOf(VIDIOC_G_FMT), 1u);
    EXPECT_EQ(m_virtualCamera.countOf(VIDIOC_G_PARM), 1u);
    EXPECT_EQ(m_virtualCamera.countOf(Call::Ioctl), 2u);
}

TEST_F(CameraFormatTest, RefusesNegativePositionsWithoutAskingTheDevice)
{
    EXPECT_FALSE(m_camera.setCurrentImageFormat(0, -1, 0));
    EXPECT_FALSE(m_camera.setCurrentImageFormat(-1, 0, 0));
    EXPECT_FALSE(m_camera.setCurrentImageFormat(0, 0, -1));
    EXPECT_EQ(m_virtualCamera.countOf(Call::Ioctl), 0u);
}

TEST_F(CameraFormatTest, RefusesPositionsThatAreTooLarge)
{
    EXPECT_FALSE(m_camera.setCurrentImageFormat(2, 0, 0));
    EXPECT_FALSE(m_camera.setCurrentImageFormat(0, 2, 0));
    EXPECT_EQ(m_virtualCamera.countOf(Call::Ioctl), 0u);
}

TEST_F(CameraFormatTest, LetsTheDeviceChooseForAnIntervalPositionThatIsTooLarge)
{
    EXPECT_TRUE(m_camera.setCurrentImageFormat(0, 0, 2));
    EXPECT_EQ(m_camera.format(0)->frameSize(0)->period(0), m_camera.currentFrameInterval());
}

TEST_F(CameraFormatTest, ReportsWhatIsNotInTheListsAsInvalid)
{
    m_virtualCamera.setCurrentInterval(1, 7);
    EXPECT_EQ(m_camera.format(0)->frameSize(0), m_camera.currentFrameSize());
    EXPECT_EQ(IFramePeriod::invalid(), m_camera.currentFrameInterval());
    m_virtualCamera.setCurrentFormat("YUYV", 100, 100);
    EXPECT_EQ(m_camera.format(0), m_camera.currentImageFormat());
    EXPECT_EQ(IFrameSize::invalid(), m_camera.currentFrameSize());
    EXPECT_EQ(IFramePeriod::invalid(), m_camera.currentFrameInterval());
}

TEST_F(CameraFormatTest, ThrowsForTheSizeOfAFormatThatIsNotInTheList)
{
    m_virtualCamera.setCurrentFormat("NV12", 640, 480);
    EXPECT_EQ(IImageFormat::invalid(), m_camera.currentImageFormat());
    EXPECT_THROW(m_camera.currentFrameSize(), std::out_of_range);
    EXPECT_THROW(m_camera.currentFrameInterval(), std::out_of_range);
}

TEST_F(CameraFormatTest, ReportsEverythingInvalidWhenTheDeviceDoesNotAnswer)
{
    m_virtualCamera.failFrom(VIDIOC_G_FMT, EIO);
    EXPECT_EQ(IImageFormat::invalid(), m_camera.currentImageFormat());
    EXPECT_EQ(IFrameSize::invalid(), m_camera.currentFrameSize());
    EXPECT_EQ(IFramePeriod::invalid(), m_camera.currentFrameInterval());
}

// The size and the interval are looked up in two steps, and the device may fail between them.
TEST_F(CameraFormatTest, StaysSafeWhenTheDeviceStopsAnsweringInBetween)
{
    for (unsigned int answers = 1; answers <= 3; ++answers) {
        m_virtualCamera.failFrom(VIDIOC_G_FMT, ENODEV, answers);
        EXPECT_NE(m_camera.currentFrameSize(), nullptr);
        m_virtualCamera.stopFailing();
        m_virtualCamera.failFrom(VIDIOC_G_FMT, ENODEV, answers);
        EXPECT_NE(m_camera.currentFrameInterval(), nullptr);
        m_virtualCamera.stopFailing();
    }
}

} // namespace
