// SPDX-License-Identifier: MIT
#include "SerialControl.h"

namespace VirtualCamera
{

namespace
{

constexpr std::uint8_t cameraTerminal = 1;
constexpr std::uint8_t processingUnit = 2;
constexpr std::uint8_t extensionUnit = 3;
constexpr std::uint8_t readOnly = 0x01;

/// A control of the extension unit that holds several 16-bit numbers.
SerialControl fields(std::uint8_t selector, std::vector<std::int16_t> const& values,
                     std::int16_t maximum)
{
    SerialControl control;
    control.unit = extensionUnit;
    control.selector = selector;
    for (std::int16_t const value : values) {
        for (std::uint8_t const byte : littleEndian(value, 2)) {
            control.current.push_back(byte);
        }
        for (std::uint8_t const byte : littleEndian(maximum, 2)) {
            control.maximum.push_back(byte);
        }
    }
    control.minimum.assign(control.current.size(), 0);
    control.defaults = control.current;
    return control;
}

SerialControl onOff(std::uint8_t unit, std::uint8_t selector, bool on)
{
    return aSerialControl(unit, selector, 1, 0, 1, on ? 1 : 0);
}

SerialControl status(std::uint8_t selector, std::size_t length, std::int64_t value,
                     std::int64_t maximum)
{
    SerialControl control = aSerialControl(extensionUnit, selector, length, 0, maximum, value);
    control.info = readOnly;
    return control;
}

} // namespace

SerialBytes littleEndian(std::int64_t value, std::size_t length)
{
    SerialBytes bytes;
    auto rest = static_cast<std::uint64_t>(value);
    for (std::size_t place = 0; place < length; ++place, rest >>= 8) {
        bytes.push_back(static_cast<std::uint8_t>(rest & 0xff));
    }
    return bytes;
}

SerialControl aSerialControl(std::uint8_t unit, std::uint8_t selector, std::size_t length,
                             std::int64_t minimum, std::int64_t maximum, std::int64_t value)
{
    SerialControl control;
    control.unit = unit;
    control.selector = selector;
    control.current = littleEndian(value, length);
    control.minimum = littleEndian(minimum, length);
    control.maximum = littleEndian(maximum, length);
    control.defaults = control.current;
    return control;
}

std::vector<SerialControl> vendorSerialControls()
{
    return {
        aSerialControl(cameraTerminal, 2, 1, 1, 2, 2),           // auto exposure
        aSerialControl(cameraTerminal, 4, 4, 1, 10000, 333),     // exposure, 100 us
        aSerialControl(cameraTerminal, 6, 2, 0, 1023, 300),      // focus
        onOff(cameraTerminal, 8, true),                          // auto focus
        aSerialControl(processingUnit, 2, 2, -64, 64, 8),        // brightness
        aSerialControl(processingUnit, 3, 2, 0, 100, 32),        // contrast
        aSerialControl(processingUnit, 4, 2, 0, 255, 16),        // gain
        aSerialControl(processingUnit, 6, 2, -180, 180, -5),     // hue
        aSerialControl(processingUnit, 7, 2, 0, 100, 64),        // saturation
        aSerialControl(processingUnit, 8, 2, 0, 15, 3),          // sharpness
        aSerialControl(processingUnit, 9, 2, 100, 500, 220),     // gamma
        aSerialControl(processingUnit, 10, 2, 2800, 6500, 4600), // white balance temperature, K
        onOff(processingUnit, 11, true),                         // auto white balance
        onOff(processingUnit, 16, false),                        // hue: automatic mode disabled
        aSerialControl(extensionUnit, 1, 1, 0, 3, 3),            // lighting mode
        aSerialControl(extensionUnit, 2, 2, 0, 100, 50),         // lighting value, %
        status(3, 4, 0, 0x7fffffff),                             // error status
        status(4, 2, 41, 100),                                   // temperature, C
        aSerialControl(extensionUnit, 5, 4, 0, 7, 0),            // trigger of automatic modes
        onOff(extensionUnit, 6, false),                          // keep alive
        aSerialControl(extensionUnit, 7, 4, 0, 7, 0),            // lock of automatic modes
        aSerialControl(extensionUnit, 8, 1, 1, 4, 1),            // focus window selected
        fields(9, {10, 900, 5}, 1023),                           // focus range: min, max, step
        fields(10, {256, 260, 264}, 1023),                       // white balance: red, green, blue
        aSerialControl(extensionUnit, 11, 1, 0, 100, 20),        // focus sensitivity
        aSerialControl(extensionUnit, 15, 1, 0, 2, 1),           // focus strategy
        onOff(extensionUnit, 16, false),        // contrast and brightness: automatic mode disabled
        onOff(extensionUnit, 17, false),        // saturation: the same
        onOff(extensionUnit, 18, false),        // sharpness: the same
        fields(20, {100, 200, 110, 210}, 2047), // focus window: x1, x2, y1, y2
        aSerialControl(extensionUnit, 24, 1, -10, 10, -3), // exposure sensitivity
        onOff(extensionUnit, 25, false),                   // gamma: automatic mode disabled
    };
}

} // namespace VirtualCamera
