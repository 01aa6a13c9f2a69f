// SPDX-License-Identifier: MIT
#pragma once

#include "CurrentLayout.h"
#include "ForkGuard.h"
#include "OpenCamera.h"

#include <IFrame.h>

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <memory>

namespace ImageAcquisition::Session
{

/// The buffers of an open camera belong to one transfer at a time.
class BufferClaim
{
public:
    /// @throws Error (Busy) while another transfer, or frames that it lent, have them.
    explicit BufferClaim(std::shared_ptr<Connection> connection);
    BufferClaim(BufferClaim const&) = delete;
    BufferClaim& operator=(BufferClaim const&) = delete;
    ~BufferClaim() { m_connection->giveBuffersBack(); }

    Connection& connection() const noexcept { return *m_connection; }

private:
    std::shared_ptr<Connection> m_connection;
};

/**
 * One run of a camera's stream, from its set-up to its clean-up. The stream holds it, and so does
 * each frame that is lent: the buffers are unmapped when the last of them lets go.
 *
 * Threads: acquire() by one thread; everything else by any.
 */
class Transfer
{
public:
    /// Sets buffers up and starts.
    /// @throws Error, and nothing is held.
    Transfer(std::shared_ptr<OpenCamera> owner, std::shared_ptr<Connection> connection,
             int buffers);
    Transfer(Transfer const&) = delete;
    Transfer& operator=(Transfer const&) = delete;
    ~Transfer();

    Found const& found() const noexcept { return m_claim.connection().found(); }
    FrameLayout const& layout() const noexcept { return m_layout; }
    bool isShort(IFrame const& frame) const noexcept { return frame.bytesUsed() < m_pictureSize; }

    /// Waits for a frame, up to 2 s; null when none came.
    /// @param error then why: `errno` of the driver's refusal, or 0 when nothing came.
    IFrame* acquire(int& error)
    {
        errno = 0;
        IFrame* const frame = m_camera.acquireFrame();
        if (frame->isInvalid()) {
            error = errno;
            return nullptr;
        }
        m_lent.fetch_add(1, std::memory_order_relaxed);
        m_refusal.store(0, std::memory_order_relaxed);
        return frame;
    }
    void release(IFrame& frame) noexcept;
    /// Frames that are out of the driver's hands.
    int lent() const noexcept { return m_lent.load(std::memory_order_relaxed); }
    /// `errno` of the last frame that the driver did not take back since one came; 0 when it took
    /// all.
    int refusal() const noexcept { return m_refusal.load(std::memory_order_relaxed); }

    /// Ends streaming, and an acquire() that waits. Frames stay good.
    /// @return 0, or `errno` of the driver's refusal.
    int stop() noexcept;

private:
    void begin(int buffers);
    /// What the stream would take, in words.
    std::string needed() const;
    [[noreturn]] void fail(char const* reason, int error);

    ForkGuard const m_process;
    std::shared_ptr<OpenCamera> const m_owner;
    BufferClaim const m_claim;
    IBlockingCamera& m_camera;
    FrameLayout m_layout;
    std::size_t m_pictureSize = 0; ///< 0 for compressed ones and where it is not known.
    std::atomic<int> m_lent{0};
    std::atomic<int> m_refusal{0};
    std::atomic<bool> m_isStopped{false};
};

} // namespace ImageAcquisition::Session
