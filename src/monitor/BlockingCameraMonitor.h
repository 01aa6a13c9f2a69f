// SPDX-License-Identifier: MIT
#pragma once

#include "IBlockingCameraMonitor.h"
#include "monitor/SelfPipe.h"
#include "system/UdevHandles.h"

#include <atomic>

namespace ImageAcquisition
{

class CameraEvent;

/// Waits for udev's events of video devices.
class BlockingCameraMonitor : public virtual IBlockingCameraMonitor
{
public:
    BlockingCameraMonitor();
    BlockingCameraMonitor(BlockingCameraMonitor const&) = delete;
    BlockingCameraMonitor& operator=(BlockingCameraMonitor const&) = delete;
    /// Releases the udev context only: stopMonitoring() must have run.
    ~BlockingCameraMonitor() override;

    bool stopMonitoring() override;
    bool startMonitoring() override;
    bool getEvent(ICameraEvent* event) const override;

    bool openSelfPipe();
    void closeSelfPipe();

private:
    bool startUdevMonitor();
    void releaseUdevMonitor();
    bool waitForDevice() const;

    // Everything that the waiting and the stopping thread share is a lock-free atomic. A waiter
    // announces itself before it looks whether monitoring goes on; whoever ends it says so before
    // it looks for waiters. One of the two sees the other, so nothing is released under a waiter.
    std::atomic<int> m_monitorFd{-1};
    UdevContext m_udev;
    std::atomic<udev_monitor*> m_monitor{nullptr}; // Owned.
    SelfPipe m_wakeUp;
    std::atomic<bool> m_monitoring{false};
    mutable std::atomic<int> m_waiters{0};
};

} // namespace ImageAcquisition
