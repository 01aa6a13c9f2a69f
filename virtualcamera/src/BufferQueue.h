// SPDX-License-Identifier: MIT
#pragma once

#include "CameraScript.h"
#include "SharedPages.h"

#include <linux/videodev2.h>

#include <memory>
#include <vector>

namespace VirtualCamera
{

struct Buffer
{
    enum class State : std::uint8_t { Dequeued, Queued, Done };

    State state = State::Dequeued;
    std::uint32_t length = 0;
    std::shared_ptr<SharedPages> pages; ///< For mapped buffers.
    std::uintptr_t userPointer = 0;     ///< For user pointers, as last queued.
    unsigned mappings = 0;
    std::uint32_t frame = 0; ///< Of the frame that fills it.
    timeval timestamp{};
};

/// The streaming buffers of one device, with the rules of the kernel's videobuf2. Results are
/// 0 or a negative errno; `file` is the descriptor that the call came through.
class BufferQueue
{
public:
    explicit BufferQueue(CameraScript const& script);

    int request(int file, v4l2_requestbuffers& request, std::uint32_t sizeImage);
    int query(v4l2_buffer& buffer) const;
    int queue(int file, v4l2_buffer& buffer);
    int streamOn(int file, int type);
    int streamOff(int file, int type);
    /// Checks a VIDIOC_DQBUF; whether a frame is there is the caller's business.
    int checkDequeue(int file, v4l2_buffer const& buffer) const;
    /// Takes the oldest filled buffer out and describes it as it is.
    Buffer& dequeue(v4l2_buffer& buffer);
    /// A further mapping of the buffer at `offset`.
    int map(std::size_t length, int protection, std::int64_t offset, void*& address,
            unsigned& index);
    void unmapped(unsigned generation, unsigned index);

    /// Buffers of the queue's own, for read().
    int startReading(int file, std::uint32_t sizeImage);
    void requeue(Buffer& buffer);
    bool reading() const { return m_reading; }

    bool ownedByOther(int file) const { return m_owner != -1 && m_owner != file; }
    /// Stops streaming and frees everything that `file` owns.
    void closed(int file);

    bool streaming() const { return m_streaming; }
    bool streamsTo(int file) const { return m_streaming && !m_reading && m_owner == file; }
    /// Streaming, but no buffer has been queued since it was last stopped.
    bool waitingForBuffers() const { return m_waitingForBuffers; }
    bool hasQueued() const { return !m_queued.empty(); }
    bool hasDone() const { return !m_done.empty(); }
    /// Fills the oldest queued buffer with a frame.
    void complete(std::uint32_t frame, timeval const& timestamp);

    unsigned count() const { return static_cast<unsigned>(m_buffers.size()); }
    unsigned queuedCount() const { return static_cast<unsigned>(m_queued.size() + m_done.size()); }
    /// Changes with each allocation, so that late unmappings find their own buffers only.
    unsigned generation() const { return m_generation; }

private:
    bool offered(std::uint32_t memory) const;
    std::uint32_t granted(std::uint32_t wanted) const;
    int allocate(std::uint32_t count, std::uint32_t memory, std::uint32_t sizeImage);
    void free();
    void stop();
    void describe(unsigned index, v4l2_buffer& buffer) const;

    CameraScript const& m_script;
    std::uint32_t m_memory = 0;
    std::uint32_t m_sizeImage = 0;
    int m_owner = -1;
    bool m_streaming = false;
    bool m_waitingForBuffers = true;
    bool m_reading = false;
    unsigned m_generation = 0;
    std::vector<Buffer> m_buffers;
    std::vector<unsigned> m_queued; ///< Oldest first.
    std::vector<unsigned> m_done;   ///< Oldest first.
};

} // namespace VirtualCamera
