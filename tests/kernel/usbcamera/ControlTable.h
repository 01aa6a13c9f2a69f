// SPDX-License-Identifier: MIT
#pragma once

#include "Bytes.h"
#include "CameraModel.h"

#include <vector>

namespace UsbCamera
{

constexpr std::uint8_t cameraTerminal = 1;
constexpr std::uint8_t processingUnit = 2;
constexpr std::uint8_t extensionUnit = 3;

/// Bits of a GET_INFO answer.
constexpr std::uint8_t canGet = 1;
constexpr std::uint8_t canSet = 2;
constexpr std::uint8_t changesByItself = 8;

/// One number within a control's data.
struct ControlField
{
    std::size_t size;
    bool isSigned;
    std::int64_t minimum;
    std::int64_t maximum;
    std::int64_t step;
    std::int64_t initial;
};

/// One UVC control, as the tables describe it.
struct ControlDefinition
{
    std::uint8_t unit;
    std::uint8_t selector;
    unsigned descriptorBit; ///< of bmControls in its unit's descriptor
    std::uint8_t info;
    std::vector<ControlField> fields;
};

/// Every control that a camera of this model has.
std::vector<ControlDefinition> controlTable(CameraModel const& model);

} // namespace UsbCamera
