// SPDX-License-Identifier: MIT
#pragma once

#include "session/Bytes.h"
#include "session/Selection.h"
#include "session/SessionExport.h"

#include <chrono>
#include <memory>

namespace ImageAcquisition
{
class IFrame;
}

namespace ImageAcquisition::Session
{

class Capture;

/**
 * @brief A lease of a captured picture: it goes back to the driver when this object goes.
 *
 * Movable. It may outlive the stream and the camera, be given back on any thread, and keeps its
 * memory alive until then; the driver has a buffer less to fill meanwhile. An empty frame, which
 * Stream::next() returns when none came, is false, and has no bytes.
 *
 * Threads: a frame may be read from any thread; it is moved, given back and destroyed by one at a
 * time.
 */
class IMAGEACQUISITION_SESSION_EXPORT Frame
{
public:
    using Clock = std::chrono::steady_clock;

    /// An empty frame.
    Frame() noexcept;
    Frame(Frame&& other) noexcept;
    Frame& operator=(Frame&& other) noexcept;
    ~Frame();

    /// Whether there is a picture.
    explicit operator bool() const noexcept { return m_frame != nullptr; }

    /// The picture's bytes: what the driver filled, never more than the buffer holds. Good until
    /// the frame is given back.
    Bytes bytes() const noexcept;
    /// The format, size and rate of the picture.
    Selection const& selection() const noexcept;
    /// Bytes from one line to the next; 0 for compressed formats and where it is not known.
    unsigned int bytesPerLine() const noexcept;

    /// When the driver captured it, on the steady clock, whatever clock the driver uses.
    Clock::time_point captured() const noexcept;
    /// The driver's number of the frame.
    unsigned long long number() const noexcept;
    /// Frames that the driver lost between the one before and this one.
    unsigned long long lostBefore() const noexcept;
    /// Whether the driver found the data damaged.
    bool isDamaged() const noexcept;
    /// Whether there are fewer bytes than an uncompressed picture of this size has.
    bool isShort() const noexcept;

    /// Gives the picture back now; the frame is empty then.
    void release() noexcept;

private:
    friend class Capture;

    Frame(std::shared_ptr<Capture> capture, IFrame& frame) noexcept;

    std::shared_ptr<Capture> m_capture;
    IFrame* m_frame = nullptr;
    Clock::time_point m_captured;
    unsigned long long m_lostBefore = 0;
};

} // namespace ImageAcquisition::Session
