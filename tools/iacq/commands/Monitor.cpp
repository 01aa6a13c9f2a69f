// SPDX-License-Identifier: MIT
#include "../Failure.h"
#include "../Output.h"
#include "../TerminalText.h"
#include "Commands.h"

#include <ICameraEvent.h>
#include <ICameraFactory.h>
#include <IContinuousCameraMonitor.h>

#include <nlohmann/json.hpp>

#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <ctime>
#include <memory>

namespace Iacq
{

namespace
{

using namespace ImageAcquisition;

/// Now, in local time with milliseconds and the offset from UTC.
std::string timeText()
{
    timeval now{};
    gettimeofday(&now, nullptr);
    tm local{};
    localtime_r(&now.tv_sec, &local);
    char seconds[32];
    char offset[16];
    std::strftime(seconds, sizeof seconds, "%Y-%m-%dT%H:%M:%S", &local);
    std::strftime(offset, sizeof offset, "%z", &local);
    char text[64];
    std::snprintf(text, sizeof text, "%s.%03d%s", seconds, static_cast<int>(now.tv_usec / 1000),
                  offset);
    return text;
}

char const* actionName(int type)
{
    static constexpr char const* names[] = {"other", "add", "remove", "change", "move"};
    return type >= 0 && type <= 4 ? names[type] : names[0];
}

std::string eventLine(ICameraEvent const& event, bool json)
{
    if (!json) {
        return timeText() + " " + actionName(event.type()) + " " +
               printable(event.deviceSystemName()) + " " + printable(event.subSystemName()) + "\n";
    }
    nlohmann::ordered_json const object = {{"time", timeText()},
                                           {"action", actionName(event.type())},
                                           {"type", event.type()},
                                           {"node", event.deviceSystemName()},
                                           {"subsystem", event.subSystemName()}};
    return jsonText(object) + "\n";
}

/// Prints events, and tells the main thread by a signal when it has seen enough.
class Printer : public IContinuousCameraMonitor::IClient
{
public:
    explicit Printer(MonitorOptions const& options) : m_options(options) {}

    void cameraEventReceived(ICameraEvent* received) override
    {
        std::unique_ptr<ICameraEvent> const event(received);
        if (m_failed || (m_options.count > 0 && m_printed == m_options.count)) {
            return;
        }
        try {
            print(eventLine(*event, m_options.json));
            ++m_printed;
        } catch (Failure const&) {
            m_failed = true;
        }
        if (m_failed || m_printed == m_options.count) {
            ::kill(::getpid(), SIGUSR1);
        }
    }

    bool failed() const { return m_failed; }

private:
    MonitorOptions const& m_options;
    std::atomic<int> m_printed{0};
    std::atomic<bool> m_failed{false};
};

/// The signals that end the tool, blocked in every thread so that one wait can take them.
sigset_t blockedSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    for (int const number : {SIGINT, SIGTERM, SIGHUP, SIGUSR1}) {
        sigaddset(&signals, number);
    }
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    return signals;
}

void waitForSignal(sigset_t const& signals, double seconds)
{
    using Clock = std::chrono::steady_clock;
    auto const end = Clock::now() + std::chrono::duration_cast<Clock::duration>(
                                        std::chrono::duration<double>(seconds));
    for (;;) {
        if (seconds <= 0) {
            if (sigwaitinfo(&signals, nullptr) != -1 || errno != EINTR) {
                return;
            }
            continue;
        }
        auto const left =
            std::chrono::duration_cast<std::chrono::nanoseconds>(end - Clock::now()).count();
        timespec const timeout{static_cast<time_t>(std::max<long long>(left, 0) / 1000000000),
                               static_cast<long>(std::max<long long>(left, 0) % 1000000000)};
        if (sigtimedwait(&signals, nullptr, &timeout) != -1 || errno != EINTR) {
            return;
        }
    }
}

} // namespace

void monitor(MonitorOptions const& options)
{
    sigset_t const signals = blockedSignals();
    Printer printer(options);
    std::unique_ptr<IContinuousCameraMonitor> const monitor(
        ICameraFactory::getUniqueInstance().createContinuousCameraMonitor());
    bool const started = monitor->startMonitoring(printer);
    if (started) {
        waitForSignal(signals, options.timeout);
    }
    monitor->stopMonitoring();
    if (!started) {
        throw Failure(CameraFailed, "udev does not tell about devices");
    }
    if (printer.failed()) {
        throw Failure(CameraFailed, "cannot write standard output");
    }
}

} // namespace Iacq
