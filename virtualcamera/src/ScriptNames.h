// SPDX-License-Identifier: MIT
#pragma once

#include "CameraScript.h"

#include <string>
#include <utility>
#include <vector>

namespace VirtualCamera
{

/// The words that a configuration uses for a kernel's numbers.
using NameTable = std::vector<std::pair<char const*, std::uint32_t>>;

NameTable const& capabilityNames();
NameTable const& formatFlagNames();
NameTable const& controlTypeNames();
NameTable const& controlFlagNames();
NameTable const& paceNames();
NameTable const& rangeKindNames();

/// Throw `std::invalid_argument` for a name that is none.
std::uint32_t numberOf(NameTable const& table, std::string const& name);
std::string nameOf(NameTable const& table, std::uint32_t number);
int errorByName(std::string const& name);
std::string errorName(int error);
std::vector<std::uint8_t> bytesByHex(std::string const& digits);
std::string hexOf(std::vector<std::uint8_t> const& bytes);
Interval intervalByText(std::string const& text);
std::uint32_t versionByText(std::string const& text);

} // namespace VirtualCamera
