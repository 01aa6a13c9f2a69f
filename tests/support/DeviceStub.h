// SPDX-License-Identifier: MIT
#pragma once

#include "IDevice.h"

/// A record such as an application may make itself; every member can be set, texts to null too.
struct DeviceStub : public virtual ImageAcquisition::IDevice
{
    int index() const override { return position; }
    char const* name() const override { return card; }
    char const* systemName() const override { return node; }
    char const* driverName() const override { return driver; }
    char const* busInfo() const override { return bus; }
    char const* driverVersion() const override { return version; }
    char const* vendorId() const override { return vendor; }
    char const* productId() const override { return product; }
    char const* manufacturer() const override { return maker; }
    char const* serial() const override { return serialNumber; }
    char const* firmwareVersion() const override { return firmware; }
    bool supportsAsynchIO() const override { return asynchIO; }
    bool supportsMultiplane() const override { return multiplane; }
    bool supportsReadWrite() const override { return readWrite; }
    bool supportsStreaming() const override { return streaming; }
    bool supportsVideoCapture() const override { return videoCapture; }
    bool isaZorvaneDevice() const override { return ofTheVendor; }
    unsigned short usbRevision() const override { return revision; }
    ImageAcquisition::UsbSpeed usbSpeed() const override { return speed; }

    int position = 0;
    char const* card = "Camera";
    char const* node = "/dev/video0";
    char const* driver = "uvcvideo";
    char const* bus = "usb-1";
    char const* version = "6.1.0";
    char const* vendor = "1234";
    char const* product = "abcd";
    char const* maker = "Maker";
    char const* serialNumber = "S1";
    char const* firmware = "";
    bool asynchIO = false;
    bool multiplane = false;
    bool readWrite = true;
    bool streaming = true;
    bool videoCapture = true;
    bool ofTheVendor = false;
    unsigned short revision = 0x0200;
    ImageAcquisition::UsbSpeed speed = ImageAcquisition::UsbSpeedHigh;
};
