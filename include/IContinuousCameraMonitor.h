// SPDX-License-Identifier: MIT
#pragma once

#include "ICameraMonitor.h"

namespace ImageAcquisition
{

class ICameraEvent;

/**
 * @brief Reports cameras that come and go by calling the application back, on a thread of its own.
 *
 * Call stopMonitoring() before deleting a monitor that was started.
 *
 * Threads: startMonitoring() and stopMonitoring() from one thread at a time.
 */
class IMAGEACQUISITION_EXPORT IContinuousCameraMonitor : public virtual ICameraMonitor
{
public:
    /// What the application implements to be told.
    class IMAGEACQUISITION_EXPORT IClient
    {
    public:
        virtual ~IClient();

        /**
         * @brief Tells of one event.
         *
         * Called on the monitor's thread, one call at a time. An exception that leaves it ends the
         * process through std::terminate, as on any thread.
         * @param event what happened; it is new and belongs to the client, who deletes it.
         */
        virtual void cameraEventReceived(ICameraEvent* event) = 0;
    };

    ~IContinuousCameraMonitor() override;

    /// Ends monitoring and joins the thread; takes at least 60 ms. No event is delivered
    /// afterwards. False when there is no thread to join, and when it is called from within
    /// cameraEventReceived(): monitoring ends then too, but the thread is joined by a later call.
    bool stopMonitoring() override = 0;

    /// Starts monitoring.
    /// @param client is told of every event; it must live until stopMonitoring() has returned.
    /// @return false when udev could not be reached, no thread could be started, or the monitor
    /// is running already, which goes on undisturbed. Also false from a stop on, be it from within
    /// cameraEventReceived() or while that one still runs, until stopMonitoring() has joined the
    /// thread.
    virtual bool startMonitoring(IClient& client) = 0;
};

} // namespace ImageAcquisition
