// SPDX-License-Identifier: MIT
#include "IDevice.h"

namespace ImageAcquisition
{

// Apart from Device, which the session layer has a copy of: the interface is the library's.
IDevice::~IDevice() = default;

} // namespace ImageAcquisition
