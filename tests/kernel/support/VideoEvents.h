// SPDX-License-Identifier: MIT
#pragma once

#include "BackgroundCommand.h"

#include <IBlockingCameraMonitor.h>
#include <IContinuousCameraMonitor.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace KernelTest
{

struct VideoEvent
{
    std::string action; ///< "add", "remove", "change", "move" or "other"
    std::string node;
    std::string subsystem;
    double seconds = 0; ///< when it was seen, on the monotonic clock

    bool isSameAs(VideoEvent const& other) const
    {
        return action == other.action && node == other.node;
    }
};

using VideoEvents = std::vector<VideoEvent>;

/// Collects what the continuous monitor reports.
class ContinuousWatch : public ImageAcquisition::IContinuousCameraMonitor::IClient
{
public:
    ContinuousWatch();
    ~ContinuousWatch() override;
    VideoEvents events() const;
    void cameraEventReceived(ImageAcquisition::ICameraEvent* event) override;

private:
    mutable std::mutex m_mutex;
    VideoEvents m_events;
    std::unique_ptr<ImageAcquisition::IContinuousCameraMonitor> m_monitor;
};

/// Collects what the blocking monitor reports. Monitoring begins at once, asking for events only
/// when it is told to.
class BlockingWatch
{
public:
    BlockingWatch();
    ~BlockingWatch();
    BlockingWatch(BlockingWatch const&) = delete;
    BlockingWatch& operator=(BlockingWatch const&) = delete;

    void beginToAsk();
    VideoEvents events() const;

private:
    void ask();

    mutable std::mutex m_mutex;
    VideoEvents m_events;
    std::unique_ptr<ImageAcquisition::IBlockingCameraMonitor> m_monitor;
    std::thread m_thread;
};

/// What `udevadm monitor --udev` reports meanwhile.
class UdevadmWatch
{
public:
    UdevadmWatch();

    /// Those of the subsystem video4linux.
    VideoEvents events() const;
    /// How many there were of other subsystems.
    std::size_t otherEvents() const;

private:
    BackgroundCommand m_command;
};

} // namespace KernelTest
