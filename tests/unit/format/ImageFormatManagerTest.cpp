// SPDX-License-Identifier: MIT
#include "format/ImageFormatManager.h"

#include "OpenNode.h"
#include "V4l2Hook.h"
#include "VirtualCamera.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <stdexcept>

namespace
{

using namespace ImageAcquisition;
using VirtualCamera::aCamera;
using VirtualCamera::Call;

class ImageFormatManagerWithCamera : public testing::Test
{
protected:
    ImageFormatManagerWithCamera()
    {
        m_manager.init(m_node.fd());
        m_camera.clearLog();
    }

    VirtualCamera::InstalledCamera m_camera = aCamera()
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
    OpenNode const m_node;
    ImageFormatManager m_manager;
};

TEST(ImageFormatManager, IsEmptyBeforeInit)
{
    ImageFormatManager const manager;
    EXPECT_EQ(manager.formatNumber(), 0);
    EXPECT_TRUE(manager.invariants());
    EXPECT_EQ(manager.currentFormat(), -1);
    EXPECT_EQ(manager.currentFrameSize(), -1);
    EXPECT_EQ(manager.currentFrameInterval(), -1);
    EXPECT_EQ(manager.currentSizeImage(), 0u);
}

TEST(ImageFormatManager, StaysEmptyWhenTheDeviceListsNoFormats)
{
    auto const camera = aCamera().withFormat("YUYV").failing(VIDIOC_ENUM_FMT, EINVAL).install();
    OpenNode const node;
    ImageFormatManager manager;
    manager.init(node.fd());
    EXPECT_EQ(manager.formatNumber(), 0);
    EXPECT_EQ(IImageFormat::invalid(), manager.format(0));
    EXPECT_EQ(manager.formatPtr("YUYV"), nullptr);
    EXPECT_THROW(manager.formatPtr(0), std::out_of_range);
    EXPECT_TRUE(manager.invariants());
}

TEST(ImageFormatManager, KeepsAFormatThatIsListedTwiceButFindsTheFirst)
{
    auto const camera = aCamera()
                            .withFormat("MJPG", "first")
                            .withFormat("YUYV", "first")
                            .withFormat("YUYV", "second")
                            .install();
    OpenNode const node;
    ImageFormatManager manager;
    manager.init(node.fd());
    ASSERT_EQ(manager.formatNumber(), 3);
    EXPECT_EQ(manager.formatIndexByPixelFormat(V4L2_PIX_FMT_YUYV), 1);
    EXPECT_STREQ(manager.format(2)->description(), "second");
    EXPECT_EQ(manager.format(1), manager.formatPtr("YUYV"));
    EXPECT_FALSE(manager.invariants());
}

TEST(ImageFormatManager, EndsTheListOfADriverThatNeverDoes)
{
    V4l2Hook const hook([](int, unsigned long request, void*) {
        errno = EINVAL;
        return request == VIDIOC_ENUM_FMT ? 0 : -1;
    });
    ImageFormatManager manager;
    manager.init(3);
    EXPECT_EQ(manager.formatNumber(), 4096);
}

/// How many formats, sizes and intervals there are in all.
int entriesOf(ImageFormatManager const& manager)
{
    int entries = manager.formatNumber();
    for (int format = 0; format < manager.formatNumber(); ++format) {
        entries += manager.format(format)->sizeNumber();
        for (int size = 0; size < manager.format(format)->sizeNumber(); ++size) {
            entries += manager.format(format)->frameSize(size)->periodNumber();
        }
    }
    return entries;
}

/// A driver that lists so many formats, each with so many sizes of so many intervals; 0 stands for
/// lists without end.
class EndlessDriver
{
public:
    EndlessDriver(unsigned int formats, unsigned int sizes, unsigned int intervals)
        : m_hook([=](int, unsigned long request, void* argument) {
              ++m_calls;
              switch (request) {
              case VIDIOC_ENUM_FMT:
                  return answer(*static_cast<v4l2_fmtdesc*>(argument), formats);
              case VIDIOC_ENUM_FRAMESIZES:
                  return answer(*static_cast<v4l2_frmsizeenum*>(argument), sizes);
              case VIDIOC_ENUM_FRAMEINTERVALS:
                  return answer(*static_cast<v4l2_frmivalenum*>(argument), intervals);
              default:
                  return -1;
              }
          })
    {
    }

    unsigned int calls() const { return m_calls; }

private:
    template <typename Entry>
    static int answer(Entry& entry, unsigned int count)
    {
        errno = EINVAL;
        // One value says "discrete" for sizes and for intervals, and "capture" for formats.
        entry.type = V4L2_FRMSIZE_TYPE_DISCRETE;
        return count == 0 || entry.index < count ? 0 : -1;
    }

    unsigned int m_calls = 0;
    V4l2Hook const m_hook;
};

TEST(ImageFormatManager, EndsTheCatalogueOfADriverThatAnswersEverything)
{
    EndlessDriver const driver(0, 0, 0);
    ImageFormatManager manager;
    manager.init(3);
    EXPECT_EQ(entriesOf(manager), 65536);
    EXPECT_LT(driver.calls(), 66000u);
}

TEST(ImageFormatManager, EndsTheCatalogueAtWhicheverListGrows)
{
    for (auto const& counts : {std::array{0u, 0u, 1u}, std::array{2u, 0u, 0u},
                               std::array{0u, 5u, 0u}, std::array{0u, 20u, 20u}}) {
        EndlessDriver const driver(counts[0], counts[1], counts[2]);
        ImageFormatManager manager;
        manager.init(3);
        EXPECT_EQ(entriesOf(manager), 65536);
        EXPECT_LT(driver.calls(), 200000u);
    }
}

TEST(ImageFormatManager, KeepsACatalogueOfJustTheLargestSizeWhole)
{
    EndlessDriver const driver(2, 31, 1056);
    ImageFormatManager manager;
    manager.init(3);
    ASSERT_EQ(entriesOf(manager), 2 * (1 + 31 * (1 + 1056)));
    EXPECT_EQ(entriesOf(manager), 65536);
    EXPECT_EQ(manager.format(1)->frameSize(30)->periodNumber(), 1056);
}

TEST_F(ImageFormatManagerWithCamera, ListsTheFormatsInTheDriversOrder)
{
    ASSERT_EQ(m_manager.formatNumber(), 2);
    EXPECT_STREQ(m_manager.format(0)->name(), "YUYV");
    EXPECT_STREQ(m_manager.format(1)->name(), "MJPG");
    EXPECT_EQ(m_manager.format(0)->sizeNumber(), 2);
    EXPECT_EQ(m_manager.format(1), m_manager.formatPtr(1));
    EXPECT_TRUE(m_manager.invariants());
}

TEST_F(ImageFormatManagerWithCamera, GivesTheInvalidFormatOutsideItsList)
{
    EXPECT_EQ(IImageFormat::invalid(), m_manager.format(-1));
    EXPECT_EQ(IImageFormat::invalid(), m_manager.format(2));
    EXPECT_THROW(m_manager.formatPtr(-1), std::out_of_range);
    EXPECT_THROW(m_manager.formatPtr(2), std::out_of_range);
}

TEST_F(ImageFormatManagerWithCamera, FindsAFormatByItsNameToTheLetter)
{
    EXPECT_EQ(m_manager.formatPtr(1), m_manager.formatPtr("MJPG"));
    EXPECT_EQ(m_manager.formatPtr("mjpg"), nullptr);
    EXPECT_EQ(m_manager.formatPtr("MJP"), nullptr);
    EXPECT_EQ(m_manager.formatPtr("MJPG "), nullptr);
    EXPECT_EQ(m_manager.formatPtr(""), nullptr);
}

TEST_F(ImageFormatManagerWithCamera, FindsAFormatByItsCode)
{
    EXPECT_EQ(m_manager.formatIndexByPixelFormat(V4L2_PIX_FMT_MJPEG), 1);
    EXPECT_EQ(m_manager.formatIndexByPixelFormat(V4L2_PIX_FMT_NV12), -1);
}

TEST_F(ImageFormatManagerWithCamera, SelectsByPosition)
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

TEST_F(ImageFormatManagerWithCamera, SelectsByNameAndValue)
{
    EXPECT_TRUE(m_manager.setCurrentFormat("YUYV", 640, 480, 1, 15));
    EXPECT_EQ(m_manager.currentFormat(), 0);
    EXPECT_EQ(m_manager.currentFrameSize(), 0);
    EXPECT_EQ(m_manager.currentFrameInterval(), 1);
}

TEST_F(ImageFormatManagerWithCamera, RefusesAFormatPositionThatIsTooLargeWithoutAskingTheDevice)
{
    EXPECT_FALSE(m_manager.setCurrentFormat(m_manager.formatNumber(), 0, 0));
    EXPECT_EQ(m_camera.countOf(Call::Ioctl), 0u);
}

TEST_F(ImageFormatManagerWithCamera, ThrowsForANegativeFormatPosition)
{
    EXPECT_THROW(m_manager.setCurrentFormat(-1, 0, 0), std::out_of_range);
}

TEST_F(ImageFormatManagerWithCamera, RefusesNamesThatNoFormatHas)
{
    EXPECT_FALSE(m_manager.setCurrentFormat(nullptr, 640, 480, 1, 30));
    EXPECT_FALSE(m_manager.setCurrentFormat("NV12", 640, 480, 1, 30));
    EXPECT_EQ(m_camera.countOf(Call::Ioctl), 0u);
}

TEST_F(ImageFormatManagerWithCamera, ReportsTheImageSizeOfTheFormatThatIsSetNow)
{
    EXPECT_EQ(m_manager.currentSizeImage(), 640u * 480u * 2u);
    EXPECT_TRUE(m_manager.setCurrentFormat(0, 1, 0));
    EXPECT_EQ(m_manager.currentSizeImage(), 320u * 240u * 2u);
}

TEST_F(ImageFormatManagerWithCamera, ReadsWhatAnotherProgramSelected)
{
    m_camera.setCurrentFormat("YUYV", 320, 240);
    m_camera.setCurrentInterval(1, 60);
    EXPECT_EQ(m_manager.currentFormat(), 0);
    EXPECT_EQ(m_manager.currentFrameSize(), 1);
    EXPECT_EQ(m_manager.currentFrameInterval(), 0);
}

TEST_F(ImageFormatManagerWithCamera, FindsNoSizeWhenTheDevicesSizeIsNotInTheList)
{
    m_camera.setCurrentFormat("MJPG", 1000, 700);
    EXPECT_EQ(m_manager.currentFormat(), 1);
    EXPECT_EQ(m_manager.currentFrameSize(), -1);
    m_camera.clearLog();
    EXPECT_EQ(m_manager.currentFrameInterval(), -1);
    EXPECT_EQ(m_camera.countOf(VIDIOC_G_PARM), 0u);
}

TEST_F(ImageFormatManagerWithCamera, FindsNoIntervalWhenTheDevicesIntervalIsNotInTheList)
{
    m_camera.setCurrentInterval(2, 60);
    EXPECT_EQ(m_manager.currentFrameSize(), 0);
    EXPECT_EQ(m_manager.currentFrameInterval(), -1);
}

TEST_F(ImageFormatManagerWithCamera, ThrowsWhenTheDevicesFormatIsNotInTheCatalogue)
{
    m_camera.setCurrentFormat("NV12", 640, 480);
    EXPECT_EQ(m_manager.currentFormat(), -1);
    EXPECT_THROW(m_manager.currentFrameSize(), std::out_of_range);
    EXPECT_THROW(m_manager.currentFrameInterval(), std::out_of_range);
}

TEST_F(ImageFormatManagerWithCamera, KnowsNothingOfADeviceThatDoesNotAnswer)
{
    m_camera.failFrom(VIDIOC_G_FMT, EIO);
    EXPECT_EQ(m_manager.currentFormat(), -1);
    EXPECT_EQ(m_manager.currentFrameSize(), -1);
    EXPECT_EQ(m_manager.currentFrameInterval(), -1);
    EXPECT_EQ(m_manager.currentSizeImage(), 0u);
}

TEST_F(ImageFormatManagerWithCamera, KnowsNoIntervalWhenTheDeviceDoesNotTell)
{
    m_camera.failFrom(VIDIOC_G_PARM, EIO);
    EXPECT_EQ(m_manager.currentFrameSize(), 0);
    EXPECT_EQ(m_manager.currentFrameInterval(), -1);
}

} // namespace
