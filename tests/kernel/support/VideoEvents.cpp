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
    : _monitor(ICameraFactory::getUniqueInstance().createContinuousCameraMonitor())
{
    if (!_monitor->startMonitoring(*this)) {
        throw std::runtime_error("the continuous monitor does not start");
    }
}

ContinuousWatch::~ContinuousWatch()
{
    _monitor->stopMonitoring();
}

VideoEvents ContinuousWatch::events() const
{
    std::lock_guard<std::mutex> const lock(_mutex);
    return _events;
}

void ContinuousWatch::cameraEventReceived(ICameraEvent* event)
{
    std::unique_ptr<ICameraEvent> const owned(event);
    std::lock_guard<std::mutex> const lock(_mutex);
    _events.push_back(recordOf(*event));
}

BlockingWatch::BlockingWatch()
    : _monitor(ICameraFactory::getUniqueInstance().createBlockingCameraMonitor())
{
    if (!_monitor->startMonitoring()) {
        throw std::runtime_error("the blocking monitor does not start");
    }
}

BlockingWatch::~BlockingWatch()
{
    _monitor->stopMonitoring();
    if (_thread.joinable()) {
        _thread.join();
    }
}

void BlockingWatch::beginToAsk()
{
    _thread = std::thread([this] { ask(); });
}

void BlockingWatch::ask()
{
    std::unique_ptr<ICameraEvent> const event(ICameraFactory::getUniqueInstance().createEvent());
    while (_monitor->getEvent(event.get())) {
        std::lock_guard<std::mutex> const lock(_mutex);
        _events.push_back(recordOf(*event));
    }
}

VideoEvents BlockingWatch::events() const
{
    std::lock_guard<std::mutex> const lock(_mutex);
    return _events;
}

UdevadmWatch::UdevadmWatch() : _command("stdbuf -oL udevadm monitor --udev")
{
    if (!waitFor([&] { return _command.output().find("UDEV - the event") != std::string::npos; })) {
        throw std::runtime_error("udevadm monitor does not start");
    }
}

VideoEvents UdevadmWatch::events() const
{
    VideoEvents events;
    for (VideoEvent const& event : allUdevEvents(_command.output())) {
        if (event.subsystem == "video4linux") {
            events.push_back(event);
        }
    }
    return events;
}

std::size_t UdevadmWatch::otherEvents() const
{
    return allUdevEvents(_command.output()).size() - events().size();
}

} // namespace KernelTest
