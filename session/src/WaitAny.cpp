// SPDX-License-Identifier: MIT
#include "Capture.h"

#include "session/Stream.h"

#include <poll.h>

#include <algorithm>
#include <atomic>
#include <cerrno>

namespace ImageAcquisition::Session
{

namespace
{

std::atomic<unsigned long long> turns{0};

/// What to wait for; kept from call to call, so that only the first ones allocate.
std::vector<pollfd>& entriesFor(std::vector<Stream*> const& streams)
{
    thread_local std::vector<pollfd> entries;
    entries.clear();
    for (Stream const* const stream : streams) {
        entries.push_back({stream->descriptor(), POLLIN, 0});
    }
    return entries;
}

} // namespace

std::optional<std::size_t> waitAny(std::vector<Stream*> const& streams,
                                   std::chrono::milliseconds timeout)
{
    if (streams.empty()) {
        return {};
    }
    Deadline const deadline(timeout);
    std::vector<pollfd>& entries = entriesFor(streams);
    // Of a stream that has ended, the descriptor may be the parent process's.
    auto const hasEnded = [](Stream const* stream) { return stream->m_capture->hasEnded(); };
    bool const mustWait = std::none_of(streams.begin(), streams.end(), hasEnded);
    int ready = 0;
    do {
        ready = poll(entries.data(), entries.size(), mustWait ? deadline.left() : 0);
    } while (ready == -1 && errno == EINTR);
    std::optional<std::size_t> chosen;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        bool const isReady = hasEnded(streams[i]) || (ready > 0 && entries[i].revents != 0);
        bool const isNext =
            !chosen || streams[i]->m_capture->turn() < streams[*chosen]->m_capture->turn();
        if (isReady && isNext) {
            chosen = i;
        }
    }
    if (chosen) {
        streams[*chosen]->m_capture->setTurn(++turns);
    }
    return chosen;
}

} // namespace ImageAcquisition::Session
