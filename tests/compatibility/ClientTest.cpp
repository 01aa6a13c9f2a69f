// SPDX-License-Identifier: MIT
// A client of the shared library, which sees the public headers and nothing else.
#include "ImageAcquisition.h"

#include "DeviceStub.h"
#include "VirtualCamera.h"

#include <gtest/gtest.h>

#include <linux/videodev2.h>

#include <memory>

namespace
{

using namespace ImageAcquisition;

class ClientTest : public testing::Test
{
protected:
    VirtualCamera::InstalledCamera m_virtualCamera =
        VirtualCamera::aCamera()
            .withFormat("YUYV")
            .withSize(64, 48)
            .withInterval(1, 30)
            .withControl(VirtualCamera::integerControl(V4L2_CID_GAIN, "Gain").range(0, 9))
            .withControl(VirtualCamera::booleanControl(V4L2_CID_HUE_AUTO, "Hue, Automatic"))
            .paced(VirtualCamera::Pace::Immediate)
            .install();
    DeviceStub const m_device{};
    std::unique_ptr<IBlockingCamera> m_camera{
        ICameraFactory::getUniqueInstance().createBlockingCamera(&m_device)};
};

TEST_F(ClientTest, CapturesThroughTheInterfaces)
{
    ASSERT_NE(m_camera, nullptr);
    EXPECT_TRUE(m_camera->setCurrentImageFormat("YUYV", 64, 48, 1, 30));
    ASSERT_EQ(m_camera->setup(3), 0);
    ASSERT_EQ(m_camera->startCapture(), 0);
    for (unsigned int number = 0; number < 5; ++number) {
        IFrame* const frame = m_camera->acquireFrame();
        ASSERT_FALSE(frame->isInvalid());
        EXPECT_EQ(frame->counter(), number);
        EXPECT_EQ(m_camera->releaseFrame(frame), 0);
    }
    EXPECT_EQ(m_camera->stopCapture(), 0);
    EXPECT_EQ(m_camera->cleanup(), 0);
    m_camera.reset();
    EXPECT_TRUE(m_virtualCamera.accounting().nothingHeld());
}

TEST_F(ClientTest, ReachesTypedControlsByDynamicCast)
{
    ASSERT_NE(m_camera, nullptr);
    auto* const gain = dynamic_cast<ICameraControlNumeric<int>*>(m_camera->gainControl());
    ASSERT_NE(gain, nullptr);
    EXPECT_TRUE(gain->setValue(4));
    EXPECT_EQ(m_virtualCamera.controlValue(V4L2_CID_GAIN), 4);
    EXPECT_EQ(dynamic_cast<ICameraControlNumeric<long long>*>(m_camera->gainControl()), nullptr);
    EXPECT_NE(dynamic_cast<ICameraControlBoolean*>(m_camera->autoHueControl()), nullptr);
    EXPECT_EQ(dynamic_cast<ICameraControlNumeric<int>*>(m_camera->invalidControl()), nullptr);
}

TEST_F(ClientTest, IsHandedTheInvalidObjectsOfTheLibrary)
{
    ASSERT_NE(m_camera, nullptr);
    EXPECT_EQ(IImageFormat::invalid(), m_camera->format(-1));
    EXPECT_EQ(IFrameSize::invalid(), m_camera->format(0)->frameSize(-1));
    EXPECT_EQ(IFramePeriod::invalid(), m_camera->format(0)->frameSize(0)->period(-1));
    EXPECT_EQ(IFrame::invalid(), m_camera->acquireFrame());
}

} // namespace
