// SPDX-License-Identifier: MIT
#include "device/Device.h"

#include "DeviceStub.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace
{

using namespace ImageAcquisition;

constexpr char vendorId[] = IMAGEACQUISITION_VENDOR_ID;
constexpr char productId[] = IMAGEACQUISITION_PRODUCT_ID;

std::string upperCase(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(), ::toupper);
    return text;
}

TEST(Device, StartsWithItsIndexAndTheDefaults)
{
    Device const device(3);
    EXPECT_EQ(3, device.index());
    EXPECT_STREQ("Unknown Device", device.name());
    EXPECT_STREQ("Unknown", device.systemName());
    for (char const* const text : {device.driverName(), device.driverVersion(), device.busInfo(),
                                   device.vendorId(), device.productId(), device.manufacturer(),
                                   device.product(), device.serial(), device.firmwareVersion()}) {
        EXPECT_STREQ("", text);
    }
    EXPECT_FALSE(device.supportsAsynchIO());
    EXPECT_FALSE(device.supportsMultiplane());
    EXPECT_FALSE(device.supportsReadWrite());
    EXPECT_FALSE(device.supportsStreaming());
    EXPECT_FALSE(device.supportsVideoCapture());
    EXPECT_FALSE(device.isaZorvaneDevice());
    EXPECT_EQ(0u, device.driverVersionCode());
    EXPECT_EQ(0, device.usbRevision());
    EXPECT_EQ(UsbSpeedUnknown, device.usbSpeed());
}

TEST(Device, SpellsTheDriverVersionOutByteByByte)
{
    Device device(0);
    device.setDriverVersion(0x00030d05);
    EXPECT_STREQ("3.13.5", device.driverVersion());
    EXPECT_EQ(0x00030d05u, device.driverVersionCode());
}

TEST(Device, DropsTheTopByteOfTheDriverVersion)
{
    Device device(0);
    device.setDriverVersion(0xff010203);
    EXPECT_STREQ("1.2.3", device.driverVersion());
    EXPECT_EQ(0xff010203u, device.driverVersionCode());
}

TEST(Device, KeepsATextWhenItIsSetToNull)
{
    Device device(0);
    void (Device::*const setters[])(char const*) = {
        &Device::setIdVendor,       &Device::setIdProduct, &Device::setManufacturer,
        &Device::setProduct,        &Device::setSerial,    &Device::setDriverName,
        &Device::setBusInfo,        &Device::setName,      &Device::setSystemName,
        &Device::setFirmwareVersion};
    for (auto const setter : setters) {
        (device.*setter)("A1");
        (device.*setter)(nullptr);
    }
    for (char const* const text :
         {device.vendorId(), device.productId(), device.manufacturer(), device.product(),
          device.serial(), device.driverName(), device.busInfo(), device.name(),
          device.systemName(), device.firmwareVersion()}) {
        EXPECT_STREQ("A1", text);
    }
}

TEST(Device, CopiesTheTextsThatItIsGiven)
{
    Device device(0);
    std::string text = "first";
    device.setName(text.c_str());
    text = "other";
    EXPECT_STREQ("first", device.name());
}

TEST(Device, CopiesARecordField)
{
    DeviceStub other;
    other.position = 7;
    other.firmware = "TJ8-1.2.3";
    other.asynchIO = other.multiplane = true;
    other.speed = UsbSpeedSuper;
    other.revision = 0x0310;
    Device const copy(&other);
    EXPECT_EQ(7, copy.index());
    EXPECT_STREQ(other.card, copy.name());
    EXPECT_STREQ(other.node, copy.systemName());
    EXPECT_STREQ(other.driver, copy.driverName());
    EXPECT_STREQ(other.version, copy.driverVersion());
    EXPECT_STREQ(other.bus, copy.busInfo());
    EXPECT_STREQ(other.vendor, copy.vendorId());
    EXPECT_STREQ(other.product, copy.productId());
    EXPECT_STREQ(other.maker, copy.manufacturer());
    EXPECT_STREQ(other.serialNumber, copy.serial());
    EXPECT_STREQ(other.firmware, copy.firmwareVersion());
    EXPECT_TRUE(copy.supportsAsynchIO());
    EXPECT_TRUE(copy.supportsMultiplane());
    EXPECT_TRUE(copy.supportsReadWrite());
    EXPECT_TRUE(copy.supportsStreaming());
    EXPECT_TRUE(copy.supportsVideoCapture());
    EXPECT_EQ(0x0310, copy.usbRevision());
    EXPECT_EQ(UsbSpeedSuper, copy.usbSpeed());
}

TEST(Device, CopiesEachFlagFromItsOwn)
{
    struct
    {
        bool DeviceStub::*member;
        bool (Device::*accessor)() const;
    } const flags[] = {{&DeviceStub::asynchIO, &Device::supportsAsynchIO},
                       {&DeviceStub::multiplane, &Device::supportsMultiplane},
                       {&DeviceStub::readWrite, &Device::supportsReadWrite},
                       {&DeviceStub::streaming, &Device::supportsStreaming},
                       {&DeviceStub::videoCapture, &Device::supportsVideoCapture}};
    for (auto const& set : flags) {
        DeviceStub other;
        for (auto const& flag : flags) {
            other.*flag.member = flag.member == set.member;
        }
        Device const copy(&other);
        for (auto const& flag : flags) {
            EXPECT_EQ(flag.member == set.member, (copy.*flag.accessor)());
        }
    }
}

TEST(Device, ReportsTheCardNameAsTheProductOfACopy)
{
    Device source(0);
    source.setName("Card");
    source.setProduct("Product");
    source.setDriverVersion(0x010203);
    Device const copy(&source);
    EXPECT_STREQ("Card", copy.product());
    EXPECT_STREQ("1.2.3", copy.driverVersion());
    EXPECT_EQ(0u, copy.driverVersionCode());
}

TEST(Device, KeepsTheDefaultsForNullTextsOfAnApplicationsRecord)
{
    DeviceStub other;
    other.card = other.node = other.driver = other.bus = other.version = nullptr;
    other.vendor = other.product = other.maker = other.serialNumber = other.firmware = nullptr;
    Device const copy(&other);
    EXPECT_STREQ("Unknown Device", copy.name());
    EXPECT_STREQ("Unknown", copy.systemName());
    for (char const* const text : {copy.driverName(), copy.driverVersion(), copy.busInfo(),
                                   copy.vendorId(), copy.productId(), copy.manufacturer(),
                                   copy.product(), copy.serial(), copy.firmwareVersion()}) {
        EXPECT_STREQ("", text);
    }
}

TEST(Device, IsOneOfTheVendorsWhenBothIdsAreTheVendors)
{
    Device device(0);
    device.setIdVendor(vendorId);
    device.setIdProduct(productId);
    EXPECT_TRUE(device.isaZorvaneDevice());
}

TEST(Device, IsNotOneOfTheVendorsWhenOneIdDiffers)
{
    Device device(0);
    device.setIdVendor(vendorId);
    device.setIdProduct("0001");
    EXPECT_FALSE(device.isaZorvaneDevice());
    device.setIdVendor("0001");
    device.setIdProduct(productId);
    EXPECT_FALSE(device.isaZorvaneDevice());
}

TEST(Device, ComparesIdsByteByByte)
{
    // Only ids with letters in them have another case.
    ASSERT_NE(upperCase(vendorId), vendorId);
    ASSERT_NE(upperCase(productId), productId);
    Device device(0);
    device.setIdVendor(upperCase(vendorId).c_str());
    device.setIdProduct(productId);
    EXPECT_FALSE(device.isaZorvaneDevice());
    device.setIdVendor(vendorId);
    device.setIdProduct(upperCase(productId).c_str());
    EXPECT_FALSE(device.isaZorvaneDevice());
    device.setIdProduct((std::string("0") + productId).c_str());
    EXPECT_FALSE(device.isaZorvaneDevice());
}

// The record that an application hands in may claim what it likes; the ids decide.
TEST(Device, DecidesByIdsWhetherACopyIsTheVendors)
{
    DeviceStub other;
    other.ofTheVendor = true;
    EXPECT_FALSE(Device(&other).isaZorvaneDevice());
    other.ofTheVendor = false;
    other.vendor = vendorId;
    other.product = productId;
    EXPECT_TRUE(Device(&other).isaZorvaneDevice());
}

TEST(UsbSpeed, HasTheNumbersOfLibusb)
{
    EXPECT_EQ(0, UsbSpeedUnknown);
    EXPECT_EQ(1, UsbSpeedLow);
    EXPECT_EQ(2, UsbSpeedFull);
    EXPECT_EQ(3, UsbSpeedHigh);
    EXPECT_EQ(4, UsbSpeedSuper);
}

} // namespace
