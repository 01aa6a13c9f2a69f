// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace VirtualCamera
{

/// The class of a control id, as `ctrl_class` of an extended transfer names it.
inline std::uint32_t controlClassOf(std::uint32_t controlId)
{
    return controlId & 0x0fff0000u;
}

/// The id of the heading under which a control is listed.
inline std::uint32_t classHeadingId(std::uint32_t controlId)
{
    return controlClassOf(controlId) | 1u;
}

/// "User Controls", "Camera Controls", ... as the kernel prints them.
char const* controlClassName(std::uint32_t controlId);

} // namespace VirtualCamera
