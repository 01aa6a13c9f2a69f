// SPDX-License-Identifier: MIT
// Which nodes are found, and what their drivers tell of them.
#include "device/DeviceEnumerator.h"

#include "Machine.h"
#include "device/Device.h"
#include "device/DeviceList.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <linux/videodev2.h>

#include <cerrno>
#include <memory>

namespace
{

using namespace ImageAcquisition;
using VirtualCamera::aCamera;
using VirtualCamera::aUsbDevice;
using VirtualCamera::Call;
using VirtualCamera::CallId;

std::unique_ptr<IDevice> describe(char const* nodeName)
{
    return std::unique_ptr<IDevice>(DeviceEnumerator::createDevice(nodeName));
}

class DeviceEnumeration : public testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(VirtualCamera::Testbed::visible()); }

    int listed()
    {
        DeviceEnumerator::fillDeviceList(&list);
        return list.size();
    }

    Machine machine;
    DeviceList list;
};

TEST_F(DeviceEnumeration, FindsNothingOnAMachineWithoutNodes)
{
    EXPECT_EQ(0, listed());
    EXPECT_EQ(nullptr, describe("video0"));
    EXPECT_EQ(nullptr, describe(nullptr));
    EXPECT_EQ(nullptr, describe(""));
}

TEST_F(DeviceEnumeration, NumbersDevicesByTheirPositionInTheList)
{
    auto const usb = machine.plug(aUsbDevice());
    machine.add(0, usb);
    machine.add(2, usb);
    ASSERT_EQ(2, listed());
    EXPECT_EQ(0, list.at(0)->index());
    EXPECT_STREQ("/dev/video0", list.at(0)->systemName());
    EXPECT_EQ(1, list.at(1)->index());
    EXPECT_STREQ("/dev/video2", list.at(1)->systemName());
}

TEST_F(DeviceEnumeration, WalksToNode64AndNoFurther)
{
    auto const usb = machine.plug(aUsbDevice());
    machine.add(64, usb);
    machine.add(65, usb);
    ASSERT_EQ(1, listed());
    EXPECT_STREQ("/dev/video64", list.at(0)->systemName());
}

TEST_F(DeviceEnumeration, DescribesASingleNodeOfAnyNumberWithIndexZero)
{
    auto const usb = machine.plug(aUsbDevice());
    machine.add(3, usb);
    machine.add(65, usb);
    auto const device = describe("video65");
    ASSERT_NE(nullptr, device);
    EXPECT_EQ(0, device->index());
    EXPECT_STREQ("/dev/video65", device->systemName());
    EXPECT_EQ(0, describe("video3")->index());
}

TEST_F(DeviceEnumeration, ForgetsWhatTheListHeldBefore)
{
    auto const usb = machine.plug(aUsbDevice());
    machine.add(0, usb);
    EXPECT_EQ(1, listed());
    EXPECT_EQ(1, listed());
    machine.testbed.removeVideoNode("video0");
    EXPECT_EQ(0, listed());
}

TEST_F(DeviceEnumeration, SkipsNodesThatDoNotCapture)
{
    auto const usb = machine.plug(aUsbDevice());
    constexpr unsigned int capture = V4L2_CAP_VIDEO_CAPTURE | V4L2_CAP_STREAMING;
    struct
    {
        unsigned int capabilities;
        unsigned int deviceCapabilities;
    } const nodes[] = {{V4L2_CAP_VIDEO_OUTPUT, V4L2_CAP_VIDEO_OUTPUT},
                       {capture, V4L2_CAP_META_CAPTURE | V4L2_CAP_STREAMING},
                       {V4L2_CAP_META_CAPTURE, capture},
                       {V4L2_CAP_VIDEO_CAPTURE_MPLANE, V4L2_CAP_VIDEO_CAPTURE_MPLANE}};
    int number = 0;
    for (auto const& node : nodes) {
        auto const& camera =
            machine.add(number, usb,
                        aCamera(Machine::nodeOf(number))
                            .withCapabilities(node.capabilities, node.deviceCapabilities));
        EXPECT_EQ(nullptr, describe(("video" + std::to_string(number)).c_str()));
        EXPECT_EQ(1u, camera.countOf(VIDIOC_QUERYCAP));
        EXPECT_EQ(0, camera.accounting().openDescriptors);
        ++number;
    }
    EXPECT_EQ(0, listed());
}

TEST_F(DeviceEnumeration, ListsANodeThatCapturesMultiPlanarAsWell)
{
    auto const usb = machine.plug(aUsbDevice());
    constexpr unsigned int both = V4L2_CAP_VIDEO_CAPTURE | V4L2_CAP_VIDEO_CAPTURE_MPLANE;
    machine.add(0, usb, aCamera().withCapabilities(both, both));
    ASSERT_EQ(1, listed());
    EXPECT_TRUE(list.at(0)->supportsMultiplane());
    EXPECT_TRUE(list.at(0)->supportsVideoCapture());
}

TEST_F(DeviceEnumeration, TakesEachFlagFromItsOwnBit)
{
    auto const usb = machine.plug(aUsbDevice());
    constexpr unsigned int capture = V4L2_CAP_VIDEO_CAPTURE;
    struct
    {
        unsigned int capabilities;
        unsigned int deviceCapabilities;
        bool asynchIO;
        bool multiplane;
        bool readWrite;
        bool streaming;
    } const cases[] = {
        {0, 0, false, false, false, false},
        {0x02000000, 0, true, false, false, false},
        {0x01000000, 0, false, false, true, false},
        {0x04000000, 0, false, false, false, true},
        {0, 0x00001000, false, true, false, false},
        // The words are not interchangeable.
        {0x00001000, 0x07000000, false, false, false, false},
    };
    for (auto const& one : cases) {
        auto const camera =
            aCamera()
                .withCapabilities(capture | one.capabilities, capture | one.deviceCapabilities)
                .install();
        machine.testbed.addVideoNode("video0", usb);
        auto const device = describe("video0");
        ASSERT_NE(nullptr, device);
        EXPECT_EQ(one.asynchIO, device->supportsAsynchIO());
        EXPECT_EQ(one.multiplane, device->supportsMultiplane());
        EXPECT_EQ(one.readWrite, device->supportsReadWrite());
        EXPECT_EQ(one.streaming, device->supportsStreaming());
        EXPECT_TRUE(device->supportsVideoCapture());
        machine.testbed.removeVideoNode("video0");
    }
}

TEST_F(DeviceEnumeration, TakesTheTextsOfTheDriver)
{
    auto const usb = machine.plug(aUsbDevice());
    machine.add(0, usb,
                aCamera()
                    .named("Kamera")
                    .withDriver("uvcvideo", 0x00060100)
                    .withBusInfo("usb-0000:00:14.0-1"));
    auto const device = describe("video0");
    ASSERT_NE(nullptr, device);
    EXPECT_STREQ("Kamera", device->name());
    EXPECT_STREQ("uvcvideo", device->driverName());
    EXPECT_STREQ("usb-0000:00:14.0-1", device->busInfo());
    EXPECT_STREQ("6.1.0", device->driverVersion());
    EXPECT_EQ(0x00060100u, dynamic_cast<Device&>(*device).driverVersionCode());
}

TEST_F(DeviceEnumeration, OpensTheNodeForTheCapabilityQueryAlone)
{
    auto const usb = machine.plug(aUsbDevice());
    auto const& camera = machine.add(0, usb);
    ASSERT_NE(nullptr, describe("video0"));
    auto const calls = camera.calls();
    ASSERT_EQ(3u, calls.size());
    EXPECT_EQ(CallId(Call::Open), calls[0].call);
    EXPECT_EQ(O_RDWR | O_NONBLOCK, calls[0].openFlags);
    EXPECT_EQ(CallId(VIDIOC_QUERYCAP), calls[1].call);
    EXPECT_EQ(CallId(Call::Close), calls[2].call);
}

TEST_F(DeviceEnumeration, SkipsANodeThatIsNotThere)
{
    // The driver would answer, but the file is missing.
    auto const camera = aCamera().install();
    EXPECT_EQ(nullptr, describe("video0"));
    EXPECT_EQ(0u, camera.countOf(Call::Open));
}

TEST_F(DeviceEnumeration, SkipsNodesThatFailAndFindsTheOthers)
{
    auto const usb = machine.plug(aUsbDevice());
    auto const& unopened = machine.add(0, usb, aCamera("/dev/video0").failing(Call::Open, EACCES));
    auto const& silent =
        machine.add(1, usb, aCamera("/dev/video1").failing(VIDIOC_QUERYCAP, ENODEV));
    machine.add(2, usb);
    ASSERT_EQ(1, listed());
    EXPECT_STREQ("/dev/video2", list.at(0)->systemName());
    EXPECT_EQ(0, unopened.accounting().openDescriptors);
    EXPECT_EQ(0, silent.accounting().openDescriptors);
    EXPECT_EQ(1u, silent.countOf(Call::Close));
}

TEST_F(DeviceEnumeration, AsksAgainWhenASignalInterruptsIt)
{
    auto const usb = machine.plug(aUsbDevice());
    auto const& camera =
        machine.add(0, usb, aCamera().failing(VIDIOC_QUERYCAP, EINTR).failing(Call::Close, EINTR));
    EXPECT_NE(nullptr, describe("video0"));
    EXPECT_EQ(2u, camera.countOf(VIDIOC_QUERYCAP));
    EXPECT_EQ(2u, camera.countOf(Call::Close));
}

} // namespace
