// SPDX-License-Identifier: MIT
#include "session/Stream.h"

#include "Capture.h"

#include "session/Camera.h"

#include <utility>

namespace ImageAcquisition::Session
{

Stream Camera::stream(StreamOptions const& options)
{
    auto const capture = std::make_shared<Capture>(m_camera, options);
    m_camera->setCapture(capture);
    return Stream(capture);
}

Stream::Stream(std::shared_ptr<Capture> capture) noexcept : m_capture(std::move(capture)) {}
Stream::Stream(Stream&& other) noexcept = default;
Stream& Stream::operator=(Stream&& other) noexcept = default;
Stream::~Stream() = default;

Frame Stream::next(std::chrono::milliseconds timeout)
{
    return m_capture->next(timeout);
}

Stream::Iterator Stream::begin()
{
    return Iterator(*this);
}

Stream::Iterator Stream::end() noexcept
{
    return {};
}

void Stream::stop() noexcept
{
    m_capture->stop();
}

StreamState Stream::state() const noexcept
{
    return m_capture->state();
}

std::optional<Error> Stream::error() const
{
    return m_capture->error();
}

Statistics Stream::statistics() const
{
    return m_capture->statistics();
}

int Stream::descriptor() const noexcept
{
    return m_capture->descriptor();
}

Stream::Iterator::Iterator(Stream& stream) : m_stream(&stream)
{
    ++*this;
}

Stream::Iterator& Stream::Iterator::operator++()
{
    Capture& capture = *m_stream->m_capture;
    // First, for the driver may have no buffer besides this one.
    m_frame.release();
    unsigned returns = 0;
    do {
        returns = capture.returns();
        m_frame = capture.next(capture.options().timeout);
        // A stream that stays on has its own patience, and begins anew when the camera is back.
    } while (!m_frame && (capture.state() == StreamState::Away || capture.returns() != returns));
    if (m_frame) {
        return *this;
    }
    if (std::optional<Error> const error = capture.error()) {
        throw *error;
    }
    if (!capture.hasEnded()) {
        throw Error(
            {ErrorKind::TimedOut, "wait for a frame",
             "none came within " + std::to_string(capture.options().timeout.count()) + " ms",
             capture.node()});
    }
    m_stream = nullptr;
    return *this;
}

} // namespace ImageAcquisition::Session
