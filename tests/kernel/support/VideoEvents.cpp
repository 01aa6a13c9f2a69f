// SPDX-License-Identifier: MIT
#include "VideoEvents.h"

#include "LibraryCamera.h"
#include "Shell.h"

#include <ICameraEvent.h>
#include <ICameraFactory.h>

#include <regex>
#include <stdexcept>

using namespace ImageAcquisition;

namespace KernelTest
{

namespace
{

VideoEvent recordOf(ICameraEvent const& event)
{
    static char const* const actions[] = {"other", "add", "remove", "change", "move"};
    return {actions[event.type()], event.deviceSystemName(), event.subSystemName(),
            monotonicSeconds()};
}

VideoEvents allUdevEvents(std::string const& text)
{
    static std::regex const line("UDEV +\\[([0-9.]+)\\] (\\w+) +\\S*/([^/ ]+) \\((\\S+)\\)");
    VideoEvents events;
    std::smatch match;
    for (std::string const& one : splitLines(text)) {
        if (std::regex_match(one, match, line)) {
            events.push_back({match[2], "/dev/" + match[3].str(), match[4], std::stod(match[1])});
        }
    }
    return events;
}

} // namespace

ContinuousWatch::ContinuousWatch()
    : m_monitor(ICameraFactory::getUniqueInstance().createContinuousCameraMonitor())
{
    if (!m_monitor->startMonitoring(*this)) {
        throw std::runtime_error("the continuous monitor does not start");
    }
}

ContinuousWatch::~ContinuousWatch()
{
    m_monitor->stopMonitoring();
}

VideoEvents ContinuousWatch::events() const
{
    std::lock_guard<std::mutex> const lock(m_mutex);
    return m_events;
}

void ContinuousWatch::cameraEventReceived(ICameraEvent* event)
{
    std::unique_ptr<ICameraEvent> const owned(event);
    std::lock_guard<std::mutex> const lock(m_mutex);
    m_events.push_back(recordOf(*event));
}

BlockingWatch::BlockingWatch()
    : m_monitor(ICameraFactory::getUniqueInstance().createBlockingCameraMonitor())
{
    if (!m_monitor->startMonitoring()) {
        throw std::runtime_error("the blocking monitor does not start");
    }
}

BlockingWatch::~BlockingWatch()
{
    m_monitor->stopMonitoring();
    if (m_thread.joinable()) {
        m_thread.join();
    }
}

void BlockingWatch::beginToAsk()
{
    m_thread = std::thread([this] { ask(); });
}

void BlockingWatch::ask()
{
    std::unique_ptr<ICameraEvent> const event(ICameraFactory::getUniqueInstance().createEvent());
    while (m_monitor->getEvent(event.get())) {
        std::lock_guard<std::mutex> const lock(m_mutex);
        m_events.push_back(recordOf(*event));
    }
}

VideoEvents BlockingWatch::events() const
{
    std::lock_guard<std::mutex> const lock(m_mutex);
    return m_events;
}

UdevadmWatch::UdevadmWatch() : m_command("stdbuf -oL udevadm monitor --udev")
{
    if (!waitFor(
            [&] { return m_command.output().find("UDEV - the event") != std::string::npos; })) {
        throw std::runtime_error("udevadm monitor does not start");
    }
}

VideoEvents UdevadmWatch::events() const
{
    VideoEvents events;
    for (VideoEvent const& event : allUdevEvents(m_command.output())) {
        if (event.subsystem == "video4linux") {
            events.push_back(event);
        }
    }
    return events;
}

std::size_t UdevadmWatch::otherEvents() const
{
    return allUdevEvents(m_command.output()).size() - events().size();
}

} // namespace KernelTest
