// SPDX-License-Identifier: MIT
#pragma once

#include "Bytes.h"
#include "EmulatedCameras.h"
#include "ExtensionUnitTable.h"
#include "LibraryCamera.h"

namespace KernelTest
{

/// The control of a row; throws std::runtime_error when the camera has none of that name.
ImageAcquisition::ICameraControl& controlOf(ImageAcquisition::ICamera const& camera,
                                            std::string const& name);

/// The camera's bytes of a control.
Bytes cameraBytes(EmulatedCameras const& cameras, unsigned unit, unsigned selector);

/// The same with a number laid over some of them, lowest byte first.
Bytes withNumber(Bytes bytes, unsigned offset, unsigned size, long long number);

/// Number of the control, its switch as 0 or 1, or the value of its menu item.
long long valueOf(ImageAcquisition::ICameraControl const& control, ExpectedMapping const& row);

/// Selects a value, of a menu the item with it.
bool setValue(ImageAcquisition::ICameraControl& control, ExpectedMapping const& row,
              long long value);

/// A value within the control's range, or of one of its items, that it does not have now.
long long otherValue(ImageAcquisition::ICameraControl const& control, ExpectedMapping const& row);

} // namespace KernelTest
