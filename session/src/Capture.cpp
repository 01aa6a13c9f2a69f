// SPDX-License-Identifier: MIT
#include "Capture.h"

#include "BlockedSignals.h"
#include "session/Camera.h"

#include <IFrame.h>

#include <algorithm>
#include <utility>

namespace ImageAcquisition::Session
{

namespace
{

constexpr char operation[] = "start streaming";
/// More than the library uses.
constexpr int mostBuffers = 1024;

Error outOfMemory()
{
    return Error({ErrorKind::Refused, "stream", "there is no memory left"});
}

std::size_t roomFor(int buffers)
{
    if (buffers < 2) {
        throw Error({ErrorKind::BadRequest, operation, "a stream needs 2 buffers at least"});
    }
    return static_cast<std::size_t>(std::min(buffers, mostBuffers));
}

} // namespace

Capture::Capture(std::shared_ptr<OpenCamera> camera, StreamOptions options)
    : m_camera(std::move(camera)), m_options(std::move(options)), m_outOfMemory(outOfMemory()),
      m_queue(roomFor(m_options.buffers))
{
    awaitEarlier();
    if (m_options.stayOn) {
        m_camera->forgetSetControls();
        m_settings = Profile::take(Camera(m_camera));
    }
    begin(std::make_shared<Transfer>(m_camera, m_camera->connection(), m_options.buffers));
    startThread();
}

Capture::~Capture()
{
    // The thread is the parent's.
    if (m_process.isForked()) {
        return;
    }
    stop();
    pthread_join(m_thread, nullptr);
}

void Capture::startThread()
{
    BlockedSignals const blocked;
    int const error = pthread_create(&m_thread, nullptr, &Capture::runThread, this);
    if (error != 0) {
        throw Error({ErrorKind::Refused, operation, "there is no thread to be had", node(), error});
    }
}

Frame Capture::next(std::chrono::milliseconds timeout)
{
    Frame frame;
    if (m_process.isForked()) {
        return frame;
    }
    // Who would wait anyhow need not lock first to learn that he has to.
    bool const looksFirst = timeout.count() == 0 || m_hasSomething.load(std::memory_order_relaxed);
    if (!(looksFirst && take(frame)) && timeout.count() != 0) {
        waitFor(frame, timeout);
    }
    return frame;
}

void Capture::waitFor(Frame& frame, std::chrono::milliseconds timeout)
{
    Deadline const deadline(timeout);
    for (bool isFirst = true; m_ready.wait(deadline, isFirst); isFirst = false) {
        if (take(frame)) {
            return;
        }
    }
    std::lock_guard<std::mutex> const lock(m_mutex);
    m_measure.timedOut();
}

/// True when there is something to say: a frame, or that the stream has ended. A frame that was
/// taken before the thread has set the signal leaves that set for nothing; then it is cleared here.
bool Capture::take(Frame& frame)
{
    std::lock_guard<std::mutex> const lock(m_mutex);
    if (!m_queue.empty()) {
        m_queue.popInto(frame);
        m_measure.handedOut(Clock::now() - frame.m_captured);
    }
    if (m_queue.empty() && !hasEnded()) {
        m_hasSomething.store(false, std::memory_order_relaxed);
        m_ready.clear();
    }
    return frame || hasEnded();
}

void Capture::stop() noexcept
{
    if (m_process.isForked()) {
        return;
    }
    bool const isFirst = enter(StreamState::Stopped);
    {
        std::lock_guard<std::mutex> const lock(m_transferMutex);
        if (m_transfer) {
            m_transfer->stop();
        }
    }
    if (isFirst) {
        drop();
    }
}

void Capture::drop() noexcept
{
    std::lock_guard<std::mutex> const lock(m_mutex);
    for (Frame frame; !m_queue.empty(); frame.release()) {
        m_queue.popInto(frame);
    }
}

StreamState Capture::state() const noexcept
{
    return m_process.isForked() ? StreamState::Stopped : m_state.load(std::memory_order_relaxed);
}

std::optional<Error> Capture::error() const
{
    if (m_process.isForked()) {
        return {};
    }
    std::lock_guard<std::mutex> const lock(m_mutex);
    return m_error;
}

Statistics Capture::statistics() const
{
    if (m_process.isForked()) {
        Statistics none;
        none.state = StreamState::Stopped;
        none.reason = "the stream is the parent process's";
        return none;
    }
    std::lock_guard<std::mutex> const lock(m_mutex);
    Statistics all = m_measure.statistics();
    all.state = state();
    all.reason = m_error ? m_error->what() : all.state == StreamState::Stopped ? "stopped" : "";
    return all;
}

/// Once the stream has ended, nothing changes that.
bool Capture::enter(StreamState state, std::optional<Error> error)
{
    std::lock_guard<std::mutex> const lock(m_mutex);
    if (hasEnded()) {
        return false;
    }
    m_state.store(state, std::memory_order_relaxed);
    m_error = std::move(error);
    if (!isAlive(state)) {
        m_hasSomething.store(true, std::memory_order_relaxed);
        m_ready.set();
        m_ended.set();
    }
    return true;
}

void Capture::begin(std::shared_ptr<Transfer> transfer)
{
    {
        std::lock_guard<std::mutex> const lock(m_mutex);
        m_measure.begin(transfer->layout().selection.rate);
        m_lostUntold = 0;
    }
    setTransfer(std::move(transfer));
}

thread_local Capture const* Capture::ofThisThread = nullptr;

void Capture::awaitEarlier() const
{
    // Who is told of a stream's end on its own thread may start another. This thread must not come
    // to be the last that holds the stream: it could not wait for itself.
    bool const isItsOwn = ofThisThread != nullptr && ofThisThread->m_camera == m_camera;
    std::shared_ptr<Capture> const held = isItsOwn ? nullptr : m_camera->capture();
    Capture const* const other = isItsOwn ? ofThisThread : held.get();
    if (other != nullptr && (other->m_process.isForked() || !other->hasEnded())) {
        throw Error({ErrorKind::Busy, operation, "the camera is streaming already", node()});
    }
    if (held) {
        held->awaitRelease();
    }
}

void Capture::awaitRelease()
{
    std::unique_lock<std::mutex> lock(m_transferMutex);
    m_released.wait(lock, [this] { return m_isReleased; });
}

void Capture::setTransfer(std::shared_ptr<Transfer> transfer)
{
    // What goes is cleaned up without the lock.
    std::lock_guard<std::mutex> const lock(m_transferMutex);
    m_transfer.swap(transfer);
}

} // namespace ImageAcquisition::Session
