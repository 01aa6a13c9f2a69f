// SPDX-License-Identifier: MIT
#include "Descriptors.h"

#include "ConfigurationDescriptor.h"

namespace UsbCamera
{

namespace
{

constexpr unsigned deviceType = 1;
constexpr unsigned configurationType = 2;
constexpr unsigned stringType = 3;
constexpr unsigned qualifierType = 6;
constexpr unsigned storeType = 15;

Bytes makeDevice(CameraModel const& model)
{
    Bytes bytes{18, deviceType};
    appendLittle(bytes, model.usbRelease, 2);
    // Interfaces are grouped by association descriptors.
    append(bytes, {0xef, 2, 1});
    bytes.push_back(model.speed == Speed::Super ? 9 : 64);
    appendLittle(bytes, model.vendorId, 2);
    appendLittle(bytes, model.productId, 2);
    appendLittle(bytes, model.deviceRelease, 2);
    bytes.push_back(model.manufacturer.empty() ? 0 : 1);
    bytes.push_back(model.product.empty() ? 0 : 2);
    bytes.push_back(model.serialNumber.empty() ? 0 : 3);
    bytes.push_back(1);
    return bytes;
}

Bytes makeQualifier(CameraModel const& model)
{
    Bytes bytes{10, qualifierType};
    appendLittle(bytes, model.usbRelease, 2);
    append(bytes, {0xef, 2, 1, 64, 1, 0});
    return bytes;
}

/// The binary object store, which hosts ask newer devices for: link power management and, for a
/// super-speed device, its speeds.
Bytes makeStore(CameraModel const& model)
{
    Bytes capabilities{7, 16, 2, 0, 0, 0, 0};
    std::uint8_t count = 1;
    if (model.speed == Speed::Super) {
        append(capabilities, {10, 16, 3, 0, 0x0e, 0, 1, 10, 0xff, 0x07});
        ++count;
    }
    Bytes bytes{5, storeType};
    appendLittle(bytes, 5 + capabilities.size(), 2);
    bytes.push_back(count);
    append(bytes, capabilities);
    return bytes;
}

std::optional<Bytes> makeString(CameraModel const& model, unsigned index)
{
    if (index == 0) {
        return Bytes{4, stringType, 0x09, 0x04};
    }
    std::string const texts[] = {model.manufacturer, model.product, model.serialNumber};
    if (index > 3 || texts[index - 1].empty()) {
        return std::nullopt;
    }
    Bytes bytes{0, stringType};
    // A descriptor's length is one byte: 126 characters at most.
    for (char const character : texts[index - 1].substr(0, 126)) {
        append(bytes, {static_cast<std::uint8_t>(character), 0});
    }
    bytes[0] = static_cast<std::uint8_t>(bytes.size());
    return bytes;
}

} // namespace

std::uint16_t bulkPacketSize(Speed speed)
{
    switch (speed) {
    case Speed::Full:
        return 64;
    case Speed::High:
        return 512;
    case Speed::Super:
        break;
    }
    return 1024;
}

std::optional<Bytes> makeDescriptor(CameraModel const& model, unsigned type, unsigned index)
{
    if (type == stringType) {
        return makeString(model, index);
    }
    if (index != 0) {
        return std::nullopt;
    }
    switch (type) {
    case deviceType:
        return makeDevice(model);
    case configurationType:
        return makeConfiguration(model);
    case qualifierType:
        return model.speed == Speed::High ? std::optional<Bytes>(makeQualifier(model))
                                          : std::nullopt;
    case storeType:
        return model.usbRelease > 0x0200 ? std::optional<Bytes>(makeStore(model)) : std::nullopt;
    default:
        return std::nullopt;
    }
}

} // namespace UsbCamera
