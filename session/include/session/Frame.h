// SPDX-License-Identifier: MIT
#pragma once

#include "session/Bytes.h"
#include "session/Selection.h"
#include "session/SessionExport.h"

#include <chrono>
#include <memory>
#include <utility>

namespace ImageAcquisition
{
class IFrame;
}

namespace ImageAcquisition::Session
{

class Capture;
class Transfer;

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
    /// The clock of captured().
    using Clock = std::chrono::steady_clock;

    /// An empty frame.
    Frame() noexcept = default;
    /// Takes the lease over; @p other is empty then.
    Frame(Frame&& other) noexcept
        : m_transfer(std::move(other.m_transfer)), m_frame(std::exchange(other.m_frame, nullptr)),
          m_captured(other.m_captured), m_lostBefore(other.m_lostBefore)
    {
    }
    /// Gives its own picture back first.
    Frame& operator=(Frame&& other) noexcept
    {
        if (this != &other) {
            release();
            m_transfer = std::move(other.m_transfer);
            m_frame = std::exchange(other.m_frame, nullptr);
            m_captured = other.m_captured;
            m_lostBefore = other.m_lostBefore;
        }
        return *this;
    }
    ~Frame() { release(); }
    /// Exchanges the leases.
    void swap(Frame& other) noexcept
    {
        m_transfer.swap(other.m_transfer);
        std::swap(m_frame, other.m_frame);
        std::swap(m_captured, other.m_captured);
        std::swap(m_lostBefore, other.m_lostBefore);
    }

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
    /// Frames that the driver lost between the one handed out before and this one; those that the
    /// stream threw away are not among them.
    unsigned long long lostBefore() const noexcept;
    /// Whether the driver found the data damaged.
    bool isDamaged() const noexcept;
    /// Whether there are fewer bytes than an uncompressed picture of this size has.
    bool isShort() const noexcept;

    /// Gives the picture back now; the frame is empty then.
    void release() noexcept
    {
        if (m_frame != nullptr) {
            giveBack();
        }
    }

private:
    friend class Capture;

    Frame(std::shared_ptr<Transfer> const& transfer, IFrame& frame,
          Clock::time_point captured) noexcept
        : m_transfer(transfer), m_frame(&frame), m_captured(captured)
    {
    }

    void giveBack() noexcept;

    std::shared_ptr<Transfer> m_transfer; ///< Keeps the memory and the camera alive.
    IFrame* m_frame = nullptr;
    Clock::time_point m_captured;
    unsigned long long m_lostBefore = 0;
};

} // namespace ImageAcquisition::Session
