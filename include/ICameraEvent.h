// SPDX-License-Identifier: MIT
#pragma once

#include "Export.h"

namespace ImageAcquisition
{

/**
 * @brief What happened to a video device.
 *
 * Texts are zero-terminated, never null, and stay good until the event is filled again or deleted.
 * Threads: an event belongs to whoever holds it; it is not shared.
 */
class IMAGEACQUISITION_EXPORT ICameraEvent
{
public:
    virtual ~ICameraEvent();

    /// 1 added, 2 removed, 3 changed, 4 moved, 0 anything else.
    virtual int type() const = 0;

    /// Path of the device node, such as /dev/video0.
    virtual char const* deviceSystemName() const = 0;

    /// The udev subsystem: "video4linux".
    virtual char const* subSystemName() const = 0;
};

} // namespace ImageAcquisition
