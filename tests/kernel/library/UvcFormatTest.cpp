// SPDX-License-Identifier: MIT
#include "DriverComparison.h"
#include "OrdinaryCamera.h"
#include "Tool.h"

#include <IFramePeriod.h>
#include <IFrameSize.h>
#include <IImageFormat.h>

using namespace ImageAcquisition;
using namespace KernelTest;
using Json = nlohmann::json;

namespace
{

/// What the driver is set to, as v4l2-ctl tells it: "YUYV 640x480 30".
std::string driversFormat(std::string const& node)
{
    std::string const text = v4l2Ctl(node, "--get-fmt-video --get-parm");
    auto const behind = [&text](std::string const& label) {
        std::size_t const begin = text.find(label) + label.size();
        return text.substr(text.find_first_not_of(" :'", begin));
    };
    std::string size = behind("Width/Height");
    size = size.substr(0, size.find('\n'));
    size[size.find('/')] = 'x';
    std::string const rate = behind("Frames per second");
    return behind("Pixel Format").substr(0, 4) + " " + size + " " + rate.substr(0, rate.find('.'));
}

std::string selectionOf(IImageFormat const& format, IFrameSize const& size,
                        IFramePeriod const& period)
{
    return std::string(format.name()) + " " + std::to_string(size.width()) + "x" +
           std::to_string(size.height()) + " " +
           std::to_string(period.denominator() / period.numerator());
}

using UvcFormatTest = OrdinaryCamera;

TEST_F(UvcFormatTest, AreThoseThatV4l2CtlListsThroughLibv4l2)
{
    std::vector<ListedFormat> const listed = listFormats(m_node, "-w");
    expectListedFormats(*m_camera, listed);
    // The camera's two and what libv4l2 makes of them.
    ASSERT_EQ(listed.size(), 6U);
    EXPECT_EQ(listFormats(m_node).size(), 2U);
    EXPECT_TRUE(m_camera->format(6)->isInvalid());
}

TEST_F(UvcFormatTest, AreSelectedByPositionAndByName)
{
    for (int f = 0; f < 2; ++f) {
        IImageFormat const& format = *m_camera->format(f);
        for (int s = 0; s < format.sizeNumber(); ++s) {
            IFrameSize const& size = *format.frameSize(s);
            for (int p = 0; p < size.periodNumber(); ++p) {
                IFramePeriod const& period = *size.period(p);
                std::string const wanted = selectionOf(format, size, period);
                SCOPED_TRACE(wanted);
                bool const isByName = (s + p) % 2 == 1;
                EXPECT_TRUE(isByName ? m_camera->setCurrentImageFormat(
                                           format.name(), static_cast<int>(size.width()),
                                           static_cast<int>(size.height()), period.numerator(),
                                           period.denominator())
                                     : m_camera->setCurrentImageFormat(f, s, p));
                EXPECT_EQ(driversFormat(m_node), wanted);
                EXPECT_EQ(m_camera->currentImageFormat(), &format);
                EXPECT_EQ(m_camera->currentFrameSize(), &size);
                EXPECT_EQ(m_camera->currentFrameInterval(), &period);
            }
        }
    }
}

TEST_F(UvcFormatTest, ThatTheCameraDoesNotHaveAreRefused)
{
    ASSERT_TRUE(m_camera->setCurrentImageFormat("YUYV", 320, 240, 1, 30));
    std::string const before = driversFormat(m_node);
    EXPECT_FALSE(m_camera->setCurrentImageFormat("YUYV", 320, 241, 1, 30));
    EXPECT_FALSE(m_camera->setCurrentImageFormat("H264", 320, 240, 1, 30));
    EXPECT_FALSE(m_camera->setCurrentImageFormat("YUYV", 320, 240, 1, 29));
    EXPECT_FALSE(m_camera->setCurrentImageFormat(-1, 0, 0));
    EXPECT_FALSE(m_camera->setCurrentImageFormat(99, 0, 0));
    EXPECT_EQ(driversFormat(m_node), before);
}

TEST_F(UvcFormatTest, CannotBeSelectedWhileStreaming)
{
    ASSERT_TRUE(m_camera->setCurrentImageFormat("YUYV", 320, 240, 1, 30));
    std::string const before = driversFormat(m_node);
    {
        Stream const stream(*m_camera, 4);
        EXPECT_FALSE(m_camera->acquireFrame()->isInvalid());
        EXPECT_FALSE(m_camera->setCurrentImageFormat("YUYV", 160, 120, 1, 30));
        EXPECT_FALSE(m_camera->setCurrentImageFormat("MJPG", 320, 240, 1, 30));
        EXPECT_EQ(driversFormat(m_node), before);
    }
    EXPECT_TRUE(m_camera->setCurrentImageFormat("YUYV", 160, 120, 1, 30));
}

TEST_F(UvcFormatTest, AreShownByTheToolAsTheyAre)
{
    Json const shown = readTool("show 0 --json").at("formats");
    ASSERT_EQ(shown.size(), static_cast<std::size_t>(m_camera->formatNumber()));
    for (int f = 0; f < m_camera->formatNumber(); ++f) {
        Json const& printed = shown.at(static_cast<std::size_t>(f));
        IImageFormat const& format = *m_camera->format(f);
        EXPECT_EQ(printed.at("name"), format.name());
        EXPECT_EQ(printed.at("description"), format.description());
        EXPECT_EQ(printed.at("emulated"), format.isEmulated());
        EXPECT_EQ(printed.at("compressed"), format.isCompressed());
        ASSERT_EQ(printed.at("sizes").size(), static_cast<std::size_t>(format.sizeNumber()));
        for (int s = 0; s < format.sizeNumber(); ++s) {
            Json const& size = printed.at("sizes").at(static_cast<std::size_t>(s));
            EXPECT_EQ(size.at("width"), format.frameSize(s)->width());
            EXPECT_EQ(size.at("height"), format.frameSize(s)->height());
            EXPECT_EQ(size.at("intervals").size(),
                      static_cast<std::size_t>(format.frameSize(s)->periodNumber()));
        }
    }
}

} // namespace
