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

class DeviceEnumeratorTest : public testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(VirtualCamera::Testbed::visible()); }

    int listed()
    {
        DeviceEnumerator::fillDeviceList(&m_list);
        return m_list.size();
    }

    Machine m_machine;
    DeviceList m_list;
};

TEST_F(DeviceEnumeratorTest, FindsNothingOnAMachineWithoutNodes)
{
    EXPECT_EQ(listed(), 0);
    EXPECT_EQ(describe("video0"), nullptr);
    EXPECT_EQ(describe(nullptr), nullptr);
    EXPECT_EQ(describe(""), nullptr);
}

TEST_F(DeviceEnumeratorTest, NumbersDevicesByTheirPositionInTheList)
{
    auto const usb = m_machine.plug(aUsbDevice());
    m_machine.add(0, usb);
    m_machine.add(2, usb);
    ASSERT_EQ(listed(), 2);
    EXPECT_EQ(m_list.at(0)->index(), 0);
    EXPECT_STREQ(m_list.at(0)->systemName(), "/dev/video0");
    EXPECT_EQ(m_list.at(1)->index(), 1);
    EXPECT_STREQ(m_list.at(1)->systemName(), "/dev/video2");
}

TEST_F(DeviceEnumeratorTest, WalksToNode64AndNoFurther)
{
    auto const usb = m_machine.plug(aUsbDevice());
    m_machine.add(64, usb);
    m_machine.add(65, usb);
    ASSERT_EQ(listed(), 1);
    EXPECT_STREQ(m_list.at(0)->systemName(), "/dev/video64");
}

TEST_F(DeviceEnumeratorTest, DescribesASingleNodeOfAnyNumberWithIndexZero)
{
    auto const usb = m_machine.plug(aUsbDevice());
    m_machine.add(3, usb);
    m_machine.add(65, usb);
    auto const device = describe("video65");
    ASSERT_NE(device, nullptr);
    EXPECT_EQ(device->index(), 0);
    EXPECT_STREQ(device->systemName(), "/dev/video65");
    EXPECT_EQ(describe("video3")->index(), 0);
}

TEST_F(DeviceEnumeratorTest, ForgetsWhatTheListHeldBefore)
{
    auto const usb = m_machine.plug(aUsbDevice());
    m_machine.add(0, usb);
    EXPECT_EQ(listed(), 1);
    EXPECT_EQ(listed(), 1);
    m_machine.testbed.removeVideoNode("video0");
    EXPECT_EQ(listed(), 0);
}

TEST_F(DeviceEnumeratorTest, SkipsNodesThatDoNotCapture)
{
    auto const usb = m_machine.plug(aUsbDevice());
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
            m_machine.add(number, usb,
                          aCamera(Machine::nodeOf(number))
                              .withCapabilities(node.capabilities, node.deviceCapabilities));
        EXPECT_EQ(describe(("video" + std::to_string(number)).c_str()), nullptr);
        EXPECT_EQ(camera.countOf(VIDIOC_QUERYCAP), 1u);
        EXPECT_EQ(camera.accounting().openDescriptors, 0);
        ++number;
    }
    EXPECT_EQ(listed(), 0);
}

TEST_F(DeviceEnumeratorTest, ListsANodeThatCapturesMultiPlanarAsWell)
{
    auto const usb = m_machine.plug(aUsbDevice());
    constexpr unsigned int both = V4L2_CAP_VIDEO_CAPTURE | V4L2_CAP_VIDEO_CAPTURE_MPLANE;
    m_machine.add(0, usb, aCamera().withCapabilities(both, both));
    ASSERT_EQ(listed(), 1);
    EXPECT_TRUE(m_list.at(0)->supportsMultiplane());
    EXPECT_TRUE(m_list.at(0)->supportsVideoCapture());
}

TEST_F(DeviceEnumeratorTest, TakesEachFlagFromItsOwnBit)
{
    auto const usb = m_machine.plug(aUsbDevice());
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
        m_machine.testbed.addVideoNode("video0", usb);
        auto const device = describe("video0");
        ASSERT_NE(device, nullptr);
        EXPECT_EQ(device->supportsAsynchIO(), one.asynchIO);
        EXPECT_EQ(device->supportsMultiplane(), one.multiplane);
        EXPECT_EQ(device->supportsReadWrite(), one.readWrite);
        EXPECT_EQ(device->supportsStreaming(), one.streaming);
        EXPECT_TRUE(device->supportsVideoCapture());
        m_machine.testbed.removeVideoNode("video0");
    }
}

TEST_F(DeviceEnumeratorTest, TakesTheTextsOfTheDriver)
{
    auto const usb = m_machine.plug(aUsbDevice());
    m_machine.add(0, usb,
                  aCamera()
                      .named("Kamera")
                      .withDriver("uvcvideo", 0x00060100)
                      .withBusInfo("usb-0000:00:14.0-1"));
    auto const device = describe("video0");
    ASSERT_NE(device, nullptr);
    EXPECT_STREQ(device->name(), "Kamera");
    EXPECT_STREQ(device->driverName(), "uvcvideo");
    EXPECT_STREQ(device->busInfo(), "usb-0000:00:14.0-1");
    EXPECT_STREQ(device->driverVersion(), "6.1.0");
    EXPECT_EQ(dynamic_cast<Device&>(*device).driverVersionCode(), 0x00060100u);
}

TEST_F(DeviceEnumeratorTest, OpensTheNodeForTheCapabilityQueryAlone)
{
    auto const usb = m_machine.plug(aUsbDevice());
    auto const& camera = m_machine.add(0, usb);
    ASSERT_NE(describe("video0"), nullptr);
    auto const calls = camera.calls();
    ASSERT_EQ(calls.size(), 3u);
    EXPECT_EQ(CallId(Call::Open), calls[0].call);
    EXPECT_EQ(calls[0].openFlags, O_RDWR | O_NONBLOCK);
    EXPECT_EQ(CallId(VIDIOC_QUERYCAP), calls[1].call);
    EXPECT_EQ(CallId(Call::Close), calls[2].call);
}

TEST_F(DeviceEnumeratorTest, SkipsANodeThatIsNotThere)
{
    // The driver would answer, but the file is missing.
    auto const camera = aCamera().install();
    EXPECT_EQ(describe("video0"), nullptr);
    EXPECT_EQ(camera.countOf(Call::Open), 0u);
}

TEST_F(DeviceEnumeratorTest, SkipsNodesThatFailAndFindsTheOthers)
{
    auto const usb = m_machine.plug(aUsbDevice());
    auto const& unopened =
        m_machine.add(0, usb, aCamera("/dev/video0").failing(Call::Open, EACCES));
    auto const& silent =
        m_machine.add(1, usb, aCamera("/dev/video1").failing(VIDIOC_QUERYCAP, ENODEV));
    m_machine.add(2, usb);
    ASSERT_EQ(listed(), 1);
    EXPECT_STREQ(m_list.at(0)->systemName(), "/dev/video2");
    EXPECT_EQ(unopened.accounting().openDescriptors, 0);
    EXPECT_EQ(silent.accounting().openDescriptors, 0);
    EXPECT_EQ(silent.countOf(Call::Close), 1u);
}

TEST_F(DeviceEnumeratorTest, AsksAgainWhenASignalInterruptsIt)
{
    auto const usb = m_machine.plug(aUsbDevice());
    auto const& camera = m_machine.add(
        0, usb, aCamera().failing(VIDIOC_QUERYCAP, EINTR).failing(Call::Close, EINTR));
    EXPECT_NE(describe("video0"), nullptr);
    EXPECT_EQ(camera.countOf(VIDIOC_QUERYCAP), 2u);
    EXPECT_EQ(camera.countOf(Call::Close), 2u);
}

} // namespace
