// SPDX-License-Identifier: MIT
#pragma once

#include "ForkGuard.h"
#include "FrameQueue.h"
#include "Measure.h"
#include "OpenCamera.h"
#include "Signal.h"
#include "Transfer.h"

#include "session/Error.h"
#include "session/Profile.h"
#include "session/Statistics.h"
#include "session/StreamOptions.h"

#include <pthread.h>

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>

namespace ImageAcquisition::Session
{

class CameraReturn;

/**
 * What a stream is made of: a thread that takes frames from the camera, and a queue of those that
 * nobody has asked for yet.
 *
 * The thread never waits for the client, so that it notices at once when the camera goes. Frames
 * do not hold this object but their transfer, so that it ends with the stream whoever keeps frames.
 */
class Capture
{
public:
    /// @throws Error, and nothing is held.
    Capture(std::shared_ptr<OpenCamera> camera, StreamOptions options);
    Capture(Capture const&) = delete;
    Capture& operator=(Capture const&) = delete;
    /// Stops, and waits for the thread, but not for frames.
    ~Capture();

    Frame next(std::chrono::milliseconds timeout);
    void stop() noexcept;
    StreamState state() const noexcept;
    std::optional<Error> error() const;
    Statistics statistics() const;
    int descriptor() const noexcept { return m_ready.descriptor(); }
    StreamOptions const& options() const noexcept { return m_options; }

    /// Returns when the thread has let go of the camera, which it does soon after the end. Not for
    /// that thread itself.
    void awaitRelease();

    /// In a child that was forked it has, for the thread is the parent's.
    bool hasEnded() const noexcept
    {
        return m_process.isForked() || !isAlive(m_state.load(std::memory_order_relaxed));
    }
    /// How often the camera came back.
    unsigned returns() const noexcept { return m_returns.load(std::memory_order_relaxed); }
    std::string node() const { return m_camera->connection()->node(); }

    /// When waitAny() chose it last, as a number that grows.
    unsigned long long turn() const noexcept { return m_turn.load(std::memory_order_relaxed); }
    void setTurn(unsigned long long turn) noexcept
    {
        m_turn.store(turn, std::memory_order_relaxed);
    }

private:
    using Clock = std::chrono::steady_clock;

    static bool isAlive(StreamState state) noexcept { return state <= StreamState::Away; }
    /// The stream whose thread this is, if it is one's.
    static thread_local Capture const* ofThisThread;

    static void* runThread(void* capture);
    void awaitEarlier() const;

    // The client's side.
    bool take(Frame& frame);
    void waitFor(Frame& frame, std::chrono::milliseconds timeout);
    void drop() noexcept;

    // The thread's side.
    void startThread();
    void run() noexcept;
    void runToEnd();
    /// Hands frames over until the stream is to end; the reason, unless it was stopped.
    std::optional<Error> takeFrames(std::shared_ptr<Transfer> const& transfer);
    std::optional<Error> reasonOf(Transfer& transfer, int error);
    bool isGone(Transfer& transfer, int error);
    void receive(std::shared_ptr<Transfer> const& transfer, IFrame& frame);
    bool enqueue(Frame& frame, int lent);
    bool hasRoom(int lent) const;
    /// Waits for the camera and starts anew; false when the stream is to end.
    bool comeBack(Found const& lost);
    bool startAgain(CameraReturn& camera);
    void putSettingsBack();
    void tell() noexcept;

    void begin(std::shared_ptr<Transfer> transfer);
    void setTransfer(std::shared_ptr<Transfer> transfer);
    bool enter(StreamState state, std::optional<Error> error = {});

    ForkGuard const m_process;
    std::shared_ptr<OpenCamera> const m_camera;
    StreamOptions const m_options;
    std::optional<Profile> m_settings; ///< Of a stream that stays on.
    Signal m_ready;                    ///< There are frames, or the stream has ended.
    Signal m_ended;
    Error const m_outOfMemory;
    pthread_t m_thread{};
    std::atomic<unsigned long long> m_turn{0};
    std::atomic<unsigned> m_returns{0};

    mutable std::mutex m_mutex; ///< Of all that follows, but not of the transfer.
    FrameQueue m_queue;
    Measure m_measure;
    unsigned long long m_lostUntold = 0;     ///< Before frames that nobody got to see.
    std::atomic<bool> m_hasSomething{false}; ///< To say; read without the lock, it is a hint.
    std::atomic<StreamState> m_state{StreamState::Running};
    std::optional<Error> m_error;

    StreamState m_told = StreamState::Running; ///< The thread's own.

    std::mutex m_transferMutex; ///< Held while streaming is stopped, which takes its time.
    std::shared_ptr<Transfer> m_transfer;
    bool m_isReleased = false; ///< By the thread, for good.
    std::condition_variable m_released;
};

} // namespace ImageAcquisition::Session
