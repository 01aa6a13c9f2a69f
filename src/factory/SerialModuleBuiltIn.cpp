// SPDX-License-Identifier: MIT
// For the static library.
#include "factory/SerialModule.h"

#include "serial/ZorvaneCamera.h"

namespace ImageAcquisition
{

std::unique_ptr<Camera> makeSerialCamera(IDevice const* device)
{
    return std::make_unique<ZorvaneCamera>(device);
}

} // namespace ImageAcquisition
