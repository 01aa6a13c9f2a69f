// SPDX-License-Identifier: MIT
#include "device/Device.h"

#include "system/Text.h"

#include <cstdio>

namespace ImageAcquisition
{

namespace
{

constexpr char vendorsVendorId[] = IMAGEACQUISITION_VENDOR_ID;
constexpr char vendorsProductId[] = IMAGEACQUISITION_PRODUCT_ID;

} // namespace

Device::Device(int index) : m_index(index) {}

Device::Device(IDevice const* other) : m_index(0)
{
    if (other == nullptr) {
        return;
    }
    m_index = other->index();
    setName(other->name());
    setSystemName(other->systemName());
    setDriverName(other->driverName());
    assignUnlessNull(m_driverVersion, other->driverVersion());
    setBusInfo(other->busInfo());
    setIdVendor(other->vendorId());
    setIdProduct(other->productId());
    setManufacturer(other->manufacturer());
    setProduct(other->name());
    setSerial(other->serial());
    setFirmwareVersion(other->firmwareVersion());
    m_supportsAsynchIO = other->supportsAsynchIO();
    m_supportsMultiplane = other->supportsMultiplane();
    m_supportsReadWrite = other->supportsReadWrite();
    m_supportsStreaming = other->supportsStreaming();
    m_supportsVideoCapture = other->supportsVideoCapture();
    m_usbRevision = other->usbRevision();
    m_usbSpeed = other->usbSpeed();
}

bool Device::isaZorvaneDevice() const
{
    return m_productId == vendorsProductId && m_vendorId == vendorsVendorId;
}

void Device::setName(char const* name)
{
    assignUnlessNull(m_name, name);
}

void Device::setSystemName(char const* systemName)
{
    assignUnlessNull(m_systemName, systemName);
}

void Device::setFirmwareVersion(char const* firmwareVersion)
{
    assignUnlessNull(m_firmwareVersion, firmwareVersion);
}

void Device::setIdVendor(char const* id)
{
    assignUnlessNull(m_vendorId, id);
}

void Device::setIdProduct(char const* id)
{
    assignUnlessNull(m_productId, id);
}

void Device::setManufacturer(char const* manufacturer)
{
    assignUnlessNull(m_manufacturer, manufacturer);
}

void Device::setProduct(char const* product)
{
    assignUnlessNull(m_product, product);
}

void Device::setSerial(char const* serial)
{
    assignUnlessNull(m_serial, serial);
}

void Device::setDriverName(char const* driverName)
{
    assignUnlessNull(m_driverName, driverName);
}

void Device::setBusInfo(char const* busInfo)
{
    assignUnlessNull(m_busInfo, busInfo);
}

void Device::setDriverVersion(unsigned int code)
{
    m_driverVersionCode = code;
    char text[1024];
    std::snprintf(text, sizeof text, "%u.%u.%u", (code >> 16) & 0xffu, (code >> 8) & 0xffu,
                  code & 0xffu);
    m_driverVersion = text;
}

} // namespace ImageAcquisition
