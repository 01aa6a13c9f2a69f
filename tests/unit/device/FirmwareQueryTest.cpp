// SPDX-License-Identifier: MIT
// The firmware revision that the vendor's cameras tell over USB.
#include "device/DeviceEnumerator.h"

#include "Machine.h"
#include "device/Device.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace
{

using namespace ImageAcquisition;
using VirtualCamera::aUsbDevice;
using VirtualCamera::UsbDeviceScript;

class FirmwareQueryTest : public testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(VirtualCamera::Testbed::visible()); }

    /// The firmware text of a camera that is such a USB device.
    std::string firmwareOf(UsbDeviceScript const& script)
    {
        m_machine.add(0, m_machine.plug(script));
        std::unique_ptr<IDevice> const device(DeviceEnumerator::createDevice("video0"));
        return device ? device->firmwareVersion() : "no device";
    }

    Machine m_machine;
};

TEST_F(FirmwareQueryTest, AsksOnceWithTheVendorsRequest)
{
    auto const usb = m_machine.plug(vendorUsbDevice().withFirmware("TJ8-1.2.4"));
    m_machine.add(0, usb);
    std::unique_ptr<IDevice> const device(DeviceEnumerator::createDevice("video0"));
    ASSERT_NE(device, nullptr);
    EXPECT_TRUE(device->isaZorvaneDevice());
    EXPECT_STREQ(device->firmwareVersion(), "TJ8-1.2.4");
    expectOneRequest(usb, 0xB0, 32);
}

TEST_F(FirmwareQueryTest, DoesNotAskOtherCameras)
{
    auto const usb = m_machine.plug(aUsbDevice().withFirmware("TJ8-1.2.4"));
    m_machine.add(0, usb);
    std::unique_ptr<IDevice> const device(DeviceEnumerator::createDevice("video0"));
    EXPECT_STREQ(device->firmwareVersion(), "");
    EXPECT_TRUE(usb.requests().empty());
}

TEST_F(FirmwareQueryTest, IgnoresAReplyOfThreeBytes)
{
    EXPECT_EQ(firmwareOf(vendorUsbDevice().withFirmwareBytes({'T', 'J', '8'})), "");
}

TEST_F(FirmwareQueryTest, TakesAReplyOfFourBytes)
{
    EXPECT_EQ(firmwareOf(vendorUsbDevice().withFirmwareBytes({'T', 'J', '8', '-'})), "TJ8-");
}

TEST_F(FirmwareQueryTest, ReadsAReplyWithoutAnEndNoFurtherThanItCame)
{
    EXPECT_EQ(firmwareOf(vendorUsbDevice().withFirmwareBytes(
                  {'T', 'J', '8', '-', '1', '.', '3', '.', '0'})),
              "TJ8-1.3.0");
}

TEST_F(FirmwareQueryTest, ReadsAFullReplyWithoutAnEndNoFurtherThanItsBuffer)
{
    std::string const text = "TJ8-1.2.3 and 22 bytes of more..";
    ASSERT_EQ(text.size(), 32u);
    EXPECT_EQ(firmwareOf(vendorUsbDevice().withFirmwareBytes({text.begin(), text.end()})), text);
}

TEST_F(FirmwareQueryTest, EndsTheTextAtItsZero)
{
    EXPECT_EQ(firmwareOf(vendorUsbDevice().withFirmwareBytes({'T', 'J', '8', 0, 'x'})), "TJ8");
}

TEST_F(FirmwareQueryTest, LeavesTheTextEmptyWhenTheRequestFails)
{
    EXPECT_EQ(firmwareOf(vendorUsbDevice().stallingFirmwareRequests()), "");
}

TEST_F(FirmwareQueryTest, LeavesTheTextEmptyWhenTheReplyIsEmpty)
{
    EXPECT_EQ(firmwareOf(vendorUsbDevice().withFirmwareBytes({})), "");
}

TEST_F(FirmwareQueryTest, LeavesTheTextEmptyWhenTheUsbDeviceCannotBeOpened)
{
    EXPECT_EQ(firmwareOf(vendorUsbDevice().withFirmware("TJ8-1.2.4").refusingOpen()), "");
}

TEST_F(FirmwareQueryTest, KeepsAnEarlierTextWhenItFails)
{
    Device device(0);
    device.setIdVendor(IMAGEACQUISITION_VENDOR_ID);
    device.setIdProduct(IMAGEACQUISITION_PRODUCT_ID);
    device.setFirmwareVersion("earlier");
    DeviceEnumerator::getFirmwareRevision(&device);
    EXPECT_STREQ(device.firmwareVersion(), "earlier");
}

} // namespace
