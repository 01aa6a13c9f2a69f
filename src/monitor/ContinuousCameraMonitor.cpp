// SPDX-License-Identifier: MIT
#include "monitor/ContinuousCameraMonitor.h"

#include "monitor/CameraEvent.h"
#include "system/Pause.h"

#include <chrono>
#include <memory>

namespace ImageAcquisition
{

namespace
{

constexpr std::chrono::milliseconds pauseLength{10};

// The monitor whose thread this is. A thread id would not tell: it may not be stored yet when the
// first callback runs, and after a join it may be another thread's.
thread_local ContinuousCameraMonitor const* monitorOfThisThread = nullptr;

} // namespace

IContinuousCameraMonitor::~IContinuousCameraMonitor() = default;
IContinuousCameraMonitor::IClient::~IClient() = default;

ContinuousCameraMonitor::ContinuousCameraMonitor() = default;
ContinuousCameraMonitor::~ContinuousCameraMonitor() = default;

bool ContinuousCameraMonitor::startMonitoring(IContinuousCameraMonitor::IClient& client)
{
    if (m_threadState != ThreadState::Absent) {
        return false;
    }
    m_client = &client;
    m_stopRequested = false;
    if (!m_monitor.startMonitoring()) {
        return false;
    }
    // Beforehand, because the client may be called before pthread_create() returns.
    m_threadState = ThreadState::Present;
    bool const created = pthread_create(&m_thread, nullptr, listenForEvents, this) == 0;
    if (!created) {
        m_threadState = ThreadState::Absent;
    }
    return created;
}

bool ContinuousCameraMonitor::stopMonitoring()
{
    m_stopRequested = true;
    pauseFor(pauseLength);
    m_monitor.stopMonitoring();
    // The client may stop from within its callback: a thread cannot join itself.
    ThreadState present = ThreadState::Present;
    if (monitorOfThisThread == this ||
        !m_threadState.compare_exchange_strong(present, ThreadState::Joining)) {
        return false;
    }
    bool const joined = pthread_join(m_thread, nullptr) == 0;
    m_threadState = ThreadState::Absent;
    return joined;
}

void* ContinuousCameraMonitor::listenForEvents(void* monitor) noexcept
{
    monitorOfThisThread = static_cast<ContinuousCameraMonitor*>(monitor);
    static_cast<ContinuousCameraMonitor*>(monitor)->listenForEvents();
    return nullptr;
}

void ContinuousCameraMonitor::listenForEvents()
{
    while (!m_stopRequested) {
        auto event = std::make_unique<CameraEvent>();
        if (m_monitor.getEvent(event.get()) && !m_stopRequested) {
            m_client->cameraEventReceived(event.release());
        } else {
            pauseFor(pauseLength);
        }
    }
}

} // namespace ImageAcquisition
