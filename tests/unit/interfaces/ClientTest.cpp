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
    DeviceStub const device;
    std::unique_ptr<IBlockingCamera> camera{
        ICameraFactory::getUniqueInstance().createBlockingCamera(&device)};
};

TEST_F(Client, CapturesThroughTheInterfaces)
{
    ASSERT_NE(nullptr, camera);
    EXPECT_TRUE(camera->setCurrentImageFormat("YUYV", 64, 48, 1, 30));
    ASSERT_EQ(0, camera->setup(3));
    ASSERT_EQ(0, camera->startCapture());
    for (unsigned int number = 0; number < 5; ++number) {
        IFrame* const frame = camera->acquireFrame();
        ASSERT_FALSE(frame->isInvalid());
        EXPECT_EQ(number, frame->counter());
        EXPECT_EQ(0, camera->releaseFrame(frame));
    }
    EXPECT_EQ(0, camera->stopCapture());
    EXPECT_EQ(0, camera->cleanup());
    camera.reset();
    EXPECT_TRUE(virtualCamera.accounting().nothingHeld());
}

TEST_F(Client, ReachesTypedControlsByDynamicCast)
{
    ASSERT_NE(nullptr, camera);
    auto* const gain = dynamic_cast<ICameraControlNumeric<int>*>(camera->gainControl());
    ASSERT_NE(nullptr, gain);
    EXPECT_TRUE(gain->setValue(4));
    EXPECT_EQ(4, virtualCamera.controlValue(V4L2_CID_GAIN));
    EXPECT_EQ(nullptr, dynamic_cast<ICameraControlNumeric<long long>*>(camera->gainControl()));
    EXPECT_NE(nullptr, dynamic_cast<ICameraControlBoolean*>(camera->autoHueControl()));
    EXPECT_EQ(nullptr, dynamic_cast<ICameraControlNumeric<int>*>(camera->invalidControl()));
}

TEST_F(Client, IsHandedTheInvalidObjectsOfTheLibrary)
{
    ASSERT_NE(nullptr, camera);
    EXPECT_EQ(IImageFormat::invalid(), camera->format(-1));
    EXPECT_EQ(IFrameSize::invalid(), camera->format(0)->frameSize(-1));
    EXPECT_EQ(IFramePeriod::invalid(), camera->format(0)->frameSize(0)->period(-1));
    EXPECT_EQ(IFrame::invalid(), camera->acquireFrame());
}

} // namespace
