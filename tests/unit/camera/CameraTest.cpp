// SPDX-License-Identifier: MIT
// Construction, start-up and end of a camera.
#include "camera/Camera.h"

#include "DescriptorCount.h"
#include "DeviceStub.h"
#include "IImageFormat.h"
#include "SmallCamera.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <linux/uvcvideo.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>

namespace
{

using namespace ImageAcquisition;
using VirtualCamera::Call;
using VirtualCamera::CallId;
using VirtualCamera::integerControl;

constexpr char absentNode[] = "/dev/video-absent";

DeviceStub vendorDevice()
{
    DeviceStub device;
    device.vendor = IMAGEACQUISITION_VENDOR_ID;
    device.product = IMAGEACQUISITION_PRODUCT_ID;
    return device;
}

TEST(CameraTest, OpensNothingWhenItIsConstructed)
{
    auto const virtualCamera = smallCamera().install();
    DeviceStub const device{};
    Camera const camera(&device);
    EXPECT_EQ(camera.fileDescriptor(), -1);
    EXPECT_EQ(virtualCamera.accounting().totalOpens, 0u);
}

TEST(CameraTest, OpensItsNodeForReadingAndWritingWithoutBlocking)
{
    auto const virtualCamera = VirtualCamera::aCamera("/dev/video7").install();
    DeviceStub device;
    device.node = "/dev/video7";
    Camera camera(&device);
    EXPECT_TRUE(camera.init());
    EXPECT_NE(camera.fileDescriptor(), -1);
    auto const opened = virtualCamera.calls(Call::Open);
    ASSERT_EQ(opened.size(), 1u);
    EXPECT_EQ(opened.front().openFlags, O_RDWR | O_NONBLOCK);
}

TEST(CameraTest, ClosesItsNodeWithItself)
{
    auto const virtualCamera = smallCamera().failing(Call::Close, EINTR).install();
    DeviceStub const device{};
    {
        Camera camera(&device);
        camera.init();
        EXPECT_EQ(virtualCamera.accounting().openDescriptors, 1);
    }
    EXPECT_EQ(virtualCamera.accounting().openDescriptors, 0);
    EXPECT_EQ(virtualCamera.countOf(Call::Close), 2u);
}

TEST(CameraTest, ClosesNothingWhenItWasNeverOpened)
{
    auto const virtualCamera = smallCamera().install();
    DeviceStub const device{};
    {
        Camera const camera(&device);
    }
    EXPECT_EQ(virtualCamera.countOf(Call::Close), 0u);
}

TEST(CameraTest, KeepsItsOwnCopyOfTheRecord)
{
    auto device = std::make_unique<DeviceStub>();
    device->card = "Original";
    Camera const camera(device.get());
    ASSERT_NE(static_cast<IDevice const*>(device.get()), camera.device());
    device.reset();
    EXPECT_STREQ(camera.device()->name(), "Original");
}

TEST(CameraTest, FindsControlsThenFormatsThenTheWayToTransfer)
{
    auto const virtualCamera =
        smallCamera().withControl(integerControl(V4L2_CID_GAIN, "Gain")).install();
    DeviceStub const device{};
    Camera camera(&device);
    ASSERT_TRUE(camera.init());
    std::vector<CallId> order;
    for (auto const& record : virtualCamera.calls()) {
        if (order.empty() || !(order.back() == record.call)) {
            order.push_back(record.call);
        }
    }
    auto const first = [&order](CallId const& call) {
        return std::find(order.begin(), order.end(), call) - order.begin();
    };
    EXPECT_EQ(first(Call::Open), 0);
    EXPECT_LT(first(VIDIOC_QUERYCTRL), first(VIDIOC_ENUM_FMT));
    EXPECT_LT(first(VIDIOC_ENUM_FMT), first(VIDIOC_REQBUFS));
    EXPECT_LT(first(VIDIOC_REQBUFS), static_cast<std::ptrdiff_t>(order.size()));
    EXPECT_EQ(virtualCamera.countOf(UVCIOC_CTRL_MAP), 0u) << "not one of the vendor's";
}

TEST(CameraTest, InstallsTheVendorsControlsBeforeItListsControls)
{
    auto const virtualCamera = smallCamera().install();
    DeviceStub const device = vendorDevice();
    Camera camera(&device);
    ASSERT_TRUE(camera.init());
    auto const calls = virtualCamera.calls();
    ASSERT_GT(calls.size(), 1u);
    EXPECT_EQ(CallId(UVCIOC_CTRL_MAP), calls[1].call);
    auto const lastMapping = std::find_if(calls.rbegin(), calls.rend(), [](auto const& record) {
        return record.call == CallId(UVCIOC_CTRL_MAP);
    });
    auto const firstQuery = std::find_if(calls.begin(), calls.end(), [](auto const& record) {
        return record.call == CallId(VIDIOC_QUERYCTRL);
    });
    EXPECT_LT(lastMapping.base() - 1, firstQuery);
}

TEST(CameraTest, InitialisesEmptyWhenItsNodeHasVanished)
{
    DeviceStub device;
    device.node = absentNode;
    Camera camera(&device);
    EXPECT_TRUE(camera.init());
    EXPECT_EQ(camera.fileDescriptor(), -1);
    EXPECT_EQ(camera.controlNumber(), 0);
    EXPECT_EQ(camera.formatNumber(), 0);
    EXPECT_EQ(IImageFormat::invalid(), camera.format(0));
    ICameraControl* const invalid = camera.invalidControl();
    ASSERT_NE(invalid, nullptr);
    EXPECT_EQ(invalid->type(), ICameraControl::Invalid);
    EXPECT_EQ(camera.control(0), invalid);
    EXPECT_EQ(camera.control("Brightness"), invalid);
    EXPECT_EQ(camera.brightnessControl(), invalid);
    EXPECT_EQ(camera.lightModeControl(), invalid);
}

TEST(CameraTest, FailsItsCaptureCallsWhenItsNodeHasVanished)
{
    DeviceStub device;
    device.node = absentNode;
    int const before = openDescriptors();
    {
        Camera camera(&device);
        ASSERT_TRUE(camera.init());
        EXPECT_EQ(camera.setup(4), -1);
        EXPECT_EQ(camera.startCapture(), -1);
        EXPECT_TRUE(camera.acquireFrame()->isInvalid());
        EXPECT_EQ(camera.stopCapture(), -1);
        EXPECT_EQ(camera.cleanup(), 0);
        EXPECT_FALSE(camera.setCurrentImageFormat(0, 0, 0));
        EXPECT_FALSE(camera.setCurrentImageFormat("YUYV", 640, 480, 1, 30));
    }
    EXPECT_EQ(openDescriptors(), before);
}

TEST(CameraTest, InitialisesEmptyWhenItsNodeCannotBeOpened)
{
    for (int const error : {EACCES, EBUSY, ENODEV, EINTR, EIO}) {
        auto const virtualCamera = smallCamera().failing(Call::Open, error).install();
        DeviceStub const device{};
        Camera camera(&device);
        EXPECT_TRUE(camera.init());
        EXPECT_EQ(camera.formatNumber(), 0);
        EXPECT_EQ(camera.setup(4), -1);
        EXPECT_EQ(virtualCamera.countOf(Call::Open), 1u);
        EXPECT_EQ(virtualCamera.countOf(Call::Ioctl), 0u);
    }
}

TEST(CameraTest, SendsAResetOnlyToTheVendorsCameras)
{
    auto const virtualCamera = smallCamera().install();
    DeviceStub const device{};
    Camera camera(&device);
    ASSERT_TRUE(camera.init());
    int const before = openDescriptors();
    unsigned const calls = virtualCamera.countOf(Call::Ioctl);
    EXPECT_FALSE(camera.softwareReset());
    EXPECT_EQ(virtualCamera.countOf(Call::Ioctl), calls);
    EXPECT_EQ(openDescriptors(), before);
}

/// A camera whose steps are recorded and may be made to fail.
class ObservedCamera : public Camera
{
public:
    using Camera::Camera;

    std::string steps;
    bool controlsSucceed = true;

protected:
    bool buildMainControlSet() override
    {
        steps += "controls ";
        return controlsSucceed && Camera::buildMainControlSet();
    }
};

TEST(CameraTest, FailsToInitialiseWhenASubclassCannotBuildItsControls)
{
    auto const virtualCamera = smallCamera().install();
    DeviceStub const device{};
    ObservedCamera camera(&device);
    camera.controlsSucceed = false;
    EXPECT_FALSE(camera.init());
    EXPECT_EQ(camera.formatNumber(), 1) << "the other steps are taken all the same";
    EXPECT_NE(camera.invalidControl(), nullptr);
    EXPECT_NE(camera.inputMethod(), nullptr);
}

TEST(CameraTest, BuildsNoControlsWhenItsNodeCannotBeOpened)
{
    DeviceStub device;
    device.node = absentNode;
    ObservedCamera camera(&device);
    camera.controlsSucceed = false;
    EXPECT_TRUE(camera.init());
    EXPECT_EQ(camera.steps, "");
}

} // namespace
