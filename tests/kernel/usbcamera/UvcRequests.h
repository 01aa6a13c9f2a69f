// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

namespace UsbCamera
{

/// Request codes of the USB Video Class.
constexpr std::uint8_t setCur = 0x01;
constexpr std::uint8_t getCur = 0x81;
constexpr std::uint8_t getMin = 0x82;
constexpr std::uint8_t getMax = 0x83;
constexpr std::uint8_t getRes = 0x84;
constexpr std::uint8_t getLen = 0x85;
constexpr std::uint8_t getInfo = 0x86;
constexpr std::uint8_t getDef = 0x87;

/// What a video function answers when it is asked why it stalled.
enum class UvcError : std::uint8_t {
    None = 0,
    NotReady = 1,
    WrongState = 2,
    OutOfRange = 4,
    InvalidUnit = 5,
    InvalidControl = 6,
    InvalidRequest = 7,
};

/// "SET_CUR" for 1, and so on; two hexadecimal digits for a code that UVC doesn't know.
std::string requestName(std::uint8_t code);

/// The reverse; throws std::invalid_argument.
std::uint8_t requestCode(std::string const& name);

} // namespace UsbCamera
