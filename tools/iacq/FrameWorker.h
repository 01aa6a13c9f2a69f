// SPDX-License-Identifier: MIT
#pragma once

#include "FileWriting.h"

#include <session/Bytes.h>
#include <session/Picture.h>

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <exception>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace Iacq
{

/// What is kept of a frame.
struct FrameCopy
{
    std::vector<unsigned char> bytes;
    ImageAcquisition::Session::PictureLayout layout;
};

/// Works on frames, one after the other, in a thread of its own, so that the next can be captured
/// meanwhile. It copies them: the frames themselves go back to the camera at once, whose buffers
/// are few.
///
/// As long as it lives, the signals that end the tool reach only this thread, which knows when a
/// file is incomplete.
class FrameWorker
{
public:
    /// @param number of the frame among those that were taken, counted from 1.
    using Work = std::function<void(int number, FrameCopy const& frame)>;

    /// @param mostBytes how much may wait; a single frame may be larger.
    FrameWorker(std::size_t mostBytes, Work work);
    /// Gives up what still waits.
    ~FrameWorker();
    FrameWorker(FrameWorker const&) = delete;
    FrameWorker& operator=(FrameWorker const&) = delete;

    /// Takes a frame, unless too much waits already.
    /// @throws what the work on an earlier frame threw.
    bool take(ImageAcquisition::Session::Bytes bytes,
              ImageAcquisition::Session::PictureLayout const& layout);

    /// Waits until all is done; nothing can be taken afterwards.
    /// @throws what the work threw.
    void finish();

private:
    void run();
    bool waitForFrame(FrameCopy& frame);
    void workOn(FrameCopy const& frame);
    void join();

    std::size_t const m_mostBytes;
    Work const m_work;
    int m_number = 0; ///< The thread's own.
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<FrameCopy> m_waiting;
    std::size_t m_bytes = 0; ///< Of what waits and of what is being worked on.
    bool m_ending = false;
    std::exception_ptr m_failure;
    std::optional<SignalsBlocked> m_blocked;
    std::thread m_thread;
};

} // namespace Iacq
