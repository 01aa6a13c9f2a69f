// SPDX-License-Identifier: MIT
#pragma once

#include "Export.h"

namespace ImageAcquisition
{

/// What both kinds of hot-plug monitor have in common.
class IMAGEACQUISITION_EXPORT ICameraMonitor
{
public:
    virtual ~ICameraMonitor();

    /// Ends monitoring. See the derived interfaces for the results and the threads.
    virtual bool stopMonitoring() = 0;
};

} // namespace ImageAcquisition
