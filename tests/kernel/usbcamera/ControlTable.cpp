// SPDX-License-Identifier: MIT
#include "ControlTable.h"

namespace UsbCamera
{

namespace
{

constexpr std::uint8_t plain = canGet | canSet;
constexpr std::uint8_t status = canGet | changesByItself;

ControlField byte(std::int64_t minimum, std::int64_t maximum, std::int64_t initial,
                  std::int64_t step = 1)
{
    return {1, minimum < 0, minimum, maximum, step, initial};
}

ControlField word(std::int64_t minimum, std::int64_t maximum, std::int64_t initial,
                  std::int64_t step = 1)
{
    return {2, minimum < 0, minimum, maximum, step, initial};
}

ControlField longWord(std::int64_t minimum, std::int64_t maximum, std::int64_t initial,
                      std::int64_t step = 1)
{
    return {4, minimum < 0, minimum, maximum, step, initial};
}

ControlField onOff(std::int64_t initial)
{
    return byte(0, 1, initial);
}

using Table = std::vector<ControlDefinition>;

/// The controls that every model has. The step of the exposure mode is a set of bits: the modes
/// that there are.
Table commonControls(bool isVendor)
{
    ControlField const exposureMode = isVendor ? byte(1, 2, 2, 3) : byte(1, 8, 8, 9);
    return {
        {cameraTerminal, 2, 1, plain, {exposureMode}},
        {cameraTerminal, 4, 3, plain, {longWord(1, 10000, 156)}},
        {cameraTerminal, 6, 5, plain, {word(0, 1023, 200)}},
        {cameraTerminal, 8, 17, plain, {onOff(1)}},
        {processingUnit, 2, 0, plain, {word(-64, 64, 0)}},
        {processingUnit, 3, 1, plain, {word(0, 95, 32)}},
        {processingUnit, 4, 9, plain, {word(0, 255, 16)}},
        {processingUnit, 6, 2, plain, {word(-180, 180, 0)}},
        {processingUnit, 7, 3, plain, {word(0, 255, 64)}},
        {processingUnit, 8, 4, plain, {word(0, 7, 2)}},
        {processingUnit, 9, 5, plain, {word(72, 500, 100)}},
        {processingUnit, 10, 6, plain, {word(2800, 6500, 4600, 10)}},
        {processingUnit, 11, 12, plain, {onOff(1)}},
        {processingUnit, 16, 11, plain, {onOff(1)}},
    };
}

/// What a common web camera has beyond these.
Table ordinaryControls()
{
    return {
        {cameraTerminal, 3, 2, plain, {onOff(0)}},
        {cameraTerminal, 11, 9, plain, {word(100, 400, 100)}},
        {cameraTerminal,
         13,
         11,
         plain,
         {longWord(-36000, 36000, 0, 3600), longWord(-36000, 36000, 0, 3600)}},
        {cameraTerminal, 17, 18, status, {onOff(0)}},
        {processingUnit, 1, 8, plain, {word(0, 2, 1)}},
        {processingUnit, 5, 10, plain, {byte(0, 2, 1)}},
    };
}

/// The vendor's own controls; bit n - 1 of the descriptor stands for selector n.
Table extensionControls()
{
    ControlField const coordinate = word(0, 4095, 0);
    ControlField const anyWord = longWord(0, 0xffffffff, 0);
    ControlField const gain = word(0, 1023, 256);
    ControlField const angle = word(-180, 180, 0);
    Table table{
        {extensionUnit, 1, 0, plain, {byte(0, 3, 0)}},
        {extensionUnit, 2, 0, plain, {word(0, 1000, 500)}},
        {extensionUnit, 3, 0, status, {anyWord}},
        {extensionUnit, 4, 0, status, {word(-40, 125, 35)}},
        {extensionUnit, 5, 0, plain, {anyWord}},
        {extensionUnit, 6, 0, plain, {onOff(0)}},
        {extensionUnit, 7, 0, plain, {anyWord}},
        {extensionUnit, 8, 0, plain, {byte(0, 3, 1)}},
        {extensionUnit, 9, 0, plain, {word(0, 1023, 0), word(0, 1023, 1023), word(0, 1023, 1)}},
        {extensionUnit, 10, 0, plain, {gain, gain, gain}},
        {extensionUnit, 11, 0, plain, {byte(0, 100, 50)}},
        {extensionUnit, 12, 0, plain, {byte(0, 4, 0)}},
        {extensionUnit, 13, 0, plain, {byte(0, 2, 0)}},
        {extensionUnit, 14, 0, plain, {angle, angle}},
        {extensionUnit, 15, 0, plain, {byte(0, 2, 0)}},
        {extensionUnit, 16, 0, plain, {onOff(0)}},
        {extensionUnit, 17, 0, plain, {onOff(0)}},
        {extensionUnit, 18, 0, plain, {onOff(0)}},
        {extensionUnit, 20, 0, plain, {coordinate, coordinate, coordinate, coordinate}},
        {extensionUnit, 24, 0, plain, {byte(-100, 100, 0)}},
        {extensionUnit, 25, 0, plain, {onOff(0)}},
    };
    for (ControlDefinition& definition : table) {
        definition.descriptorBit = definition.selector - 1U;
    }
    return table;
}

} // namespace

std::vector<ControlDefinition> controlTable(CameraModel const& model)
{
    bool const isVendor = model.kind != "ordinary";
    Table table = commonControls(isVendor);
    Table const more = isVendor ? Table{} : ordinaryControls();
    table.insert(table.end(), more.begin(), more.end());
    if (model.hasExtensionUnit) {
        Table const extension = extensionControls();
        table.insert(table.end(), extension.begin(), extension.end());
    }
    return table;
}

} // namespace UsbCamera
