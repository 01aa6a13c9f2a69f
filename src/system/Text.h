// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace ImageAcquisition
{

/// Null, which udev gives for what it does not know, keeps the field's value.
inline void assignUnlessNull(std::string& field, char const* text)
{
    if (text != nullptr) {
        field = text;
    }
}

} // namespace ImageAcquisition
