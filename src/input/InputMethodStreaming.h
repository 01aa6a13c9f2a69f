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

    /// Gives all buffers back to the driver.
    void releaseBuffers() const;

    /// A zeroed record of this kind of memory.
    v4l2_buffer bufferRecord(unsigned int index) const;

    /// Adds to a record what the driver wants to know when the buffer is first lent to it.
    virtual void describe(StreamedFrame& frame, v4l2_buffer& buffer) const;

    /// The frame that a dequeued buffer belongs to, or null.
    virtual StreamedFrame* frameOf(v4l2_buffer const& buffer) const = 0;

    /// What became of an attempt to dequeue a buffer.
    enum class Attempt { Succeeded, CameTooEarly, Failed };

    Attempt dequeue(v4l2_buffer& buffer) const
    {
        buffer = {};
        buffer.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
        buffer.memory = m_memory;
        if (node().xioctl(VIDIOC_DQBUF, &buffer) != -1) {
            return Attempt::Succeeded;
        }
        return errno == EAGAIN ? Attempt::CameTooEarly : Attempt::Failed;
    }

    /// Hands out the frame that a buffer has filled; the invalid one when it is none of ours.
    InputMethod::BaseFrame* lend(StreamedFrame* frame, v4l2_buffer const& buffer)
    {
        if (frame == nullptr) {
            return invalidFrame();
        }
        frame->setBuffer(buffer);
        m_lastLent.store(buffer.index, std::memory_order_relaxed);
        return frame;
    }

    bool isSetUp() const { return m_invalidFrame != nullptr; }
    InputMethod::BaseFrame* invalidFrame() const;

    std::vector<std::unique_ptr<StreamedFrame>> m_frames;

private:
    StreamedFrame const* ownFrame(IFrame const* frame) const;
    StreamedFrame const* findFrame(IFrame const* frame, std::size_t start) const;
    int switchStream(unsigned long request) const;

    v4l2_memory const m_memory;
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
