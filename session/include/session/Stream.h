// SPDX-License-Identifier: MIT
#pragma once

#include "session/Error.h"
#include "session/Frame.h"
#include "session/SessionExport.h"
#include "session/Statistics.h"
#include "session/StreamOptions.h"

#include <chrono>
#include <cstddef>
#include <iterator>
#include <memory>
#include <optional>
#include <vector>

namespace ImageAcquisition::Session
{

class Capture;
class Stream;

/**
 * @brief Waits until one of several streams has a frame, or has ended.
 * @param streams none of them null, and no other thread in their next().
 * @param timeout as of Stream::next().
 * @return its position, taking turns where several have; nothing when the time was over, or at once
 * when there are no streams.
 */
IMAGEACQUISITION_SESSION_EXPORT std::optional<std::size_t>
waitAny(std::vector<Stream*> const& streams, std::chrono::milliseconds timeout);

/**
 * @brief A running stream of frames; it ends when this object goes.
 *
 * Made by Camera::stream(). Movable; it keeps the open camera alive, and frames outlive it. Ending
 * waits neither for frames nor for whoever holds them; while frames are held, a new stream of the
 * same camera is refused as Busy.
 *
 * In a child that was forked the stream is Stopped, and neither it nor a frame does anything to the
 * parent's.
 *
 * Threads: next(), iteration and destruction by one thread at a time; stop(), state(), error() and
 * statistics() from any.
 */
class IMAGEACQUISITION_SESSION_EXPORT Stream
{
public:
    class Iterator;

    /// A stream that was moved from can only be assigned to or destroyed.
    Stream(Stream&& other) noexcept;
    /// Ends its own stream first.
    Stream& operator=(Stream&& other) noexcept;
    ~Stream();

    /**
     * @brief Waits for the next frame.
     * @param timeout zero only looks; negative waits without limit.
     * @return the frame. An empty one when the time was over, which leaves state() at Running or
     * Away, or when the stream has ended, which state() and statistics() explain. It never throws
     * for what the camera does.
     */
    Frame next(std::chrono::milliseconds timeout);

    /// For `for (Frame& frame : stream)`: waits StreamOptions::timeout for each frame, but as long
    /// as need be while the stream is Away; ends when the stream is stopped, and throws Error
    /// (TimedOut, Unplugged, or as the driver failed) otherwise. A frame that is not moved out of
    /// the loop goes back at the next step.
    Iterator begin();
    /// Where the `for` ends.
    Iterator end() noexcept;

    /// Ends the stream, and with it a next() that waits on another thread. Frames that nobody took
    /// go back. Does nothing when it has ended. Takes 10 ms at least.
    void stop() noexcept;

    /// Whether it runs, and why not.
    StreamState state() const noexcept;
    /// What the stream ended with; nothing while it runs and after stop().
    std::optional<Error> error() const;
    /// What became of its frames until now.
    Statistics statistics() const;

    /// A descriptor that is readable while next() has something to say at once: for `poll`. It may
    /// once be readable for nothing, when next() was called without waiting for it. Not to be read
    /// or closed.
    int descriptor() const noexcept;

private:
    friend class Camera;
    friend std::optional<std::size_t> waitAny(std::vector<Stream*> const& streams,
                                              std::chrono::milliseconds timeout);

    explicit Stream(std::shared_ptr<Capture> capture) noexcept;

    std::shared_ptr<Capture> m_capture;
};

/// Walks over a stream once.
class IMAGEACQUISITION_SESSION_EXPORT Stream::Iterator
{
public:
    using iterator_category = std::input_iterator_tag; ///< Walks once, forward.
    using value_type = Frame;                          ///< What it walks over.
    using difference_type = std::ptrdiff_t;            ///< Of no use.
    using pointer = Frame*;                            ///< To the frame at hand.
    using reference = Frame&;                          ///< To the frame at hand.

    /// The end of any stream.
    Iterator() noexcept = default;
    /// Waits for the first frame.
    explicit Iterator(Stream& stream);

    /// The frame at hand.
    Frame& operator*() noexcept { return m_frame; }
    /// The frame at hand.
    Frame* operator->() noexcept { return &m_frame; }
    /// Gives the frame back and waits for the next one.
    Iterator& operator++();
    /// Whether both are at the end, or in the same stream.
    bool operator==(Iterator const& other) const noexcept { return m_stream == other.m_stream; }
    /// Whether they are not.
    bool operator!=(Iterator const& other) const noexcept { return m_stream != other.m_stream; }

private:
    Stream* m_stream = nullptr;
    Frame m_frame;
};

} // namespace ImageAcquisition::Session
