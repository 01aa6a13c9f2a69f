// SPDX-License-Identifier: MIT
#include "format/ImageFormatManager.h"

#include "OpenNode.h"
#include "TwoFormatCamera.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <stdexcept>

namespace
{

using namespace ImageAcquisition;
using VirtualCamera::Call;

class ImageFormatManagerTest : public testing::Test
{
protected:
    ImageFormatManagerTest()
    {
        m_manager.init(m_node.fd());
        m_camera.clearLog();
    }

    VirtualCamera::InstalledCamera m_camera = twoFormatCamera().install();
    OpenNode const m_node;
    ImageFormatManager m_manager;
};

TEST_F(ImageFormatManagerTest, ListsTheFormatsInTheDriversOrder)
{
    ASSERT_EQ(m_manager.formatNumber(), 2);
    EXPECT_STREQ(m_manager.format(0)->name(), "YUYV");
    EXPECT_STREQ(m_manager.format(1)->name(), "MJPG");
    EXPECT_EQ(m_manager.format(0)->sizeNumber(), 2);
    EXPECT_EQ(m_manager.format(1), m_manager.formatPtr(1));
    EXPECT_TRUE(m_manager.invariants());
}

TEST_F(ImageFormatManagerTest, GivesTheInvalidFormatOutsideItsList)
{
    EXPECT_EQ(IImageFormat::invalid(), m_manager.format(-1));
    EXPECT_EQ(IImageFormat::invalid(), m_manager.format(2));
    EXPECT_THROW(m_manager.formatPtr(-1), std::out_of_range);
    EXPECT_THROW(m_manager.formatPtr(2), std::out_of_range);
}

TEST_F(ImageFormatManagerTest, FindsAFormatByItsNameToTheLetter)
{
    EXPECT_EQ(m_manager.formatPtr(1), m_manager.formatPtr("MJPG"));
    EXPECT_EQ(m_manager.formatPtr("mjpg"), nullptr);
    EXPECT_EQ(m_manager.formatPtr("MJP"), nullptr);
    EXPECT_EQ(m_manager.formatPtr("MJPG "), nullptr);
    EXPECT_EQ(m_manager.formatPtr(""), nullptr);
}

TEST_F(ImageFormatManagerTest, FindsAFormatByItsCode)
{
    EXPECT_EQ(m_manager.formatIndexByPixelFormat(V4L2_PIX_FMT_MJPEG), 1);
    EXPECT_EQ(m_manager.formatIndexByPixelFormat(V4L2_PIX_FMT_NV12), -1);
}

TEST_F(ImageFormatManagerTest, SelectsByPosition)
{
    EXPECT_TRUE(m_manager.setCurrentFormat(0, 1, 0));
    EXPECT_EQ(m_manager.currentFormat(), 0);
    EXPECT_EQ(m_manager.currentFrameSize(), 1);
    EXPECT_EQ(m_manager.currentFrameInterval(), 0);
    EXPECT_TRUE(m_manager.setCurrentFormat(0, 0, 1));
    EXPECT_EQ(m_manager.currentFrameSize(), 0);
    EXPECT_EQ(m_manager.currentFrameInterval(), 1);
    EXPECT_TRUE(m_manager.setCurrentFormat(1, 0, 0));
    EXPECT_EQ(m_manager.currentFormat(), 1);
}

TEST_F(ImageFormatManagerTest, SelectsByNameAndValue)
{
    EXPECT_TRUE(m_manager.setCurrentFormat("YUYV", 640, 480, 1, 15));
    EXPECT_EQ(m_manager.currentFormat(), 0);
    EXPECT_EQ(m_manager.currentFrameSize(), 0);
    EXPECT_EQ(m_manager.currentFrameInterval(), 1);
}

TEST_F(ImageFormatManagerTest, RefusesAFormatPositionThatIsTooLargeWithoutAskingTheDevice)
{
    EXPECT_FALSE(m_manager.setCurrentFormat(m_manager.formatNumber(), 0, 0));
    EXPECT_EQ(m_camera.countOf(Call::Ioctl), 0u);
}

TEST_F(ImageFormatManagerTest, ThrowsForANegativeFormatPosition)
{
    EXPECT_THROW(m_manager.setCurrentFormat(-1, 0, 0), std::out_of_range);
}

TEST_F(ImageFormatManagerTest, RefusesNamesThatNoFormatHas)
{
    EXPECT_FALSE(m_manager.setCurrentFormat(nullptr, 640, 480, 1, 30));
    EXPECT_FALSE(m_manager.setCurrentFormat("NV12", 640, 480, 1, 30));
    EXPECT_EQ(m_camera.countOf(Call::Ioctl), 0u);
}

TEST_F(ImageFormatManagerTest, ReportsTheImageSizeOfTheFormatThatIsSetNow)
{
    EXPECT_EQ(m_manager.currentSizeImage(), 640u * 480u * 2u);
    EXPECT_TRUE(m_manager.setCurrentFormat(0, 1, 0));
    EXPECT_EQ(m_manager.currentSizeImage(), 320u * 240u * 2u);
}

TEST_F(ImageFormatManagerTest, ReadsWhatAnotherProgramSelected)
{
    m_camera.setCurrentFormat("YUYV", 320, 240);
    m_camera.setCurrentInterval(1, 60);
    EXPECT_EQ(m_manager.currentFormat(), 0);
    EXPECT_EQ(m_manager.currentFrameSize(), 1);
    EXPECT_EQ(m_manager.currentFrameInterval(), 0);
}

TEST_F(ImageFormatManagerTest, FindsNoSizeWhenTheDevicesSizeIsNotInTheList)
{
    m_camera.setCurrentFormat("MJPG", 1000, 700);
    EXPECT_EQ(m_manager.currentFormat(), 1);
    EXPECT_EQ(m_manager.currentFrameSize(), -1);
    m_camera.clearLog();
    EXPECT_EQ(m_manager.currentFrameInterval(), -1);
    EXPECT_EQ(m_camera.countOf(VIDIOC_G_PARM), 0u);
}

TEST_F(ImageFormatManagerTest, FindsNoIntervalWhenTheDevicesIntervalIsNotInTheList)
{
    m_camera.setCurrentInterval(2, 60);
    EXPECT_EQ(m_manager.currentFrameSize(), 0);
    EXPECT_EQ(m_manager.currentFrameInterval(), -1);
}

TEST_F(ImageFormatManagerTest, ThrowsWhenTheDevicesFormatIsNotInTheCatalogue)
{
    m_camera.setCurrentFormat("NV12", 640, 480);
    EXPECT_EQ(m_manager.currentFormat(), -1);
    EXPECT_THROW(m_manager.currentFrameSize(), std::out_of_range);
    EXPECT_THROW(m_manager.currentFrameInterval(), std::out_of_range);
}

TEST_F(ImageFormatManagerTest, KnowsNothingOfADeviceThatDoesNotAnswer)
{
    m_camera.failFrom(VIDIOC_G_FMT, EIO);
    EXPECT_EQ(m_manager.currentFormat(), -1);
    EXPECT_EQ(m_manager.currentFrameSize(), -1);
    EXPECT_EQ(m_manager.currentFrameInterval(), -1);
    EXPECT_EQ(m_manager.currentSizeImage(), 0u);
}

TEST_F(ImageFormatManagerTest, KnowsNoIntervalWhenTheDeviceDoesNotTell)
{
    m_camera.failFrom(VIDIOC_G_PARM, EIO);
    EXPECT_EQ(m_manager.currentFrameSize(), 0);
    EXPECT_EQ(m_manager.currentFrameInterval(), -1);
}

} // namespace
