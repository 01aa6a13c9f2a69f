// SPDX-License-Identifier: MIT
// A client of the shared library, which sees the public headers and nothing else.
#include "ImageAcquisition.h"

#include "../support/DeviceStub.h"
#include "VirtualCamera.h"

#include <gtest/gtest.h>

#include <linux/videodev2.h>

#include <memory>

namespace
{

using namespace ImageAcquisition;

class Client : public testing::Test
{
protected:
    VirtualCamera::InstalledCamera virtualCamera =
        VirtualCamera::aCamera()
            .withFormat("YUYV")
            .withSize(64, 48)
            .withInterval(1, 30)
            .withControl(VirtualCamera::integerControl(V4L2_CID_GAIN, "Gain").range(0, 9))
            .withControl(VirtualCamera::booleanControl(V4L2_CID_HUE_AUTO, "Hue, Automatic"))
            .paced(VirtualCamera::Pace::Immediate)
            .install();
    DeviceStub const device{};
    std::unique_ptr<IBlockingCamera> camera{
        ICameraFactory::getUniqueInstance().createBlockingCamera(&device)};
};

TEST_F(Client, CapturesThroughTheInterfaces)
{
    ASSERT_NE(camera, nullptr);
    EXPECT_TRUE(camera->setCurrentImageFormat("YUYV", 64, 48, 1, 30));
    ASSERT_EQ(camera->setup(3), 0);
    ASSERT_EQ(camera->startCapture(), 0);
    for (unsigned int number = 0; number < 5; ++number) {
        IFrame* const frame = camera->acquireFrame();
        ASSERT_FALSE(frame->isInvalid());
        EXPECT_EQ(frame->counter(), number);
        EXPECT_EQ(camera->releaseFrame(frame), 0);
    }
    EXPECT_EQ(camera->stopCapture(), 0);
    EXPECT_EQ(camera->cleanup(), 0);
    camera.reset();
    EXPECT_TRUE(virtualCamera.accounting().nothingHeld());
}

TEST_F(Client, ReachesTypedControlsByDynamicCast)
{
    ASSERT_NE(camera, nullptr);
    auto* const gain = dynamic_cast<ICameraControlNumeric<int>*>(camera->gainControl());
    ASSERT_NE(gain, nullptr);
    EXPECT_TRUE(gain->setValue(4));
    EXPECT_EQ(virtualCamera.controlValue(V4L2_CID_GAIN), 4);
    EXPECT_EQ(dynamic_cast<ICameraControlNumeric<long long>*>(camera->gainControl()), nullptr);
    EXPECT_NE(dynamic_cast<ICameraControlBoolean*>(camera->autoHueControl()), nullptr);
    EXPECT_EQ(dynamic_cast<ICameraControlNumeric<int>*>(camera->invalidControl()), nullptr);
}

TEST_F(Client, IsHandedTheInvalidObjectsOfTheLibrary)
{
    ASSERT_NE(camera, nullptr);
    EXPECT_EQ(IImageFormat::invalid(), camera->format(-1));
    EXPECT_EQ(IFrameSize::invalid(), camera->format(0)->frameSize(-1));
    EXPECT_EQ(IFramePeriod::invalid(), camera->format(0)->frameSize(0)->period(-1));
    EXPECT_EQ(IFrame::invalid(), camera->acquireFrame());
}

} // namespace
