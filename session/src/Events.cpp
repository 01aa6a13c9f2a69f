// SPDX-License-Identifier: MIT
#include "session/Events.h"

#include "BlockedSignals.h"
#include "ForkGuard.h"
#include "NodeWalk.h"
#include "Parsing.h"
#include "Signal.h"
#include "session/Error.h"

#include <poll.h>
#include <sys/epoll.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <map>
#include <system_error>
#include <thread>
#include <utility>

namespace ImageAcquisition::Session
{

namespace
{

using std::chrono::milliseconds;

constexpr char operation[] = "watch for cameras";

Event::Action actionOf(char const* word)
{
    static constexpr std::pair<char const*, Event::Action> actions[] = {
        {"add", Event::Action::Added},
        {"remove", Event::Action::Removed},
        {"change", Event::Action::Changed},
        {"move", Event::Action::Moved}};
    for (auto const& [known, action] : actions) {
        if (word != nullptr && std::strcmp(word, known) == 0) {
            return action;
        }
    }
    return Event::Action::Other;
}

/// The number of a node such as video0; nothing for other devices.
std::optional<unsigned int> nodeNumber(char const* name)
{
    bool const isVideo = name != nullptr && std::strncmp(name, "video", 5) == 0;
    return isVideo ? parseCount(name + 5) : std::nullopt;
}

} // namespace

/// Receives udev's events and knows which cameras there are.
class __attribute__((visibility("hidden"))) Events::Watch // else as visible as the class around it
{
public:
    Watch();

    std::optional<Event> next(milliseconds timeout);
    void stop() noexcept;
    /// Readable when an event came, or watching was stopped.
    int descriptor() const { return m_either.number(); }

    void callBack(std::shared_ptr<Watch> const& self, Callback callback);
    /// Waits for the thread that calls back, unless it is this one.
    void join();

private:
    bool waitFor(Deadline const& end) const;
    std::optional<Event> receive();
    std::optional<Event> judge(Event::Action action, unsigned int number);
    std::optional<Event> appeared(unsigned int number, Event::Action action);

    ForkGuard const m_process; ///< In a child, thread and events are the parent's.
    UdevContext m_udev;
    UdevMonitor m_monitor;
    Signal m_stop;
    Descriptor const m_either{epoll_create1(EPOLL_CLOEXEC)};
    std::map<unsigned int, Found> m_known; ///< By the number of the node.
    std::atomic<bool> m_stopped{false};
    std::thread m_thread;
};

Events::Watch::Watch()
    : m_udev(udev_new()),
      m_monitor(m_udev ? udev_monitor_new_from_netlink(m_udev.get(), "udev") : nullptr)
{
    bool const receiving = m_monitor &&
                           udev_monitor_filter_add_match_subsystem_devtype(
                               m_monitor.get(), "video4linux", nullptr) >= 0 &&
                           udev_monitor_enable_receiving(m_monitor.get()) >= 0;
    bool watched = receiving;
    for (int const source :
         {receiving ? udev_monitor_get_fd(m_monitor.get()) : -1, m_stop.descriptor()}) {
        epoll_event interest{};
        interest.events = EPOLLIN;
        watched = watched && epoll_ctl(m_either.number(), EPOLL_CTL_ADD, source, &interest) == 0;
    }
    if (!watched) {
        throw Error({ErrorKind::Refused, operation, "udev cannot be reached", "", errno});
    }
    // Looked at after receiving began, so that none is missed in between.
    for (Found const& camera : findCameras().cameras) {
        if (auto const number = nodeNumber(camera.node().c_str() + std::strlen("/dev/"))) {
            m_known.emplace(*number, camera);
        }
    }
}

void Events::Watch::stop() noexcept
{
    if (!m_process.isForked()) {
        m_stopped = true;
        m_stop.set();
    }
}

std::optional<Event> Events::Watch::next(milliseconds timeout)
{
    Deadline const end(timeout);
    while (waitFor(end)) {
        if (auto event = receive()) {
            return event;
        }
    }
    return std::nullopt;
}

bool Events::Watch::waitFor(Deadline const& end) const
{
    pollfd either{m_either.number(), POLLIN, 0};
    int ready = -1;
    do {
        ready = m_process.isForked() ? 0 : poll(&either, 1, end.left());
    } while (ready == -1 && errno == EINTR);
    return ready == 1 && !m_stopped;
}

std::optional<Event> Events::Watch::receive()
{
    UdevDevice const device(udev_monitor_receive_device(m_monitor.get()));
    auto const number = device ? nodeNumber(udev_device_get_sysname(device.get())) : std::nullopt;
    return number ? judge(actionOf(udev_device_get_action(device.get())), *number) : std::nullopt;
}

std::optional<Event> Events::Watch::judge(Event::Action action, unsigned int number)
{
    auto const known = m_known.find(number);
    bool const isGone = action == Event::Action::Removed;
    if (known == m_known.end()) {
        // One that could not be opened at first may have got its rights by a later change.
        return isGone ? std::nullopt : appeared(number, Event::Action::Added);
    }
    // What appeared while the machine was looked at is known already; another one may stand at its
    // node, when events were lost, or it at another port.
    Found const camera = known->second;
    if (action == Event::Action::Added || action == Event::Action::Moved) {
        auto event = appeared(number, action);
        bool const isNews = action == Event::Action::Moved ||
                            (event && event->camera.description() != camera.description());
        return isNews ? event : std::nullopt;
    }
    if (isGone) {
        m_known.erase(known);
    }
    return Event{action, camera};
}

std::optional<Event> Events::Watch::appeared(unsigned int number, Event::Action action)
{
    auto const behind = std::distance(m_known.begin(), m_known.lower_bound(number));
    auto const described =
        NodeWalk().describe("video" + std::to_string(number), static_cast<int>(behind));
    auto const* const camera = std::get_if<Found>(&described);
    if (camera == nullptr) {
        return std::nullopt;
    }
    m_known.insert_or_assign(number, *camera);
    return Event{action, *camera};
}

void Events::Watch::callBack(std::shared_ptr<Watch> const& self, Callback callback)
{
    BlockedSignals const blocked;
    try {
        m_thread = std::thread([self, callback = std::move(callback)] {
            while (auto const event = self->next(milliseconds(-1))) {
                callback(*event);
            }
        });
    } catch (std::system_error const& error) {
        throw Error({ErrorKind::Refused, operation, "there is no thread to be had", "",
                     error.code().value()});
    }
}

void Events::Watch::join()
{
    if (!m_thread.joinable()) {
        return;
    }
    if (m_process.isForked() || m_thread.get_id() == std::this_thread::get_id()) {
        m_thread.detach();
    } else {
        m_thread.join();
    }
}

char const* toText(Event::Action action) noexcept
{
    static constexpr char const* texts[] = {"added", "removed", "changed", "moved"};
    auto const position = static_cast<std::size_t>(action);
    return position < std::size(texts) ? texts[position] : "other";
}

Events::Events() : m_watch(std::make_shared<Watch>()) {}

Events::Events(Callback callback) : m_watch(std::make_shared<Watch>())
{
    m_watch->callBack(m_watch, std::move(callback));
    m_callsBack = true;
}

Events::Events(Events&& other) noexcept = default;

Events& Events::operator=(Events&& other) noexcept
{
    if (this != &other) {
        end();
        m_watch = std::move(other.m_watch);
        m_callsBack = other.m_callsBack;
    }
    return *this;
}

Events::~Events()
{
    end();
}

void Events::end() noexcept
{
    if (m_watch) {
        m_watch->stop();
        m_watch->join();
    }
}

std::optional<Event> Events::next(milliseconds timeout)
{
    return m_callsBack ? std::nullopt : m_watch->next(timeout);
}

void Events::stop() noexcept
{
    m_watch->stop();
}

int Events::descriptor() const noexcept
{
    return m_callsBack ? -1 : m_watch->descriptor();
}

} // namespace ImageAcquisition::Session
