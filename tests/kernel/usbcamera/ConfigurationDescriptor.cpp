// SPDX-License-Identifier: MIT
#include "ConfigurationDescriptor.h"

#include "ControlTable.h"
#include "Descriptors.h"
#include "VideoFormats.h"

namespace UsbCamera
{

namespace
{

constexpr std::uint8_t outputTerminal = 4;
constexpr std::uint8_t videoClass = 0x0e;
constexpr std::uint8_t bulk = 2;
constexpr std::uint8_t interrupt = 3;
constexpr std::uint8_t in = 0x80;

/// Pays for the length byte that opens every descriptor.
Bytes withLength(Bytes const& rest)
{
    Bytes bytes;
    bytes.reserve(rest.size() + 1);
    bytes.push_back(static_cast<std::uint8_t>(rest.size() + 1));
    append(bytes, rest);
    return bytes;
}

Bytes makeAssociation(std::uint8_t first, std::uint8_t count, std::uint8_t interfaceClass,
                      std::uint8_t subclass, std::uint8_t protocol)
{
    return {8, 11, first, count, interfaceClass, subclass, protocol, 0};
}

Bytes makeInterface(std::uint8_t number, std::uint8_t endpoints, std::uint8_t interfaceClass,
                    std::uint8_t subclass, std::uint8_t protocol)
{
    return {9, 4, number, 0, endpoints, interfaceClass, subclass, protocol, 0};
}

Bytes makeEndpoint(CameraModel const& model, unsigned address, std::uint8_t type)
{
    Bytes bytes{7, 5, static_cast<std::uint8_t>(address), type};
    appendLittle(bytes, type == interrupt ? 16 : bulkPacketSize(model.speed), 2);
    bytes.push_back(type == interrupt ? 8 : 0);
    if (model.speed == Speed::Super) {
        append(bytes, {6, 0x30, 0, 0});
        appendLittle(bytes, type == interrupt ? 16 : 0, 2);
    }
    return bytes;
}

std::uint64_t controlBits(CameraModel const& model, std::uint8_t unit)
{
    std::uint64_t bits = 0;
    for (ControlDefinition const& definition : controlTable(model)) {
        bits |= definition.unit == unit ? std::uint64_t{1} << definition.descriptorBit : 0;
    }
    return bits;
}

Bytes makeCameraTerminal(CameraModel const& model)
{
    Bytes bytes{0x24, 2, cameraTerminal, 0x01, 0x02, 0, 0};
    // No optical zoom: the three focal lengths are 0.
    appendLittle(bytes, 0, 6);
    bytes.push_back(3);
    appendLittle(bytes, controlBits(model, cameraTerminal), 3);
    return withLength(bytes);
}

Bytes makeProcessingUnit(CameraModel const& model)
{
    Bytes bytes{0x24, 5, processingUnit, cameraTerminal, 0, 0, 3};
    appendLittle(bytes, controlBits(model, processingUnit), 3);
    append(bytes, {0, 0});
    return withLength(bytes);
}

Bytes makeExtensionUnit(CameraModel const& model)
{
    Bytes bytes{0x24, 6, extensionUnit, 0x01};
    appendLittle(bytes, 0, 15);
    std::uint64_t const bits = controlBits(model, extensionUnit);
    bytes.push_back(static_cast<std::uint8_t>(__builtin_popcountll(bits)));
    append(bytes, {1, processingUnit, 4});
    appendLittle(bytes, bits, 4);
    bytes.push_back(0);
    return withLength(bytes);
}

Bytes makeVideoControl(CameraModel const& model)
{
    std::uint8_t const last = model.hasExtensionUnit ? extensionUnit : processingUnit;
    Bytes units = makeCameraTerminal(model);
    append(units, makeProcessingUnit(model));
    if (model.hasExtensionUnit) {
        append(units, makeExtensionUnit(model));
    }
    append(units, withLength({0x24, 3, outputTerminal, 0x01, 0x01, 0, last, 0}));

    Bytes bytes = makeInterface(videoControlInterface, 0, videoClass, 1, 0);
    append(bytes, {13, 0x24, 1, 0x10, 0x01});
    appendLittle(bytes, 13 + units.size(), 2);
    appendLittle(bytes, 48000000, 4);
    append(bytes, {1, videoStreamingInterface});
    append(bytes, units);
    return bytes;
}

Bytes makeIntervals(CameraModel const& model, VideoSize const& size)
{
    Bytes bytes{static_cast<std::uint8_t>(model.hasIntervalRanges ? 0 : size.intervals.size())};
    std::vector<std::uint32_t> const range{size.intervals.front(), size.intervals.back(), 1};
    for (std::uint32_t const number : model.hasIntervalRanges ? range : size.intervals) {
        appendLittle(bytes, number, 4);
    }
    return bytes;
}

Bytes makeSize(CameraModel const& model, VideoFormat const& format, VideoSize const& size,
               std::uint8_t index)
{
    bool const isMjpeg = format.kind == VideoFormat::Kind::Mjpeg;
    Bytes bytes{0x24, static_cast<std::uint8_t>(isMjpeg ? 7 : 5), index, 0};
    appendLittle(bytes, size.width, 2);
    appendLittle(bytes, size.height, 2);
    std::uint64_t const bitsPerFrame = std::uint64_t{8} * frameBytes(size);
    appendLittle(bytes, bitsPerFrame * 10000000 / size.intervals.back(), 4);
    appendLittle(bytes, bitsPerFrame * 10000000 / size.intervals.front(), 4);
    appendLittle(bytes, frameBytes(size), 4);
    appendLittle(bytes, size.intervals.front(), 4);
    append(bytes, makeIntervals(model, size));
    return withLength(bytes);
}

Bytes makeFormat(CameraModel const& model, VideoFormat const& format, std::uint8_t index)
{
    auto const sizes = static_cast<std::uint8_t>(format.sizes.size());
    Bytes bytes;
    if (format.kind == VideoFormat::Kind::Mjpeg) {
        bytes = withLength({0x24, 6, index, sizes, 1, 1, 0, 0, 0, 0});
    } else {
        bytes = withLength({0x24, 4, index, sizes, 'Y',  'U',  'Y',  '2', 0, 0, 0x10, 0, 0x80,
                            0,    0, 0xaa,  0,     0x38, 0x9b, 0x71, 16,  1, 0, 0,    0, 0});
    }
    std::uint8_t sizeIndex = 0;
    for (VideoSize const& size : format.sizes) {
        append(bytes, makeSize(model, format, size, ++sizeIndex));
    }
    append(bytes, {6, 0x24, 13, 1, 1, 4});
    return bytes;
}

Bytes makeVideoStreaming(CameraModel const& model)
{
    Bytes formats;
    std::uint8_t count = 0;
    for (VideoFormat const& format : videoFormats()) {
        append(formats, makeFormat(model, format, ++count));
    }
    Bytes bytes = makeInterface(videoStreamingInterface, 1, videoClass, 2, 0);
    auto const headerSize = static_cast<std::uint8_t>(13 + count);
    append(bytes, {headerSize, 0x24, 1, count});
    appendLittle(bytes, headerSize + formats.size(), 2);
    append(bytes, {in | videoEndpoint, 0, outputTerminal, 0, 0, 0, 1});
    append(bytes, Bytes(count, 0));
    append(bytes, formats);
    append(bytes, makeEndpoint(model, in | videoEndpoint, bulk));
    return bytes;
}

/// Interfaces that no driver takes, so that the serial port gets the numbers that it has on the
/// vendor's cameras.
Bytes makeFillers()
{
    Bytes bytes;
    for (std::uint8_t number = videoStreamingInterface + 1; number < serialControlInterface;
         ++number) {
        append(bytes, makeInterface(number, 0, 0xff, 0, 0));
    }
    return bytes;
}

Bytes makeSerialPort(CameraModel const& model)
{
    Bytes bytes = makeAssociation(serialControlInterface, 2, 2, 2, 0);
    append(bytes, makeInterface(serialControlInterface, 1, 2, 2, 0));
    append(bytes, {5, 0x24, 0, 0x10, 0x01});
    append(bytes, {5, 0x24, 1, 0, serialDataInterface});
    append(bytes, {4, 0x24, 2, 2});
    append(bytes, {5, 0x24, 6, serialControlInterface, serialDataInterface});
    append(bytes, makeEndpoint(model, in | serialEventEndpoint, interrupt));
    append(bytes, makeInterface(serialDataInterface, 2, 10, 0, 0));
    append(bytes, makeEndpoint(model, in | serialInEndpoint, bulk));
    append(bytes, makeEndpoint(model, serialOutEndpoint, bulk));
    return bytes;
}

} // namespace

Bytes makeConfiguration(CameraModel const& model)
{
    Bytes interfaces = makeAssociation(videoControlInterface, 2, videoClass, 3, 0);
    append(interfaces, makeVideoControl(model));
    append(interfaces, makeVideoStreaming(model));
    std::uint8_t count = 2;
    if (model.hasSerialPort) {
        append(interfaces, makeFillers());
        append(interfaces, makeSerialPort(model));
        count = serialDataInterface + 1;
    }
    Bytes bytes{9, 2};
    appendLittle(bytes, 9 + interfaces.size(), 2);
    // Bus powered, 500 mA (in units of 2 mA, or of 8 mA at super speed).
    append(bytes,
           {count, 1, 0, 0x80, static_cast<std::uint8_t>(model.speed == Speed::Super ? 62 : 250)});
    append(bytes, interfaces);
    return bytes;
}

} // namespace UsbCamera
