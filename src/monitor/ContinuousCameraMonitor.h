// SPDX-License-Identifier: MIT
#pragma once

#include "IContinuousCameraMonitor.h"
#include "monitor/BlockingCameraMonitor.h"

#include <pthread.h>

#include <atomic>

namespace ImageAcquisition
{

/// Runs a blocking monitor on a thread of its own and hands its events to a client.
class ContinuousCameraMonitor : public virtual IContinuousCameraMonitor
{
public:
    ContinuousCameraMonitor();
    ContinuousCameraMonitor(ContinuousCameraMonitor const&) = delete;
    ContinuousCameraMonitor& operator=(ContinuousCameraMonitor const&) = delete;
    /// Neither stops nor joins: stopMonitoring() must have run.
    ~ContinuousCameraMonitor() override;

    bool stopMonitoring() override;
    bool startMonitoring(IContinuousCameraMonitor::IClient& client) override;

    /// The monitor's thread.
    void listenForEvents();

private:
    // What the client throws must end the process here rather than unwind into C.
    static void* listenForEvents(void* monitor) noexcept;

    /// What becomes of the thread. It is only absent once it has been joined: a start before would
    /// take the stop back that the join waits for.
    enum class ThreadState { Absent, Present, Joining };

    pthread_t m_thread{};
    // Atomic, because the client may start or stop from within its callback.
    std::atomic<ThreadState> m_threadState{ThreadState::Absent};
    std::atomic<bool> m_stopRequested{false};
    BlockingCameraMonitor m_monitor;
    IContinuousCameraMonitor::IClient* m_client = nullptr;
};

} // namespace ImageAcquisition
