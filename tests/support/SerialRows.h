// SPDX-License-Identifier: MIT
#pragma once

#include "ICamera.h"

#include <array>

/// One control of the serial-link camera, written down apart from the library.
struct SerialRow
{
    using Getter = ImageAcquisition::ICameraControl* (ImageAcquisition::ICamera::*)() const;

    char const* name;
    int selector;
    int unit;
    int type;
    int family;
    int offset; ///< -1 when it is no field of a larger control.
    int length;
    Getter getter;   ///< Null when there is none.
    bool vendorOnly; ///< Whether the getter knows the vendor's cameras only.
};

using SerialRows = std::array<SerialRow, 39>;

/// All of them in their order.
SerialRows const& serialRows();
