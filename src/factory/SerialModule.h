// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

namespace ImageAcquisition
{

class Camera;
class IDevice;

/// A camera with controls over its serial port. That class stands in a module, since it needs Qt
/// and most programs never open such a camera: the shared library loads it here, the static library
/// has it built in. Null, and a line on standard error, when it cannot be loaded.
std::unique_ptr<Camera> makeSerialCamera(IDevice const* device);

} // namespace ImageAcquisition
