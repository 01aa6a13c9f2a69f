// SPDX-License-Identifier: MIT
#pragma once

#include "ICameraEvent.h"
#include "IContinuousCameraMonitor.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

/// Keeps the events that a continuous monitor delivers.
class RecordingClient : public ImageAcquisition::IContinuousCameraMonitor::IClient
{
public:
    struct Received
    {
        int type;
        std::string node;
        std::string subsystem;
        std::thread::id thread;
    };

    /// Done within each callback, before the event counts as received.
    void whenCalled(std::function<void()> action) { m_action = std::move(action); }

    void cameraEventReceived(ImageAcquisition::ICameraEvent* event) override
    {
        if (m_action) {
            m_action();
        }
        std::lock_guard<std::mutex> const lock(m_mutex);
        m_received.push_back({event->type(), event->deviceSystemName(), event->subSystemName(),
                              std::this_thread::get_id()});
        m_events.emplace_back(event);
        m_changed.notify_all();
    }

    /// Returns once so many events have come; false when they do not within 5 seconds.
    bool awaitEvents(int wanted)
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        auto const end = std::chrono::system_clock::now() + std::chrono::seconds(5);
        return m_changed.wait_until(
            lock, end, [this, wanted] { return static_cast<int>(m_received.size()) >= wanted; });
    }

    int count() const
    {
        std::lock_guard<std::mutex> const lock(m_mutex);
        return static_cast<int>(m_received.size());
    }

    Received received(int number) const
    {
        std::lock_guard<std::mutex> const lock(m_mutex);
        return m_received.at(static_cast<std::size_t>(number));
    }

    std::vector<std::unique_ptr<ImageAcquisition::ICameraEvent>> takeEvents()
    {
        std::lock_guard<std::mutex> const lock(m_mutex);
        return std::move(m_events);
    }

private:
    std::function<void()> m_action;
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<Received> m_received;
    std::vector<std::unique_ptr<ImageAcquisition::ICameraEvent>> m_events;
};
