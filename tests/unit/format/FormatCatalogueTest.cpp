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

TEST(FormatCatalogueTest, IsEmptyBeforeInit)
{
    ImageFormatManager const manager;
    EXPECT_EQ(manager.formatNumber(), 0);
    EXPECT_TRUE(manager.invariants());
    EXPECT_EQ(manager.currentFormat(), -1);
    EXPECT_EQ(manager.currentFrameSize(), -1);
    EXPECT_EQ(manager.currentFrameInterval(), -1);
    EXPECT_EQ(manager.currentSizeImage(), 0u);
}

TEST(FormatCatalogueTest, StaysEmptyWhenTheDeviceListsNoFormats)
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

TEST(FormatCatalogueTest, KeepsAFormatThatIsListedTwiceButFindsTheFirst)
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

TEST(FormatCatalogueTest, EndsTheListOfADriverThatNeverDoes)
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

TEST(FormatCatalogueTest, EndsTheCatalogueOfADriverThatAnswersEverything)
{
    EndlessDriver const driver(0, 0, 0);
    ImageFormatManager manager;
    manager.init(3);
    EXPECT_EQ(entriesOf(manager), 65536);
    EXPECT_LT(driver.calls(), 66000u);
}

TEST(FormatCatalogueTest, EndsTheCatalogueAtWhicheverListGrows)
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

TEST(FormatCatalogueTest, KeepsACatalogueOfJustTheLargestSizeWhole)
{
    EndlessDriver const driver(2, 31, 1056);
    ImageFormatManager manager;
    manager.init(3);
    ASSERT_EQ(entriesOf(manager), 2 * (1 + 31 * (1 + 1056)));
    EXPECT_EQ(entriesOf(manager), 65536);
    EXPECT_EQ(manager.format(1)->frameSize(30)->periodNumber(), 1056);
}

} // namespace
