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

TEST(DeviceTest, StartsWithItsIndexAndTheDefaults)
{
    Device const device(3);
    EXPECT_EQ(device.index(), 3);
    EXPECT_STREQ(device.name(), "Unknown Device");
    EXPECT_STREQ(device.systemName(), "Unknown");
    for (char const* const text : {device.driverName(), device.driverVersion(), device.busInfo(),
                                   device.vendorId(), device.productId(), device.manufacturer(),
                                   device.product(), device.serial(), device.firmwareVersion()}) {
        EXPECT_STREQ(text, "");
    }
    EXPECT_FALSE(device.supportsAsynchIO());
    EXPECT_FALSE(device.supportsMultiplane());
    EXPECT_FALSE(device.supportsReadWrite());
    EXPECT_FALSE(device.supportsStreaming());
    EXPECT_FALSE(device.supportsVideoCapture());
    EXPECT_FALSE(device.isaZorvaneDevice());
    EXPECT_EQ(device.driverVersionCode(), 0u);
    EXPECT_EQ(device.usbRevision(), 0);
    EXPECT_EQ(device.usbSpeed(), UsbSpeedUnknown);
}

TEST(DeviceTest, SpellsTheDriverVersionOutByteByByte)
{
    Device device(0);
    device.setDriverVersion(0x00030d05);
    EXPECT_STREQ(device.driverVersion(), "3.13.5");
    EXPECT_EQ(device.driverVersionCode(), 0x00030d05u);
}

TEST(DeviceTest, DropsTheTopByteOfTheDriverVersion)
{
    Device device(0);
    device.setDriverVersion(0xff010203);
    EXPECT_STREQ(device.driverVersion(), "1.2.3");
    EXPECT_EQ(device.driverVersionCode(), 0xff010203u);
}

TEST(DeviceTest, KeepsATextWhenItIsSetToNull)
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
        EXPECT_STREQ(text, "A1");
    }
}

TEST(DeviceTest, CopiesTheTextsThatItIsGiven)
{
    Device device(0);
    std::string text = "first";
    device.setName(text.c_str());
    text = "other";
    EXPECT_STREQ(device.name(), "first");
}

TEST(DeviceTest, CopiesARecordField)
{
    DeviceStub other;
    other.position = 7;
    other.firmware = "TJ8-1.2.3";
    other.asynchIO = other.multiplane = true;
    other.speed = UsbSpeedSuper;
    other.revision = 0x0310;
    Device const copy(&other);
    EXPECT_EQ(copy.index(), 7);
    EXPECT_STREQ(copy.name(), other.card);
    EXPECT_STREQ(copy.systemName(), other.node);
    EXPECT_STREQ(copy.driverName(), other.driver);
    EXPECT_STREQ(copy.driverVersion(), other.version);
    EXPECT_STREQ(copy.busInfo(), other.bus);
    EXPECT_STREQ(copy.vendorId(), other.vendor);
    EXPECT_STREQ(copy.productId(), other.product);
    EXPECT_STREQ(copy.manufacturer(), other.maker);
    EXPECT_STREQ(copy.serial(), other.serialNumber);
    EXPECT_STREQ(copy.firmwareVersion(), other.firmware);
    EXPECT_TRUE(copy.supportsAsynchIO());
    EXPECT_TRUE(copy.supportsMultiplane());
    EXPECT_TRUE(copy.supportsReadWrite());
    EXPECT_TRUE(copy.supportsStreaming());
    EXPECT_TRUE(copy.supportsVideoCapture());
    EXPECT_EQ(copy.usbRevision(), 0x0310);
    EXPECT_EQ(copy.usbSpeed(), UsbSpeedSuper);
}

TEST(DeviceTest, CopiesEachFlagFromItsOwn)
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
            EXPECT_EQ((copy.*flag.accessor)(), flag.member == set.member);
        }
    }
}

TEST(DeviceTest, ReportsTheCardNameAsTheProductOfACopy)
{
    Device source(0);
    source.setName("Card");
    source.setProduct("Product");
    source.setDriverVersion(0x010203);
    Device const copy(&source);
    EXPECT_STREQ(copy.product(), "Card");
    EXPECT_STREQ(copy.driverVersion(), "1.2.3");
    EXPECT_EQ(copy.driverVersionCode(), 0u);
}

TEST(DeviceTest, KeepsTheDefaultsForNullTextsOfAnApplicationsRecord)
{
    DeviceStub other;
    other.card = other.node = other.driver = other.bus = other.version = nullptr;
    other.vendor = other.product = other.maker = other.serialNumber = other.firmware = nullptr;
    Device const copy(&other);
    EXPECT_STREQ(copy.name(), "Unknown Device");
    EXPECT_STREQ(copy.systemName(), "Unknown");
    for (char const* const text : {copy.driverName(), copy.driverVersion(), copy.busInfo(),
                                   copy.vendorId(), copy.productId(), copy.manufacturer(),
                                   copy.product(), copy.serial(), copy.firmwareVersion()}) {
        EXPECT_STREQ(text, "");
    }
}

TEST(DeviceTest, IsOneOfTheVendorsWhenBothIdsAreTheVendors)
{
    Device device(0);
    device.setIdVendor(vendorId);
    device.setIdProduct(productId);
    EXPECT_TRUE(device.isaZorvaneDevice());
}

TEST(DeviceTest, IsNotOneOfTheVendorsWhenOneIdDiffers)
{
    Device device(0);
    device.setIdVendor(vendorId);
    device.setIdProduct("0001");
    EXPECT_FALSE(device.isaZorvaneDevice());
    device.setIdVendor("0001");
    device.setIdProduct(productId);
    EXPECT_FALSE(device.isaZorvaneDevice());
}

TEST(DeviceTest, ComparesIdsByteByByte)
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
TEST(DeviceTest, DecidesByIdsWhetherACopyIsTheVendors)
{
    DeviceStub other;
    other.ofTheVendor = true;
    EXPECT_FALSE(Device(&other).isaZorvaneDevice());
    other.ofTheVendor = false;
    other.vendor = vendorId;
    other.product = productId;
    EXPECT_TRUE(Device(&other).isaZorvaneDevice());
}

TEST(DeviceTest, NumbersSpeedsAsLibusbDoes)
{
    EXPECT_EQ(UsbSpeedUnknown, 0);
    EXPECT_EQ(UsbSpeedLow, 1);
    EXPECT_EQ(UsbSpeedFull, 2);
    EXPECT_EQ(UsbSpeedHigh, 3);
    EXPECT_EQ(UsbSpeedSuper, 4);
}

} // namespace
