// SPDX-License-Identifier: MIT
// What is known of each video node of the machine.
#include "DescriptorCount.h"
#include "Machine.h"
#include "session/Found.h"

#include <IDevice.h>
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <libusb.h>
#include <linux/videodev2.h>

#include <atomic>
#include <cerrno>

namespace
{

using namespace ImageAcquisition;
using namespace ImageAcquisition::Session;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;
using VirtualCamera::aCamera;
using VirtualCamera::aUsbDevice;

/// How many contexts of libusb were made: each costs a scan of every USB device.
std::atomic<int> usbContexts{0};

} // namespace

extern "C" int libusb_init(libusb_context** context)
{
    static auto* const real =
        reinterpret_cast<decltype(&libusb_init)>(dlsym(RTLD_NEXT, "libusb_init"));
    ++usbContexts;
    return real(context);
}

namespace
{

class NodeWalkTest : public testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(VirtualCamera::Testbed::visible()); }

    static std::vector<std::string> nodes(CameraList const& list)
    {
        std::vector<std::string> found;
        for (Found const& camera : list.cameras) {
            found.push_back(camera.node());
        }
        return found;
    }

    Machine m_machine;
};

TEST_F(NodeWalkTest, TellsWhatDriverAndUsbDeviceSay)
{
    auto const usb = m_machine.plug(aUsbDevice("1-2.3")
                                        .withIds("046d", "0825")
                                        .withManufacturer("Maker")
                                        .withSerial("S123")
                                        .withSpeed("5000")
                                        .withUsbRevision(0x0310));
    m_machine.add(0, usb, aCamera("/dev/video0").named("Cam").withBusInfo("usb-1-2.3"));
    CameraList const list = findCameras();
    ASSERT_EQ(list.cameras.size(), 1u);
    Found const& camera = list.cameras[0];
    EXPECT_EQ(camera.index(), 0);
    EXPECT_EQ(camera.node(), "/dev/video0");
    EXPECT_EQ(camera.name(), "Cam");
    EXPECT_EQ(camera.serial(), "S123");
    EXPECT_EQ(camera.id(), "046d:0825");
    EXPECT_EQ(camera.port(), "1-2.3");
    EXPECT_STREQ(camera.device().busInfo(), "usb-1-2.3");
    EXPECT_STREQ(camera.device().driverName(), "uvcvideo");
    EXPECT_STREQ(camera.device().driverVersion(), "6.1.0");
    EXPECT_STREQ(camera.device().manufacturer(), "Maker");
    EXPECT_EQ(camera.device().usbSpeed(), UsbSpeedSuper);
    EXPECT_EQ(camera.device().usbRevision(), 0x0310);
    EXPECT_TRUE(camera.device().supportsVideoCapture());
    EXPECT_TRUE(camera.device().supportsStreaming());
    EXPECT_EQ(camera.description(), "/dev/video0 'Cam' serial:S123 port:1-2.3");
}

TEST_F(NodeWalkTest, TellsTwinsApart)
{
    auto const old = vendorUsbDevice("1-1").withFirmware("TJ8-1.2.4").withSpeed("12");
    auto const recent = vendorUsbDevice("1-2").withFirmware("TJ8-1.2.9").withUsbRevision(0x0300);
    auto const first = m_machine.plug(old);
    auto const second = m_machine.plug(recent);
    m_machine.add(0, first);
    m_machine.add(1, second);
    CameraList const list = findCameras();
    ASSERT_EQ(list.cameras.size(), 2u);
    EXPECT_STREQ(list.cameras[0].device().firmwareVersion(), "TJ8-1.2.4");
    EXPECT_STREQ(list.cameras[1].device().firmwareVersion(), "TJ8-1.2.9");
    EXPECT_EQ(list.cameras[0].device().usbSpeed(), UsbSpeedFull);
    EXPECT_EQ(list.cameras[1].device().usbSpeed(), UsbSpeedHigh);
    EXPECT_EQ(list.cameras[0].device().usbRevision(), 0x0200);
    EXPECT_EQ(list.cameras[1].device().usbRevision(), 0x0300);
    expectOneRequest(first, 0xB0, 32);
    expectOneRequest(second, 0xB0, 32);
}

TEST_F(NodeWalkTest, LooksAtTheBusOnceForAllCameras)
{
    for (int number = 0; number < 4; ++number) {
        auto const usb = vendorUsbDevice("1-" + std::to_string(number + 1)).withFirmware("T");
        m_machine.add(number, m_machine.plug(usb));
    }
    usbContexts = 0;
    EXPECT_EQ(findCameras().cameras.size(), 4u);
    EXPECT_EQ(usbContexts, 1);
}

TEST_F(NodeWalkTest, LooksAtNoBusWithoutTheVendorsCameras)
{
    m_machine.add(0, m_machine.plug(aUsbDevice()));
    usbContexts = 0;
    EXPECT_EQ(findCameras().cameras.size(), 1u);
    EXPECT_EQ(usbContexts, 0);
}

TEST_F(NodeWalkTest, AsksOnlyTheVendorsCamerasForTheirFirmware)
{
    auto const other = m_machine.plug(aUsbDevice().withFirmware("TJ8-1.2.4"));
    m_machine.add(0, other);
    EXPECT_STREQ(findCameras().cameras.at(0).device().firmwareVersion(), "");
    EXPECT_TRUE(other.requests().empty());
}

TEST_F(NodeWalkTest, GoesWithoutTheFirmwareOfADeviceThatDoesNotTellIt)
{
    m_machine.add(0, m_machine.plug(vendorUsbDevice("1-1").stallingFirmwareRequests()));
    m_machine.add(1, m_machine.plug(vendorUsbDevice("1-2").withFirmware("T").refusingOpen()));
    CameraList const list = findCameras();
    ASSERT_EQ(list.cameras.size(), 2u);
    EXPECT_STREQ(list.cameras[0].device().firmwareVersion(), "");
    EXPECT_STREQ(list.cameras[1].device().firmwareVersion(), "");
}

TEST_F(NodeWalkTest, SortsByTheNumbersOfTheNodes)
{
    auto const usb = m_machine.plug(aUsbDevice());
    for (int const number : {10, 2, 100}) {
        m_machine.add(number, usb);
    }
    EXPECT_THAT(nodes(findCameras()), ElementsAre("/dev/video2", "/dev/video10", "/dev/video100"));
}

TEST_F(NodeWalkTest, LeavesOutWhatIsNoCameraWithItsReason)
{
    auto const usb = m_machine.plug(aUsbDevice("1-1"));
    auto const withoutIds = m_machine.plug(aUsbDevice("1-2").withoutIds());
    m_machine.add(0, usb);
    m_machine.add(1, usb,
                  aCamera("/dev/video1")
                      .withCapabilities(V4L2_CAP_VIDEO_CAPTURE | V4L2_CAP_META_CAPTURE,
                                        V4L2_CAP_META_CAPTURE));
    m_machine.add(
        2, usb,
        aCamera("/dev/video2")
            .withCapabilities(V4L2_CAP_VIDEO_CAPTURE_MPLANE, V4L2_CAP_VIDEO_CAPTURE_MPLANE));
    m_machine.addWithoutUsb(3);
    m_machine.add(4, withoutIds);
    m_machine.add(5, usb, aCamera("/dev/video5").failing(VirtualCamera::Call::Open, EACCES));
    m_machine.add(6, usb, aCamera("/dev/video6").failing(VIDIOC_QUERYCAP, EIO));
    CameraList const list = findCameras();
    EXPECT_THAT(nodes(list), ElementsAre("/dev/video0"));
    ASSERT_EQ(list.leftOut.size(), 6u);
    EXPECT_EQ(list.leftOut[0].node, "/dev/video1");
    EXPECT_EQ(list.leftOut[0].reason, "does not capture video");
    EXPECT_EQ(list.leftOut[0].why, LeftOut::Why::NoCapture);
    EXPECT_EQ(list.leftOut[1].reason, "captures in several planes only");
    EXPECT_EQ(list.leftOut[2].reason, "has no USB device behind it");
    EXPECT_EQ(list.leftOut[2].why, LeftOut::Why::NoUsbDevice);
    EXPECT_EQ(list.leftOut[3].reason, "has a USB device without ids behind it");
    EXPECT_THAT(list.leftOut[4].reason, StartsWith("cannot be opened: Permission denied; "
                                                   "/dev/video5 belongs to group "));
    EXPECT_EQ(list.leftOut[4].systemError, EACCES);
    EXPECT_EQ(list.leftOut[5].reason, "does not answer: Input/output error");
    EXPECT_EQ(list.leftOut[5].why, LeftOut::Why::NotOpened);
}

TEST_F(NodeWalkTest, PassesOverNodesOfOtherKinds)
{
    m_machine.testbed.addVideoNode("vbi0");
    m_machine.testbed.addVideoNode("radio0");
    CameraList const list = findCameras();
    EXPECT_TRUE(list.cameras.empty());
    EXPECT_TRUE(list.leftOut.empty());
}

TEST_F(NodeWalkTest, LeavesNoDescriptorBehind)
{
    m_machine.add(0, m_machine.plug(vendorUsbDevice().withFirmware("TJ8-1.2.3")));
    m_machine.addWithoutUsb(1);
    findCameras();
    int const before = openDescriptors();
    for (int round = 0; round < 5; ++round) {
        findCameras();
    }
    EXPECT_TRUE(awaitAtMostDescriptors(before));
}

} // namespace
