// SPDX-License-Identifier: MIT
#pragma once

#include "system/VideoNode.h"

#include <linux/videodev2.h>

namespace ImageAcquisition
{

/// Asks the device which format and size are set on it now. False when it does not answer.
bool queryDeviceFormat(NodeReference node, v4l2_format& format);

/// Asks the device which frame interval is set on it now. False when it does not answer.
bool queryDeviceParameters(NodeReference node, v4l2_streamparm& parameters);

} // namespace ImageAcquisition
