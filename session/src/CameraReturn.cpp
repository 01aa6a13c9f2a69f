// SPDX-License-Identifier: MIT
#include "CameraReturn.h"

#include <poll.h>

#include <algorithm>
#include <array>
#include <utility>

namespace ImageAcquisition::Session
{

namespace
{

constexpr int msBetweenAttempts = 500;
/// After an event: the camera may get its node, or one's right to it, a moment later.
constexpr int mostAttempts = 4;

int shorter(int a, int b)
{
    return a == -1 ? b : b == -1 ? a : std::min(a, b);
}

} // namespace

CameraReturn::CameraReturn(Found lost) : m_lost(std::move(lost))
{
    try {
        m_events.emplace();
    } catch (Error const&) {
        m_events.reset();
    }
}

bool CameraReturn::await(Signal const& end, Deadline const& patience)
{
    for (;;) {
        int const left = patience.left();
        std::array<pollfd, 2> entries{pollfd{end.descriptor(), POLLIN, 0},
                                      pollfd{m_events ? m_events->descriptor() : -1, POLLIN, 0}};
        poll(entries.data(), entries.size(), shorter(m_pause, left));
        if (entries[0].revents != 0 || left == 0) {
            return false;
        }
        if (entries[1].revents == 0 || isToldOf()) {
            return true;
        }
        // Of something else, or of a node that cannot be opened yet.
        m_attempts = mostAttempts;
        m_pause = msBetweenAttempts;
    }
}

bool CameraReturn::isToldOf()
{
    auto const event = m_events->next(std::chrono::milliseconds(0));
    bool const isBack =
        event && event->action != Event::Action::Removed && event->camera.text() == m_lost.text();
    if (isBack) {
        m_candidate = event->camera;
        m_attempts = mostAttempts;
    }
    return isBack;
}

std::shared_ptr<Connection> CameraReturn::open()
{
    if (m_candidate) {
        return Connection::open(*std::exchange(m_candidate, std::nullopt));
    }
    try {
        return Connection::open(findCamera(m_lost.text()));
    } catch (Error const& error) {
        if (error.kind() != ErrorKind::Ambiguous || m_lost.port().empty()) {
            throw;
        }
    }
    return Connection::open(findCamera("port:" + m_lost.port()));
}

void CameraReturn::refused(Error const& error)
{
    m_attempts -= m_attempts > 0 ? 1 : 0;
    bool const isAway = error.kind() == ErrorKind::NotFound && m_events && m_attempts == 0;
    m_pause = isAway ? -1 : msBetweenAttempts;
}

} // namespace ImageAcquisition::Session
