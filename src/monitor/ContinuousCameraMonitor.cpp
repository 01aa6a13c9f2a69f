// SPDX-License-Identifier: MIT
#include "monitor/ContinuousCameraMonitor.h"

#include "monitor/CameraEvent.h"

#include <unistd.h>

#include <memory>

namespace ImageAcquisition
{

namespace
{

constexpr useconds_t pauseMicroseconds = 10000;

} // namespace

IContinuousCameraMonitor::~IContinuousCameraMonitor() = default;
IContinuousCameraMonitor::IClient::~IClient() = default;

ContinuousCameraMonitor::ContinuousCameraMonitor() = default;
ContinuousCameraMonitor::~ContinuousCameraMonitor() = default;

bool ContinuousCameraMonitor::startMonitoring(IContinuousCameraMonitor::IClient& client)
{
    if (m_hasThread) {
        return false;
    }
    m_client = &client;
    m_stopRequested = false;
    if (!m_monitor.startMonitoring()) {
        return false;
    }
    m_hasThread = pthread_create(&m_thread, nullptr, listenForEvents, this) == 0;
    return m_hasThread;
}

bool ContinuousCameraMonitor::stopMonitoring()
{
    m_stopRequested = true;
    usleep(pauseMicroseconds);
    m_monitor.stopMonitoring();
    // The client may stop from within its callback: a thread cannot join itself.
    if (!m_hasThread || pthread_equal(m_thread, pthread_self()) != 0) {
        return false;
    }
    m_hasThread = false;
    return pthread_join(m_thread, nullptr) == 0;
}

void* ContinuousCameraMonitor::listenForEvents(void* monitor) noexcept
{
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
            usleep(pauseMicroseconds);
        }
    }
}

} // namespace ImageAcquisition
