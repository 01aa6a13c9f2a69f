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
    void whenCalled(std::function<void()> action) { _action = std::move(action); }

    void cameraEventReceived(ImageAcquisition::ICameraEvent* event) override
    {
        if (_action) {
            _action();
        }
        std::lock_guard<std::mutex> const lock(_mutex);
        _received.push_back({event->type(), event->deviceSystemName(), event->subSystemName(),
                             std::this_thread::get_id()});
        _events.emplace_back(event);
        _changed.notify_all();
    }

    /// Returns once so many events have come; false when they do not within 5 seconds.
    bool awaitEvents(int wanted)
    {
        std::unique_lock<std::mutex> lock(_mutex);
        auto const end = std::chrono::system_clock::now() + std::chrono::seconds(5);
        return _changed.wait_until(
            lock, end, [this, wanted] { return static_cast<int>(_received.size()) >= wanted; });
    }

    int count() const
    {
        std::lock_guard<std::mutex> const lock(_mutex);
        return static_cast<int>(_received.size());
    }

    Received received(int number) const
    {
        std::lock_guard<std::mutex> const lock(_mutex);
        return _received.at(static_cast<std::size_t>(number));
    }

    std::vector<std::unique_ptr<ImageAcquisition::ICameraEvent>> takeEvents()
    {
        std::lock_guard<std::mutex> const lock(_mutex);
        return std::move(_events);
    }

private:
    std::function<void()> _action;
    mutable std::mutex _mutex;
    std::condition_variable _changed;
    std::vector<Received> _received;
    std::vector<std::unique_ptr<ImageAcquisition::ICameraEvent>> _events;
};
