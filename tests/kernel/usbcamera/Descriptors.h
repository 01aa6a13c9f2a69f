// SPDX-License-Identifier: MIT
#pragma once

#include "Bytes.h"
#include "CameraModel.h"

#include <optional>

namespace UsbCamera
{

// Endpoint numbers, without their direction.
constexpr unsigned videoEndpoint = 2;
constexpr unsigned serialEventEndpoint = 3;
constexpr unsigned serialInEndpoint = 4;
constexpr unsigned serialOutEndpoint = 5;

constexpr std::uint8_t videoControlInterface = 0;
constexpr std::uint8_t videoStreamingInterface = 1;
constexpr std::uint8_t serialControlInterface = 5;
constexpr std::uint8_t serialDataInterface = 6;

/// Bytes in the largest packet of a bulk endpoint.
std::uint16_t bulkPacketSize(Speed speed);

/// Answers GET_DESCRIPTOR: the descriptor of a type and index; nothing when there is none.
std::optional<Bytes> makeDescriptor(CameraModel const& model, unsigned type, unsigned index);

} // namespace UsbCamera
