// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

/// Numbers of frames, from all over their range.
constexpr std::uint32_t someNumbers[] = {0,   1,    2,     9,         10,        99,
                                         255, 1000, 65535, 123456789, 0xffffffff};
