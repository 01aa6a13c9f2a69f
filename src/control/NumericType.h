// SPDX-License-Identifier: MIT
#pragma once

#include "ICameraControl.h"

namespace ImageAcquisition
{

/// The type that a control with values of the C++ type T reports.
template <typename T>
constexpr ICameraControl::Type numericType = ICameraControl::Invalid;
template <>
inline constexpr ICameraControl::Type numericType<int> = ICameraControl::Int32;
template <>
inline constexpr ICameraControl::Type numericType<long long> = ICameraControl::Int64;
template <>
inline constexpr ICameraControl::Type numericType<unsigned char> = ICameraControl::UInt8;
template <>
inline constexpr ICameraControl::Type numericType<unsigned short> = ICameraControl::UInt16;
template <>
inline constexpr ICameraControl::Type numericType<unsigned int> = ICameraControl::UInt32;

} // namespace ImageAcquisition
