// SPDX-License-Identifier: MIT
#include "camera/Camera.h"

#include "DescriptorCount.h"
#include "DescriptorLimit.h"
#include "Machine.h"
#include "VendorRecord.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace
{

using namespace ImageAcquisition;
using VirtualCamera::aUsbDevice;

class SoftwareResetTest : public testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(VirtualCamera::Testbed::visible()); }

    Machine m_machine;
    DeviceStub const m_record = recordWithExtensionUnit();
    Camera m_camera{&m_record};
};

TEST_F(SoftwareResetTest, SendsTheVendorsRequest)
{
    auto const usb = m_machine.plug(vendorUsbDevice().withFirmware("TJ8-1.2.3"));
    EXPECT_TRUE(m_camera.softwareReset());
    expectOneRequest(usb, 0xE0, 16);
}

TEST_F(SoftwareResetTest, DoesNotNeedTheVideoNode)
{
    auto const usb = m_machine.plug(vendorUsbDevice().withFirmware("TJ8-1.2.3"));
    auto const& node = m_machine.add(0, usb);
    EXPECT_TRUE(m_camera.softwareReset());
    EXPECT_EQ(node.accounting().totalOpens, 0u);
}

TEST_F(SoftwareResetTest, CountsAsSentWhateverTheCameraAnswers)
{
    auto const usb = m_machine.plug(vendorUsbDevice().stallingFirmwareRequests());
    EXPECT_TRUE(m_camera.softwareReset());
    EXPECT_EQ(usb.resetRequests(), 1);
}

TEST_F(SoftwareResetTest, SendsNothingToOtherCameras)
{
    auto const usb = m_machine.plug(aUsbDevice().withIds("1234", "abcd").withFirmware("TJ8-1.2.3"));
    DeviceStub const other{};
    Camera generic(&other);
    EXPECT_FALSE(generic.softwareReset());
    EXPECT_TRUE(usb.requests().empty());
}

TEST_F(SoftwareResetTest, FailsWhenTheUsbDeviceIsGoneOrCannotBeOpened)
{
    EXPECT_FALSE(m_camera.softwareReset());
    m_machine.plug(vendorUsbDevice().withFirmware("TJ8-1.2.3").refusingOpen());
    EXPECT_FALSE(m_camera.softwareReset());
}

TEST_F(SoftwareResetTest, FailsWithoutLibusb)
{
    auto const usb = m_machine.plug(vendorUsbDevice().withFirmware("TJ8-1.2.3"));
    DescriptorLimit const none;
    EXPECT_FALSE(m_camera.softwareReset());
    EXPECT_TRUE(usb.requests().empty());
}

TEST_F(SoftwareResetTest, LeavesNoDescriptorBehind)
{
    m_machine.plug(vendorUsbDevice().withFirmware("TJ8-1.2.3"));
    EXPECT_TRUE(m_camera.softwareReset());
    int const before = openDescriptors();
    for (int round = 0; round < 5; ++round) {
        EXPECT_TRUE(m_camera.softwareReset());
    }
    // The simulated machine's own thread closes its connections in its own time, one that was
    // counted before among them.
    EXPECT_TRUE(awaitAtMostDescriptors(before));
}

/// A camera that takes itself for one of the vendor's in spite of its ids.
class MistakenCamera : public Camera
{
public:
    MistakenCamera() : Camera(nullptr)
    {
        mistaken.ofTheVendor = true;
        mistaken.vendor = "none";
    }

    IDevice const* device() const override { return &mistaken; }

    DeviceStub mistaken;
};

TEST_F(SoftwareResetTest, ThrowsForMalformedIdsAndReleasesLibusb)
{
    MistakenCamera mistaken;
    EXPECT_THROW(mistaken.softwareReset(), std::invalid_argument);
    int const before = openDescriptors();
    EXPECT_THROW(mistaken.softwareReset(), std::invalid_argument);
    mistaken.mistaken.vendor = "fffffffffffffffff";
    EXPECT_THROW(mistaken.softwareReset(), std::out_of_range);
    EXPECT_EQ(openDescriptors(), before);
}

} // namespace
