// SPDX-License-Identifier: MIT
#include "FrameWorker.h"

#include <algorithm>
#include <utility>

namespace Iacq
{

using ImageAcquisition::Session::Bytes;
using ImageAcquisition::Session::PictureLayout;

FrameWorker::FrameWorker(std::size_t mostBytes, Work work)
    : m_mostBytes(mostBytes), m_work(std::move(work))
{
    m_thread = std::thread([this] { run(); });
    // Only now, for a thread inherits the mask of blocked signals.
    m_blocked.emplace();
}

FrameWorker::~FrameWorker()
{
    {
        std::lock_guard<std::mutex> const lock(m_mutex);
        m_waiting.clear();
    }
    join();
}

bool FrameWorker::take(Bytes bytes, PictureLayout const& layout)
{
    {
        std::lock_guard<std::mutex> const lock(m_mutex);
        if (m_failure) {
            std::rethrow_exception(m_failure);
        }
        if (m_bytes != 0 && bytes.size() > m_mostBytes - std::min(m_bytes, m_mostBytes)) {
            return false;
        }
    }
    // Nobody else adds any, so there is still room after copying.
    FrameCopy copy{{bytes.begin(), bytes.end()}, layout};
    {
        std::lock_guard<std::mutex> const lock(m_mutex);
        m_waiting.push_back(std::move(copy));
        m_bytes += bytes.size();
    }
    m_changed.notify_one();
    return true;
}

void FrameWorker::finish()
{
    join();
    if (m_failure) {
        std::rethrow_exception(m_failure);
    }
}

void FrameWorker::join()
{
    {
        std::lock_guard<std::mutex> const lock(m_mutex);
        m_ending = true;
    }
    m_changed.notify_one();
    if (m_thread.joinable()) {
        m_thread.join();
    }
}

void FrameWorker::run()
{
    sigset_t ownMask;
    pthread_sigmask(SIG_SETMASK, nullptr, &ownMask);
    for (FrameCopy frame; waitForFrame(frame);) {
        workOn(frame);
        // Libraries that block signals in calls of their own, as umockdev does, may now and
        // then give this thread the other's mask; then nothing could end the tool.
        pthread_sigmask(SIG_SETMASK, &ownMask, nullptr);
        std::lock_guard<std::mutex> const lock(m_mutex);
        m_bytes -= frame.bytes.size();
    }
}

bool FrameWorker::waitForFrame(FrameCopy& frame)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_changed.wait(lock, [this] { return m_ending || !m_waiting.empty(); });
    if (m_waiting.empty()) {
        return false;
    }
    frame = std::move(m_waiting.front());
    m_waiting.pop_front();
    return true;
}

/// Once it failed, the thread only waits for its end: signals are still its own.
void FrameWorker::workOn(FrameCopy const& frame)
{
    {
        std::lock_guard<std::mutex> const lock(m_mutex);
        if (m_failure) {
            return;
        }
    }
    try {
        m_work(++m_number, frame);
    } catch (...) {
        std::lock_guard<std::mutex> const lock(m_mutex);
        m_failure = std::current_exception();
    }
}

} // namespace Iacq
