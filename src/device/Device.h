// SPDX-License-Identifier: MIT
#pragma once

#include "IDevice.h"

#include <string>

namespace ImageAcquisition
{

/// The record of one video-capture node.
class Device : public virtual IDevice
{
public:
    explicit Device(int index);

    /// Copies what the interface offers. It offers no product text, so the card name stands in for
    /// it, and no undecoded driver version, which stays 0.
    explicit Device(IDevice const* other);

    int index() const override { return m_index; }
    char const* name() const override { return m_name.c_str(); }
    char const* systemName() const override { return m_systemName.c_str(); }
    char const* driverName() const override { return m_driverName.c_str(); }
    char const* busInfo() const override { return m_busInfo.c_str(); }
    char const* driverVersion() const override { return m_driverVersion.c_str(); }
    char const* vendorId() const override { return m_vendorId.c_str(); }
    char const* productId() const override { return m_productId.c_str(); }
    char const* manufacturer() const override { return m_manufacturer.c_str(); }
    char const* serial() const override { return m_serial.c_str(); }
    char const* firmwareVersion() const override { return m_firmwareVersion.c_str(); }
    bool supportsAsynchIO() const override { return m_supportsAsynchIO; }
    bool supportsMultiplane() const override { return m_supportsMultiplane; }
    bool supportsReadWrite() const override { return m_supportsReadWrite; }
    bool supportsStreaming() const override { return m_supportsStreaming; }
    bool supportsVideoCapture() const override { return m_supportsVideoCapture; }
    bool isaZorvaneDevice() const override;
    unsigned short usbRevision() const override { return m_usbRevision; }
    UsbSpeed usbSpeed() const override { return m_usbSpeed; }

    /// Not part of the interface.
    char const* product() const { return m_product.c_str(); }
    unsigned int driverVersionCode() const { return m_driverVersionCode; }

    // Every text is copied; null, which udev gives for a missing attribute, is ignored.
    void setName(char const* name);
    void setSystemName(char const* systemName);
    void setFirmwareVersion(char const* firmwareVersion);
    void setIdVendor(char const* id);
    void setIdProduct(char const* id);
    void setManufacturer(char const* manufacturer);
    void setProduct(char const* product);
    void setSerial(char const* serial);
    void setDriverName(char const* driverName);
    void setBusInfo(char const* busInfo);
    void setSupportsAsynchIO(bool supports) { m_supportsAsynchIO = supports; }
    void setSupportsMultiplane(bool supports) { m_supportsMultiplane = supports; }
    void setSupportsReadWrite(bool supports) { m_supportsReadWrite = supports; }
    void setSupportsStreaming(bool supports) { m_supportsStreaming = supports; }
    void setSupportsVideoCapture(bool supports) { m_supportsVideoCapture = supports; }
    void setUsbRevision(unsigned short revision) { m_usbRevision = revision; }
    void setUsbSpeed(UsbSpeed speed) { m_usbSpeed = speed; }

    /// Keeps the kernel's version code and its text; the code's top byte is no part of it.
    void setDriverVersion(unsigned int code);

private:
    int m_index;
    std::string m_name = "Unknown Device";
    std::string m_systemName = "Unknown";
    std::string m_driverName;
    std::string m_driverVersion;
    std::string m_busInfo;
    std::string m_vendorId;
    std::string m_productId;
    std::string m_manufacturer;
    std::string m_product;
    std::string m_serial;
    std::string m_firmwareVersion;
    bool m_supportsAsynchIO = false;
    bool m_supportsMultiplane = false;
    bool m_supportsReadWrite = false;
    bool m_supportsStreaming = false;
    bool m_supportsVideoCapture = false;
    unsigned int m_driverVersionCode = 0;
    unsigned short m_usbRevision = 0;
    UsbSpeed m_usbSpeed = UsbSpeedUnknown;
};

} // namespace ImageAcquisition
