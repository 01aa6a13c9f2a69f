// SPDX-License-Identifier: MIT
// What the thread of a stream does.
#include "CameraReturn.h"
#include "Capture.h"
#include "CaptureTime.h"
#include "SystemFailure.h"
#include "session/Camera.h"

#include <IFrame.h>
#include <unistd.h>

#include <cerrno>
#include <exception>
#include <utility>

namespace ImageAcquisition::Session
{

namespace
{

using namespace std::chrono_literals;

constexpr char operation[] = "wait for a frame";
/// When nothing came, for no reason: a driver that says so at once is not asked all the time.
constexpr std::chrono::milliseconds pauseAfterNothing = 10ms;
/// How long a node may outlive its camera, and how often to look.
constexpr std::chrono::milliseconds goingTime = 500ms;
constexpr std::chrono::milliseconds goingPause = 5ms;

bool isNoFailure(int error)
{
    return error == 0 || error == EAGAIN || error == EINTR;
}

} // namespace

void* Capture::runThread(void* capture)
{
    ofThisThread = static_cast<Capture*>(capture);
    static_cast<Capture*>(capture)->run();
    return nullptr;
}

void Capture::run() noexcept
{
    try {
        runToEnd();
    } catch (Error const& error) {
        enter(StreamState::Failed, error);
    } catch (std::exception const&) {
        enter(StreamState::Failed, m_outOfMemory);
    }
    setTransfer(nullptr);
    {
        std::lock_guard<std::mutex> const lock(m_transferMutex);
        m_isReleased = true;
    }
    m_released.notify_all();
    tell();
}

void Capture::runToEnd()
{
    for (std::shared_ptr<Transfer> transfer = m_transfer; transfer; transfer = m_transfer) {
        std::optional<Error> reason = takeFrames(transfer);
        if (!reason) {
            return;
        }
        bool const isGone = reason->kind() == ErrorKind::Unplugged;
        if (!isGone || !m_options.stayOn) {
            enter(isGone ? StreamState::Unplugged : StreamState::Failed, std::move(reason));
            return;
        }
        Found const lost = transfer->found();
        transfer.reset();
        if (!comeBack(lost)) {
            enter(StreamState::Unplugged, std::move(reason));
            return;
        }
    }
}

std::optional<Error> Capture::takeFrames(std::shared_ptr<Transfer> const& transfer)
{
    while (!hasEnded()) {
        int error = 0;
        if (IFrame* const frame = transfer->acquire(error)) {
            receive(transfer, *frame);
            continue;
        }
        // Buffers that the driver did not take back are why nothing comes, if there are any.
        error = isNoFailure(error) ? transfer->refusal() : error;
        if (!isNoFailure(error) && !hasEnded()) {
            return reasonOf(*transfer, error);
        }
        m_ended.wait(Deadline(pauseAfterNothing));
    }
    return {};
}

std::optional<Error> Capture::reasonOf(Transfer& transfer, int error)
{
    if (isGone(transfer, error)) {
        return Error({ErrorKind::Unplugged, operation, "the camera is gone",
                      transfer.found().node(), error});
    }
    return systemFailure(operation, transfer.found(), error);
}

/// Drivers let go of a stream a moment before the node is taken away. Some systems, such as
/// containers, keep the node; but then the driver has no stream left to stop.
bool Capture::isGone(Transfer& transfer, int error)
{
    if (kindOf(error) == ErrorKind::Unplugged || kindOf(transfer.stop()) == ErrorKind::Unplugged) {
        return true;
    }
    std::string const node = transfer.found().node();
    Deadline const end(goingTime);
    while (access(node.c_str(), F_OK) == 0) {
        if (end.left() == 0 || m_ended.wait(Deadline(goingPause))) {
            return false;
        }
    }
    return true;
}

void Capture::receive(std::shared_ptr<Transfer> const& transfer, IFrame& filled)
{
    Frame frame(transfer, filled, capturedAt(filled.timeStamp(), Clock::now()));
    Measure::Arrival const arrival{filled.counter(), frame.m_captured, filled.isCorrupted(),
                                   transfer->isShort(filled)};
    bool isAwaited = false;
    {
        std::lock_guard<std::mutex> const lock(m_mutex);
        frame.m_lostBefore = m_measure.came(arrival) + std::exchange(m_lostUntold, 0);
        isAwaited = !hasEnded() && enqueue(frame, transfer->lent());
    }
    // Without the lock, which whoever is woken by it takes first.
    if (isAwaited) {
        m_ready.set();
    }
}

/// Leaves behind, in @p frame, what is thrown away.
/// @return whether it is the first in the queue.
bool Capture::enqueue(Frame& frame, int lent)
{
    bool const isFirst = m_queue.empty();
    if (m_options.delivery == Delivery::NewestOnly && !isFirst) {
        frame.m_lostBefore += m_queue.back().m_lostBefore;
        frame.swap(m_queue.back());
        m_measure.threwAway();
    } else if (hasRoom(lent)) {
        m_queue.push(frame);
        m_hasSomething.store(true, std::memory_order_relaxed);
    } else {
        m_lostUntold = frame.m_lostBefore;
        m_measure.threwAway();
    }
    return isFirst;
}

/// The driver is left a buffer to fill, unless the client holds all others and waits.
bool Capture::hasRoom(int lent) const
{
    return m_queue.empty() || (!m_queue.isFull() && lent < m_options.buffers);
}

bool Capture::comeBack(Found const& lost)
{
    if (!enter(StreamState::Away)) {
        return false;
    }
    tell();
    setTransfer(nullptr);
    Deadline const patience(m_options.patience.count() == 0 ? -1ms : m_options.patience);
    CameraReturn camera(lost);
    while (camera.await(m_ended, patience)) {
        if (startAgain(camera)) {
            tell();
            return true;
        }
    }
    return false;
}

bool Capture::startAgain(CameraReturn& camera)
{
    try {
        std::shared_ptr<Connection> const connection = camera.open();
        m_camera->reconnect(connection);
        putSettingsBack();
        begin(std::make_shared<Transfer>(m_camera, connection, m_options.buffers));
    } catch (Error const& error) {
        // Neither time nor another try makes it offer what was selected.
        if (error.kind() == ErrorKind::Unsupported) {
            throw;
        }
        camera.refused(error);
        return false;
    }
    std::lock_guard<std::mutex> const lock(m_mutex);
    m_measure.cameBack();
    m_returns.fetch_add(1, std::memory_order_relaxed);
    if (!hasEnded()) {
        m_state.store(StreamState::Running, std::memory_order_relaxed);
    }
    return true;
}

/// As they were at first, and as they were set since. Controls that refuse are left as they are.
void Capture::putSettingsBack()
{
    Profile settings = *m_settings;
    for (auto const& [name, value] : m_camera->setControls()) {
        settings.set(name, value);
    }
    Camera camera(m_camera);
    if (!settings.selection().format.empty()) {
        camera.select(settings.selection());
    }
    settings.apply(camera);
}

void Capture::tell() noexcept
{
    StreamState const state = this->state();
    if (state != m_told && m_options.onState) {
        m_options.onState(state);
    }
    m_told = state;
}

} // namespace ImageAcquisition::Session
