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

TEST(Camera, OpensNothingWhenItIsConstructed)
{
    auto const virtualCamera = smallCamera().install();
    DeviceStub const device;
    Camera const camera(&device);
    EXPECT_EQ(-1, camera.fileDescriptor());
    EXPECT_EQ(0u, virtualCamera.accounting().totalOpens);
}

TEST(Camera, OpensItsNodeForReadingAndWritingWithoutBlocking)
{
    auto const virtualCamera = VirtualCamera::aCamera("/dev/video7").install();
    DeviceStub device;
    device.node = "/dev/video7";
    Camera camera(&device);
    EXPECT_TRUE(camera.init());
    EXPECT_NE(-1, camera.fileDescriptor());
    auto const opened = virtualCamera.calls(Call::Open);
    ASSERT_EQ(1u, opened.size());
    EXPECT_EQ(O_RDWR | O_NONBLOCK, opened.front().openFlags);
}

TEST(Camera, ClosesItsNodeWithItself)
{
    auto const virtualCamera = smallCamera().failing(Call::Close, EINTR).install();
    DeviceStub const device;
    {
        Camera camera(&device);
        camera.init();
        EXPECT_EQ(1, virtualCamera.accounting().openDescriptors);
    }
    EXPECT_EQ(0, virtualCamera.accounting().openDescriptors);
    EXPECT_EQ(2u, virtualCamera.countOf(Call::Close));
}

TEST(Camera, ClosesNothingWhenItWasNeverOpened)
{
    auto const virtualCamera = smallCamera().install();
    DeviceStub const device;
    {
        Camera const camera(&device);
    }
    EXPECT_EQ(0u, virtualCamera.countOf(Call::Close));
}

TEST(Camera, KeepsItsOwnCopyOfTheRecord)
{
    auto device = std::make_unique<DeviceStub>();
    device->card = "Original";
    Camera const camera(device.get());
    ASSERT_NE(static_cast<IDevice const*>(device.get()), camera.device());
    device.reset();
    EXPECT_STREQ("Original", camera.device()->name());
}

TEST(Camera, FindsControlsThenFormatsThenTheWayToTransfer)
{
    auto const virtualCamera =
        smallCamera().withControl(integerControl(V4L2_CID_GAIN, "Gain")).install();
    DeviceStub const device;
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
    EXPECT_EQ(0, first(Call::Open));
    EXPECT_LT(first(VIDIOC_QUERYCTRL), first(VIDIOC_ENUM_FMT));
    EXPECT_LT(first(VIDIOC_ENUM_FMT), first(VIDIOC_REQBUFS));
    EXPECT_LT(first(VIDIOC_REQBUFS), static_cast<std::ptrdiff_t>(order.size()));
    EXPECT_EQ(0u, virtualCamera.countOf(UVCIOC_CTRL_MAP)) << "not one of the vendor's";
}

TEST(Camera, InstallsTheVendorsControlsBeforeItListsControls)
{
    auto const virtualCamera = smallCamera().install();
    DeviceStub const device = vendorDevice();
    Camera camera(&device);
    ASSERT_TRUE(camera.init());
    auto const calls = virtualCamera.calls();
    ASSERT_LT(1u, calls.size());
    EXPECT_EQ(CallId(UVCIOC_CTRL_MAP), calls[1].call);
    auto const lastMapping = std::find_if(calls.rbegin(), calls.rend(), [](auto const& record) {
        return record.call == CallId(UVCIOC_CTRL_MAP);
    });
    auto const firstQuery = std::find_if(calls.begin(), calls.end(), [](auto const& record) {
        return record.call == CallId(VIDIOC_QUERYCTRL);
    });
    EXPECT_LT(lastMapping.base() - 1, firstQuery);
}

TEST(Camera, InitialisesEmptyWhenItsNodeHasVanished)
{
    DeviceStub device;
    device.node = absentNode;
    Camera camera(&device);
    EXPECT_TRUE(camera.init());
    EXPECT_EQ(-1, camera.fileDescriptor());
    EXPECT_EQ(0, camera.controlNumber());
    EXPECT_EQ(0, camera.formatNumber());
    EXPECT_EQ(IImageFormat::invalid(), camera.format(0));
    ICameraControl* const invalid = camera.invalidControl();
    ASSERT_NE(nullptr, invalid);
    EXPECT_EQ(ICameraControl::Invalid, invalid->type());
    EXPECT_EQ(invalid, camera.control(0));
    EXPECT_EQ(invalid, camera.control("Brightness"));
    EXPECT_EQ(invalid, camera.brightnessControl());
    EXPECT_EQ(invalid, camera.lightModeControl());
}

TEST(Camera, FailsItsCaptureCallsWhenItsNodeHasVanished)
{
    DeviceStub device;
    device.node = absentNode;
    int const before = openDescriptors();
    {
        Camera camera(&device);
        ASSERT_TRUE(camera.init());
        EXPECT_EQ(-1, camera.setup(4));
        EXPECT_EQ(-1, camera.startCapture());
        EXPECT_TRUE(camera.acquireFrame()->isInvalid());
        EXPECT_EQ(-1, camera.stopCapture());
        EXPECT_EQ(0, camera.cleanup());
        EXPECT_FALSE(camera.setCurrentImageFormat(0, 0, 0));
        EXPECT_FALSE(camera.setCurrentImageFormat("YUYV", 640, 480, 1, 30));
    }
    EXPECT_EQ(before, openDescriptors());
}

TEST(Camera, InitialisesEmptyWhenItsNodeCannotBeOpened)
{
    for (int const error : {EACCES, EBUSY, ENODEV, EINTR, EIO}) {
        auto const virtualCamera = smallCamera().failing(Call::Open, error).install();
        DeviceStub const device;
        Camera camera(&device);
        EXPECT_TRUE(camera.init());
        EXPECT_EQ(0, camera.formatNumber());
        EXPECT_EQ(-1, camera.setup(4));
        EXPECT_EQ(1u, virtualCamera.countOf(Call::Open));
        EXPECT_EQ(0u, virtualCamera.countOf(Call::Ioctl));
    }
}

TEST(Camera, SendsAResetOnlyToTheVendorsCameras)
{
    auto const virtualCamera = smallCamera().install();
    DeviceStub const device;
    Camera camera(&device);
    ASSERT_TRUE(camera.init());
    int const before = openDescriptors();
    unsigned const calls = virtualCamera.countOf(Call::Ioctl);
    EXPECT_FALSE(camera.softwareReset());
    EXPECT_EQ(calls, virtualCamera.countOf(Call::Ioctl));
    EXPECT_EQ(before, openDescriptors());
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

TEST(Camera, FailsToInitialiseWhenASubclassCannotBuildItsControls)
{
    auto const virtualCamera = smallCamera().install();
    DeviceStub const device;
    ObservedCamera camera(&device);
    camera.controlsSucceed = false;
    EXPECT_FALSE(camera.init());
    EXPECT_EQ(1, camera.formatNumber()) << "the other steps are taken all the same";
    EXPECT_NE(nullptr, camera.invalidControl());
    EXPECT_NE(nullptr, camera.inputMethod());
}

TEST(Camera, BuildsNoControlsWhenItsNodeCannotBeOpened)
{
    DeviceStub device;
    device.node = absentNode;
    ObservedCamera camera(&device);
    camera.controlsSucceed = false;
    EXPECT_TRUE(camera.init());
    EXPECT_EQ("", camera.steps);
}

} // namespace
