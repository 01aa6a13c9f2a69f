// SPDX-License-Identifier: MIT
#include "SerialFirmware.h"

#include "PseudoTerminal.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <condition_variable>
#include <mutex>
#include <stdexcept>
#include <thread>

namespace VirtualCamera
{

namespace
{

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::milliseconds;

constexpr std::uint8_t readable = 0x01;
constexpr std::uint8_t writable = 0x02;
/// A request whose rest does not come in this time was never whole.
constexpr Milliseconds fragmentPatience{50};
/// While no client is there, the terminal cannot be waited for.
constexpr Milliseconds clientPatience{2};

bool isRequest(SerialPacket const& packet)
{
    std::uint8_t const type = packet.bytes[0];
    return packet.code() == SetCur ? type == 0x21 : type == 0xa1;
}

std::optional<SerialBytes> write(SerialControl& control, SerialBytes const& data)
{
    if ((control.info & writable) == 0) {
        return std::nullopt;
    }
    std::copy_n(data.begin(), std::min(data.size(), control.current.size()),
                control.current.begin());
    return data;
}

/// Carries a request out. The data of the reply; nothing when the control does not do that.
std::optional<SerialBytes> perform(SerialPacket const& packet, SerialControl& control)
{
    auto const size = static_cast<std::uint16_t>(control.current.size());
    switch (packet.code()) {
    case SetCur:
        return write(control, packet.data());
    case GetCur:
        return (control.info & readable) != 0 ? std::optional(control.current) : std::nullopt;
    case GetMin:
        return control.minimum;
    case GetMax:
        return control.maximum;
    case GetDef:
        return control.defaults;
    case GetInfo:
        return SerialBytes{control.info};
    case GetLen:
        return littleEndian(control.claimedLength.value_or(size), 2);
    default:
        return std::nullopt;
    }
}

struct Script
{
    SerialAnswer how;
    SerialRequests requests;
    unsigned timesLeft;
};

} // namespace

struct SerialFirmware::State
{
    using Key = std::pair<std::uint8_t, std::uint8_t>;

    SerialControl& control(std::uint8_t unit, std::uint8_t selector)
    {
        return controls.at({unit, selector});
    }
    void run();
    Milliseconds timeToNextDeed() const;
    void wait();
    void sendDuePieces();
    void takeIn();
    void carryOut(SerialPacket const& packet);
    SerialAnswer answerFor(SerialPacket const& packet);
    bool replyTo(SerialPacket const& packet, SerialBytes& reply);

    void wake() const
    {
        std::uint64_t const one = 1;
        ssize_t const written = ::write(wakeUp, &one, sizeof one);
        static_cast<void>(written);
    }

    mutable std::mutex mutex;
    mutable std::condition_variable received;
    std::map<Key, SerialControl> controls;
    std::vector<Script> scripts;
    std::vector<SerialPacket> packets;
    std::multimap<Clock::time_point, SerialBytes> pending;
    std::optional<Milliseconds> apart; ///< Set when answers keep their order.
    bool stopping = false;

    // The thread's own.
    SerialBytes input;
    Clock::time_point lastInput;

    std::string path;
    std::unique_ptr<PseudoTerminal> terminal = std::make_unique<PseudoTerminal>();
    int wakeUp = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    std::thread thread;
};

void SerialFirmware::State::run()
{
    for (;;) {
        wait();
        std::lock_guard<std::mutex> const lock(mutex);
        if (stopping) {
            return;
        }
        takeIn();
        sendDuePieces();
    }
}

/// -1 ms: nothing is to be done before something comes in.
Milliseconds SerialFirmware::State::timeToNextDeed() const
{
    std::lock_guard<std::mutex> const lock(mutex);
    if (!pending.empty()) {
        auto const due = std::chrono::ceil<Milliseconds>(pending.begin()->first - Clock::now());
        return std::max(due, Milliseconds(0));
    }
    return input.empty() ? Milliseconds(-1) : fragmentPatience;
}

void SerialFirmware::State::wait()
{
    Milliseconds const patience = timeToNextDeed();
    std::array<pollfd, 2> waiting{{{terminal->descriptor(), POLLIN, 0}, {wakeUp, POLLIN, 0}}};
    poll(waiting.data(), waiting.size(), static_cast<int>(patience.count()));
    if ((waiting[0].revents & POLLHUP) != 0) {
        poll(&waiting[1], 1, static_cast<int>(clientPatience.count()));
    }
    std::uint64_t count = 0;
    ssize_t const taken = read(wakeUp, &count, sizeof count);
    static_cast<void>(taken);
}

void SerialFirmware::State::sendDuePieces()
{
    while (!pending.empty() && pending.begin()->first <= Clock::now()) {
        terminal->write(pending.begin()->second);
        pending.erase(pending.begin());
    }
}

void SerialFirmware::State::takeIn()
{
    SerialBytes const bytes = terminal->read();
    input.insert(input.end(), bytes.begin(), bytes.end());
    if (!bytes.empty()) {
        lastInput = Clock::now();
    }
    SerialPacket packet;
    for (packet.bytes = input; packet.complete() && isRequest(packet); packet.bytes = input) {
        std::size_t const size =
            SerialPacket::headerLength + (packet.code() == SetCur ? packet.length() : 0);
        packet.bytes.resize(size);
        input.erase(input.begin(), input.begin() + static_cast<std::ptrdiff_t>(size));
        carryOut(packet);
        packets.push_back(packet);
    }
    if (!input.empty() && (packet.complete() || Clock::now() - lastInput > fragmentPatience)) {
        packets.push_back(packet);
        input.clear();
    }
    received.notify_all();
}

void SerialFirmware::State::carryOut(SerialPacket const& packet)
{
    SerialBytes reply;
    if (!replyTo(packet, reply)) {
        return;
    }
    for (SerialAnswer::Piece const& piece : answerFor(packet).pieces(reply)) {
        Clock::time_point due = Clock::now() + piece.delay;
        if (apart && !pending.empty()) {
            due = std::max(due, pending.rbegin()->first + *apart);
        }
        pending.emplace(due, piece.bytes);
    }
}

SerialAnswer SerialFirmware::State::answerFor(SerialPacket const& packet)
{
    auto const script = std::find_if(scripts.begin(), scripts.end(), [&](Script const& one) {
        return one.timesLeft > 0 && one.requests.cover(packet);
    });
    if (script == scripts.end()) {
        return SerialAnswer::prompt();
    }
    if (script->timesLeft != always) {
        --script->timesLeft;
    }
    return script->how;
}

bool SerialFirmware::State::replyTo(SerialPacket const& packet, SerialBytes& reply)
{
    auto const found = controls.find({packet.unit(), packet.selector()});
    if (found == controls.end()) {
        return false;
    }
    std::optional<SerialBytes> data = perform(packet, found->second);
    if (!data) {
        return false;
    }
    data->resize(packet.length());
    reply = packet.header();
    reply.insert(reply.end(), data->begin(), data->end());
    return true;
}

SerialFirmware::SerialFirmware(std::vector<SerialControl> controls)
    : m_state(std::make_unique<State>())
{
    for (SerialControl& control : controls) {
        m_state->controls[{control.unit, control.selector}] = std::move(control);
    }
    m_state->path = m_state->terminal->path();
    m_state->thread = std::thread([this] { m_state->run(); });
}

SerialFirmware::~SerialFirmware()
{
    unplug();
    close(m_state->wakeUp);
}

std::string const& SerialFirmware::ttyPath() const
{
    return m_state->path;
}

void SerialFirmware::unplug()
{
    if (!m_state->thread.joinable()) {
        return;
    }
    {
        std::lock_guard<std::mutex> const lock(m_state->mutex);
        m_state->stopping = true;
    }
    m_state->wake();
    m_state->thread.join();
    m_state->terminal.reset();
}

void SerialFirmware::answer(SerialAnswer const& how, SerialRequests const& requests, unsigned times)
{
    std::lock_guard<std::mutex> const lock(m_state->mutex);
    m_state->scripts.push_back({how, requests, times});
}

void SerialFirmware::answerAllPromptly()
{
    std::lock_guard<std::mutex> const lock(m_state->mutex);
    m_state->scripts.clear();
}

void SerialFirmware::answerInOrder(Milliseconds apart)
{
    std::lock_guard<std::mutex> const lock(m_state->mutex);
    m_state->apart = apart;
}

void SerialFirmware::say(SerialBytes const& bytes)
{
    std::lock_guard<std::mutex> const lock(m_state->mutex);
    m_state->pending.emplace(Clock::now(), bytes);
    m_state->wake();
}

std::vector<SerialPacket> SerialFirmware::packets() const
{
    std::lock_guard<std::mutex> const lock(m_state->mutex);
    return m_state->packets;
}

std::vector<SerialBytes> SerialFirmware::packetBytes() const
{
    std::vector<SerialBytes> all;
    for (SerialPacket const& packet : packets()) {
        all.push_back(packet.bytes);
    }
    return all;
}

void SerialFirmware::clearPackets()
{
    std::lock_guard<std::mutex> const lock(m_state->mutex);
    m_state->packets.clear();
}

bool SerialFirmware::awaitPackets(std::size_t count) const
{
    std::unique_lock<std::mutex> lock(m_state->mutex);
    return m_state->received.wait_for(lock, std::chrono::seconds(5),
                                      [&] { return m_state->packets.size() >= count; });
}

SerialBytes SerialFirmware::data(std::uint8_t unit, std::uint8_t selector) const
{
    std::lock_guard<std::mutex> const lock(m_state->mutex);
    return m_state->control(unit, selector).current;
}

void SerialFirmware::setData(std::uint8_t unit, std::uint8_t selector, SerialBytes const& bytes)
{
    std::lock_guard<std::mutex> const lock(m_state->mutex);
    m_state->control(unit, selector).current = bytes;
}

void SerialFirmware::setInfo(std::uint8_t unit, std::uint8_t selector, std::uint8_t info)
{
    std::lock_guard<std::mutex> const lock(m_state->mutex);
    m_state->control(unit, selector).info = info;
}

void SerialFirmware::claimLength(std::uint8_t unit, std::uint8_t selector, std::uint16_t length)
{
    std::lock_guard<std::mutex> const lock(m_state->mutex);
    m_state->control(unit, selector).claimedLength = length;
}

} // namespace VirtualCamera
