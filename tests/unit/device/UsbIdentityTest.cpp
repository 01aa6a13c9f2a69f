// SPDX-License-Identifier: MIT
// What udev and libusb tell of the USB device behind a node.
#include "device/DeviceEnumerator.h"

#include "DescriptorCount.h"
#include "DescriptorLimit.h"
#include "Machine.h"
#include "device/Device.h"
#include "device/DeviceList.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

namespace
{

using namespace ImageAcquisition;
using VirtualCamera::aUsbDevice;

std::unique_ptr<Device> describe(char const* nodeName = "video0")
{
    return std::unique_ptr<Device>(dynamic_cast<Device*>(DeviceEnumerator::createDevice(nodeName)));
}

class UsbIdentityTest : public testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(VirtualCamera::Testbed::visible()); }

    Machine m_machine;
};

TEST_F(UsbIdentityTest, ComesFromTheUsbDeviceBehindTheNode)
{
    m_machine.add(0, m_machine.plug(aUsbDevice()
                                        .withIds("046d", "0825")
                                        .withManufacturer("Maker")
                                        .withProduct("Product")
                                        .withSerial("S123")));
    auto const device = describe();
    ASSERT_NE(device, nullptr);
    EXPECT_STREQ(device->vendorId(), "046d");
    EXPECT_STREQ(device->productId(), "0825");
    EXPECT_STREQ(device->manufacturer(), "Maker");
    EXPECT_STREQ(device->product(), "Product");
    EXPECT_STREQ(device->serial(), "S123");
    EXPECT_FALSE(device->isaZorvaneDevice());
}

TEST_F(UsbIdentityTest, LeavesTextsEmptyThatTheDeviceDoesNotHave)
{
    m_machine.add(0, m_machine.plug(aUsbDevice()));
    auto const device = describe();
    ASSERT_NE(device, nullptr);
    EXPECT_STREQ(device->manufacturer(), "");
    EXPECT_STREQ(device->product(), "");
    EXPECT_STREQ(device->serial(), "");
}

TEST_F(UsbIdentityTest, IncludesTheRevision)
{
    m_machine.add(0, m_machine.plug(aUsbDevice().withUsbRevision(0x0310)));
    EXPECT_EQ(describe()->usbRevision(), 0x0310);
}

TEST_F(UsbIdentityTest, IncludesTheSpeedOfTheLink)
{
    struct
    {
        char const* megabits;
        UsbSpeed speed;
    } const cases[] = {{"1.5", UsbSpeedLow},
                       {"12", UsbSpeedFull},
                       {"480", UsbSpeedHigh},
                       {"5000", UsbSpeedSuper},
                       {"10000", UsbSpeedUnknown}};
    for (auto const& one : cases) {
        auto const usb = m_machine.plug(aUsbDevice().withSpeed(one.megabits));
        m_machine.add(0, usb);
        EXPECT_EQ(describe()->usbSpeed(), one.speed) << one.megabits;
        m_machine.testbed.unplug(usb);
    }
}

TEST_F(UsbIdentityTest, KnowsTheSpeedsUpToSuperSpeed)
{
    EXPECT_EQ(DeviceEnumerator::convertSpeed(0), UsbSpeedUnknown);
    EXPECT_EQ(DeviceEnumerator::convertSpeed(1), UsbSpeedLow);
    EXPECT_EQ(DeviceEnumerator::convertSpeed(2), UsbSpeedFull);
    EXPECT_EQ(DeviceEnumerator::convertSpeed(3), UsbSpeedHigh);
    EXPECT_EQ(DeviceEnumerator::convertSpeed(4), UsbSpeedSuper);
    for (int const other : {5, 6, -1, 2147483647}) {
        EXPECT_EQ(DeviceEnumerator::convertSpeed(other), UsbSpeedUnknown);
    }
}

TEST_F(UsbIdentityTest, IsThatOfTheFirstOfTwoIdenticalDevices)
{
    auto const slow = aUsbDevice("1-1").withSpeed("12").withUsbRevision(0x0110);
    auto const fast = aUsbDevice("1-2").withSpeed("480").withUsbRevision(0x0200);
    m_machine.add(0, m_machine.plug(slow));
    m_machine.add(1, m_machine.plug(fast));
    auto const first = describe("video0");
    auto const second = describe("video1");
    EXPECT_EQ(first->usbSpeed(), second->usbSpeed());
    EXPECT_EQ(first->usbRevision(), second->usbRevision());
    EXPECT_TRUE(first->usbSpeed() == UsbSpeedFull || first->usbSpeed() == UsbSpeedHigh);
}

TEST_F(UsbIdentityTest, IsToldApartByBothIds)
{
    m_machine.add(0, m_machine.plug(aUsbDevice("1-1").withIds("1111", "2222").withSpeed("12")));
    m_machine.add(1, m_machine.plug(aUsbDevice("1-2").withIds("1111", "3333").withSpeed("480")));
    m_machine.add(2, m_machine.plug(aUsbDevice("1-3").withIds("4444", "3333").withSpeed("1.5")));
    EXPECT_EQ(describe("video0")->usbSpeed(), UsbSpeedFull);
    EXPECT_EQ(describe("video1")->usbSpeed(), UsbSpeedHigh);
    EXPECT_EQ(describe("video2")->usbSpeed(), UsbSpeedLow);
}

TEST_F(UsbIdentityTest, HasNoRevisionAndSpeedWhenLibusbDoesNotKnowTheIds)
{
    m_machine.plug(aUsbDevice().withIds("1111", "2222"));
    // Compared whole: cut to 16 bits the first of these would match.
    for (char const* const vendor : {"11111", "1112"}) {
        Device device(0);
        device.setIdVendor(vendor);
        device.setIdProduct("2222");
        device.setUsbRevision(7);
        device.setUsbSpeed(UsbSpeedLow);
        DeviceEnumerator::getUsbDescriptor(&device);
        EXPECT_EQ(device.usbRevision(), 0);
        EXPECT_EQ(device.usbSpeed(), UsbSpeedUnknown);
    }
}

TEST_F(UsbIdentityTest, HasNoRevisionAndSpeedOnAMachineWithoutUsb)
{
    Device device(0);
    device.setIdVendor("1111");
    device.setIdProduct("2222");
    device.setUsbSpeed(UsbSpeedLow);
    DeviceEnumerator::getUsbDescriptor(&device);
    EXPECT_EQ(device.usbSpeed(), UsbSpeedUnknown);
}

TEST_F(UsbIdentityTest, HasNoRevisionAndSpeedWithoutLibusb)
{
    m_machine.plug(aUsbDevice());
    Device device(0);
    device.setUsbRevision(7);
    device.setUsbSpeed(UsbSpeedLow);
    {
        DescriptorLimit const none;
        // Not even the missing ids are noticed then.
        EXPECT_NO_THROW(DeviceEnumerator::getUsbDescriptor(&device));
        EXPECT_NO_THROW(DeviceEnumerator::getFirmwareRevision(&device));
    }
    EXPECT_EQ(device.usbRevision(), 0);
    EXPECT_EQ(device.usbSpeed(), UsbSpeedUnknown);
    EXPECT_STREQ(device.firmwareVersion(), "");
}

TEST_F(UsbIdentityTest, LeavesNoDescriptorBehind)
{
    m_machine.add(0, m_machine.plug(vendorUsbDevice().withFirmware("TJ8-1.2.3")));
    describe();
    int const before = openDescriptors();
    for (int round = 0; round < 5; ++round) {
        describe();
    }
    // The simulated machine's own thread closes its connections in its own time, one that was
    // counted before among them.
    EXPECT_TRUE(awaitAtMostDescriptors(before));
}

/// The exception that @p action throws.
template <typename Exception, typename Action>
std::string whatOf(Action action)
{
    try {
        action();
    } catch (Exception const& exception) {
        return exception.what();
    }
    return "nothing was thrown";
}

TEST_F(UsbIdentityTest, ThatIsMissingThrowsOutOfTheEnumeration)
{
    auto const& without = m_machine.addWithoutUsb(1);
    auto const& with = m_machine.add(0, m_machine.plug(aUsbDevice()));
    EXPECT_EQ(whatOf<std::invalid_argument>([] { describe("video1"); }), "stoul");
    EXPECT_EQ(without.accounting().openDescriptors, 0);
    EXPECT_NE(describe("video0"), nullptr);
    DeviceList list;
    EXPECT_EQ(whatOf<std::invalid_argument>([&list] { DeviceEnumerator::fillDeviceList(&list); }),
              "stoul");
    EXPECT_EQ(without.accounting().openDescriptors, 0);
    EXPECT_EQ(with.accounting().openDescriptors, 0);
    EXPECT_EQ(list.size(), 1) << "those that came before stay in the list";
}

TEST_F(UsbIdentityTest, OutOfRangeThrowsToo)
{
    Device device(0);
    device.setIdVendor("fffffffffffffffff");
    device.setIdProduct("2222");
    EXPECT_EQ(whatOf<std::out_of_range>([&device] { DeviceEnumerator::getUsbDescriptor(&device); }),
              "stoul");
    device.setIdVendor("xyz");
    EXPECT_EQ(
        whatOf<std::invalid_argument>([&device] { DeviceEnumerator::getUsbDescriptor(&device); }),
        "stoul");
}

TEST_F(UsbIdentityTest, ThrowsFromTheFirmwareQueryWithoutLosingDescriptors)
{
    Device device(0);
    device.setIdVendor("xyz");
    auto const query = [&device] { DeviceEnumerator::getFirmwareRevision(&device); };
    // The first query leaves open what the simulated system itself needs.
    EXPECT_EQ(whatOf<std::invalid_argument>(query), "stoul");
    int const before = openDescriptors();
    EXPECT_EQ(whatOf<std::invalid_argument>(query), "stoul");
    EXPECT_EQ(openDescriptors(), before);
}

} // namespace
