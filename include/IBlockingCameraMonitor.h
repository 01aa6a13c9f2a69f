// SPDX-License-Identifier: MIT
#pragma once

#include "ICameraMonitor.h"

namespace ImageAcquisition
{

class ICameraEvent;

/**
 * @brief Reports cameras that come and go to a thread that waits for them.
 *
 * Call stopMonitoring() before deleting a monitor that was started.
 *
 * Threads: one thread calls getEvent(); stopMonitoring() may be called from another one.
 */
class IMAGEACQUISITION_EXPORT IBlockingCameraMonitor : public virtual ICameraMonitor
{
public:
    ~IBlockingCameraMonitor() override;

    /// Ends monitoring and any getEvent() that waits; takes at least 50 ms. Always true, also when
    /// the monitor was not running.
    bool stopMonitoring() override = 0;

    /// Starts monitoring; a monitor that is running is started anew. False when udev could not be
    /// reached; call stopMonitoring() then too.
    virtual bool startMonitoring() = 0;

    /**
     * @brief Waits, without limit, for the next event.
     * @param event receives it; made by ICameraFactory::createEvent(). What udev does not report
     * keeps its earlier value.
     * @return true when @p event was filled. False when it is null or not the factory's, the
     * monitor is not running, monitoring was stopped, or a signal interrupted the wait.
     */
    virtual bool getEvent(ICameraEvent* event) const = 0;
};

} // namespace ImageAcquisition
