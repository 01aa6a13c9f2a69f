// SPDX-License-Identifier: MIT
#include "../Output.h"
#include "../TerminalText.h"
#include "Commands.h"

#include <session/Error.h>
#include <session/Events.h>

#include <nlohmann/json.hpp>

#include <poll.h>
#include <sys/signalfd.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <ctime>
#include <optional>

namespace Iacq
{

namespace
{

using namespace ImageAcquisition::Session;
using Clock = std::chrono::steady_clock;

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

struct ActionWord
{
    char const* word; ///< As udev calls it.
    int type;         ///< As ICameraEvent numbers it.
};

ActionWord wordOf(Event::Action action)
{
    switch (action) {
    case Event::Action::Added:
        return {"add", 1};
    case Event::Action::Removed:
        return {"remove", 2};
    case Event::Action::Changed:
        return {"change", 3};
    case Event::Action::Moved:
        return {"move", 4};
    default:
        return {"other", 0};
    }
}

std::string eventLine(Event const& event, bool json)
{
    constexpr char subsystem[] = "video4linux";
    auto const [word, type] = wordOf(event.action);
    if (!json) {
        return timeText() + " " + word + " " + printable(event.camera.node()) + " " + subsystem +
               "\n";
    }
    nlohmann::ordered_json const object = {{"time", timeText()},
                                           {"action", word},
                                           {"type", type},
                                           {"node", event.camera.node()},
                                           {"subsystem", subsystem}};
    return jsonText(object) + "\n";
}

/// The signals that end the tool, as a descriptor to wait for. They stay blocked.
class EndingSignals
{
public:
    EndingSignals()
    {
        sigset_t signals;
        sigemptyset(&signals);
        for (int const number : {SIGINT, SIGTERM, SIGHUP}) {
            sigaddset(&signals, number);
        }
        pthread_sigmask(SIG_BLOCK, &signals, nullptr);
        m_descriptor = ::signalfd(-1, &signals, SFD_CLOEXEC);
    }
    EndingSignals(EndingSignals const&) = delete;
    EndingSignals& operator=(EndingSignals const&) = delete;
    ~EndingSignals() { ::close(m_descriptor); }

    int descriptor() const { return m_descriptor; }

private:
    int m_descriptor;
};

/// Waits for an event; false when a signal came or the time was over.
bool waitForEvent(Events const& events, EndingSignals const& signals,
                  std::optional<Clock::time_point> end)
{
    constexpr long long mostMilliseconds = 1 << 30;
    for (;;) {
        pollfd entries[] = {{events.descriptor(), POLLIN, 0}, {signals.descriptor(), POLLIN, 0}};
        long long const left =
            end ? std::chrono::ceil<std::chrono::milliseconds>(*end - Clock::now()).count() : -1;
        int const ready = ::poll(
            entries, 2, end ? static_cast<int>(std::clamp(left, 0LL, mostMilliseconds)) : -1);
        if (ready > 0) {
            return entries[1].revents == 0;
        }
        if ((ready == -1 && errno != EINTR) || (end && Clock::now() >= *end)) {
            return false;
        }
    }
}

} // namespace

void monitor(MonitorOptions const& options)
{
    EndingSignals const signals;
    Events events;
    std::optional<Clock::time_point> end;
    if (options.timeout > 0) {
        end = Clock::now() + std::chrono::duration_cast<Clock::duration>(
                                 std::chrono::duration<double>(options.timeout));
    }
    for (int printed = 0; options.count == 0 || printed < options.count;) {
        if (!waitForEvent(events, signals, end)) {
            return;
        }
        if (auto const event = events.next(std::chrono::milliseconds(0))) {
            print(eventLine(*event, options.json));
            ++printed;
        }
    }
}

} // namespace Iacq
