// SPDX-License-Identifier: MIT
#pragma once

#include "ExtensionUnitTable.h"
#include "VirtualCamera.h"

#include <algorithm>
#include <map>

/// A virtual camera whose extension unit has every selector of the table, and no other control.
inline VirtualCamera::CameraBuilder aVendorCamera()
{
    std::map<unsigned int, unsigned int> bytes;
    for (ExpectedMapping const& row : expectedMappings()) {
        bytes[row.selector] = std::max(bytes[row.selector], (row.offset + row.size) / 8);
    }
    std::vector<VirtualCamera::SelectorScript> selectors;
    for (auto const& [number, size] : bytes) {
        VirtualCamera::SelectorScript selector;
        selector.selector = static_cast<std::uint8_t>(number);
        selector.size = static_cast<std::uint16_t>(size);
        selectors.push_back(selector);
    }
    VirtualCamera::Guid guid{};
    guid[0] = 1;
    return VirtualCamera::aCamera().withExtensionUnit(guid, selectors);
}
