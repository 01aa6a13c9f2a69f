// SPDX-License-Identifier: MIT
#pragma once

#include "input/StreamedFrame.h"

#include <linux/videodev2.h>

#include <atomic>
#include <cerrno>
#include <memory>
#include <vector>

namespace ImageAcquisition
{

/// What both streaming methods do alike, whatever the kind of memory.
class InputMethodStreaming : public InputMethod
{
public:
    InputMethodStreaming(Type type, NodeReference node, v4l2_memory memory);
    ~InputMethodStreaming() override;

    int startCapture() override;
    int releaseFrame(IFrame* frame) override;
    int stopCapture() override;

    /// One attempt to dequeue. True means stop trying: @p frame is a frame, or the invalid one
    /// when the buffer is none of ours or the driver failed.
    bool acquire(InputMethod::BaseFrame*& frame);

    void createInvalidFrame(unsigned int size);
    void destroyInvalidFrame();

protected:
    /// Asks for buffers; 0, or the errno of the refusal. The driver's count is left in @p request.
    static int requestBuffers(NodeReference node, int count, v4l2_memory memory,
                              v4l2_requestbuffers& request);

    /// Whether the driver knows this kind of memory. Only EINVAL says no: a busy device knows it.
    static bool supported(NodeReference node, v4l2_memory memory);

    /// Gives all buffers back to the driver. Leaves errno alone.
    void releaseBuffers() const;

    /// A zeroed record of this kind of memory.
    v4l2_buffer bufferRecord(unsigned int index) const;

    /// Adds to a record what the driver wants to know when the buffer is first lent to it.
    virtual void describe(StreamedFrame& frame, v4l2_buffer& buffer) const;

    /// The frame that a dequeued buffer belongs to, or null.
    virtual StreamedFrame* frameOf(v4l2_buffer const& buffer) const = 0;

    /// What became of an attempt to dequeue a buffer. Only Failed says anything about errno.
    enum class Attempt { Succeeded, CameTooEarly, Failed };

    Attempt dequeue(int device, v4l2_buffer& buffer) const
    {
        buffer = m_emptyRecord;
        if (HelperV4l2::xioctl(device, VIDIOC_DQBUF, &buffer) != -1) {
            return Attempt::Succeeded;
        }
        return errno == EAGAIN ? Attempt::CameTooEarly : Attempt::Failed;
    }

    /// Hands out the frame that a buffer has filled.
    InputMethod::BaseFrame* lend(StreamedFrame& frame, v4l2_buffer const& buffer)
    {
        frame.setBuffer(buffer);
        m_lastLent.store(buffer.index, std::memory_order_relaxed);
        return &frame;
    }

    bool isSetUp() const { return m_invalidFrame != nullptr; }
    InputMethod::BaseFrame* invalidFrame() const;

    std::vector<std::unique_ptr<StreamedFrame>> m_frames;

private:
    static v4l2_buffer emptyRecord(v4l2_memory memory);

    bool isAt(std::size_t index, IFrame const* frame) const
    {
        // By references, which are never null: each frame passes here.
        IFrame const& own = *m_frames[index];
        return &own == frame;
    }
    StreamedFrame const* ownFrame(IFrame const* frame) const
    {
        // Mostly it is the frame lent last that comes back.
        std::size_t const lastLent = m_lastLent.load(std::memory_order_relaxed);
        bool const isLast = lastLent < m_frames.size() && isAt(lastLent, frame);
        return isLast ? m_frames[lastLent].get() : findFrame(frame, lastLent);
    }
    StreamedFrame const* findFrame(IFrame const* frame, std::size_t start) const;
    int switchStream(unsigned long request) const;

    v4l2_memory const m_memory;
    v4l2_buffer const m_emptyRecord;
    // Where to look first; any number will do. Whoever gives a frame back reads it while another
    // thread takes the next one.
    std::atomic<std::size_t> m_lastLent{0};
    std::unique_ptr<InputMethod::InvalidFrame> m_invalidFrame;
};

/// The streaming method of one kind of memory.
template <InputMethod::Type methodType, v4l2_memory memory>
class InputMethodStreamingWith : public InputMethodStreaming
{
public:
    explicit InputMethodStreamingWith(NodeReference node)
        : InputMethodStreaming(methodType, node, memory)
    {
    }

    /// Whether the driver knows this kind of memory. Only EINVAL says no: a busy device knows it.
    static bool supported(NodeReference node)
    {
        return InputMethodStreaming::supported(node, memory);
    }

    /// Asks for buffers; 0, or the errno of the refusal. The driver's count is left in @p request.
    static int requestBuffers(NodeReference node, int count, v4l2_requestbuffers& request)
    {
        return InputMethodStreaming::requestBuffers(node, count, memory, request);
    }
};

} // namespace ImageAcquisition
