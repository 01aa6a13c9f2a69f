// SPDX-License-Identifier: MIT
#pragma once

#include <linux/videodev2.h>

namespace ImageAcquisition
{

/// Asks the device which format and size are set on it now. False when it does not answer.
bool queryDeviceFormat(int fd, v4l2_format& format);

/// Asks the device which frame interval is set on it now. False when it does not answer.
bool queryDeviceParameters(int fd, v4l2_streamparm& parameters);

} // namespace ImageAcquisition
