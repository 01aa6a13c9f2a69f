// SPDX-License-Identifier: MIT
#include "input/InputMethodStreaming.h"

#include "system/EarlierErrno.h"

#include <cerrno>

namespace ImageAcquisition
{

InputMethodStreaming::InputMethodStreaming(Type type, NodeReference node, v4l2_memory memory)
    : InputMethod(type, node), m_memory(memory), m_emptyRecord(emptyRecord(memory))
{
}

InputMethodStreaming::~InputMethodStreaming() = default;

int InputMethodStreaming::requestBuffers(NodeReference node, int count, v4l2_memory memory,
                                         v4l2_requestbuffers& request)
{
    request = {};
    request.count = static_cast<unsigned int>(count);
    request.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    request.memory = memory;
    return node.xioctl(VIDIOC_REQBUFS, &request) == -1 ? errno : 0;
}

bool InputMethodStreaming::supported(NodeReference node, v4l2_memory memory)
{
    constexpr int probeCount = 4;
    v4l2_requestbuffers request;
    if (requestBuffers(node, probeCount, memory, request) == EINVAL) {
        return false;
    }
    requestBuffers(node, 0, memory, request);
    return true;
}

void InputMethodStreaming::releaseBuffers() const
{
    // Mostly this follows a failure, whose errno is the caller's to see.
    ErrnoKept const earlier;
    v4l2_requestbuffers request;
    requestBuffers(node(), 0, m_memory, request);
}

v4l2_buffer InputMethodStreaming::emptyRecord(v4l2_memory memory)
{
    v4l2_buffer buffer{};
    buffer.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    buffer.memory = memory;
    return buffer;
}

v4l2_buffer InputMethodStreaming::bufferRecord(unsigned int index) const
{
    v4l2_buffer buffer = m_emptyRecord;
    buffer.index = index;
    return buffer;
}

void InputMethodStreaming::describe(StreamedFrame& /*frame*/, v4l2_buffer& /*buffer*/) const {}

int InputMethodStreaming::startCapture()
{
    for (unsigned int index = 0; index < m_frames.size(); ++index) {
        v4l2_buffer buffer = bufferRecord(index);
        describe(*m_frames[index], buffer);
        if (node().xioctl(VIDIOC_QBUF, &buffer) == -1) {
            return -1;
        }
    }
    return switchStream(VIDIOC_STREAMON);
}

int InputMethodStreaming::stopCapture()
{
    InputMethod::stopCapture();
    return switchStream(VIDIOC_STREAMOFF);
}

int InputMethodStreaming::switchStream(unsigned long request) const
{
    int type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    return node().xioctl(request, &type) == -1 ? -1 : 0;
}

bool InputMethodStreaming::acquire(InputMethod::BaseFrame*& frame)
{
    EarlierErrno const earlier;
    v4l2_buffer buffer;
    Attempt const attempt = dequeue(node().descriptor(), buffer);
    if (attempt != Attempt::Failed) {
        earlier.restore();
    }
    StreamedFrame* const own = attempt == Attempt::Succeeded ? frameOf(buffer) : nullptr;
    frame = own == nullptr ? invalidFrame() : lend(*own, buffer);
    return attempt != Attempt::CameTooEarly;
}

int InputMethodStreaming::releaseFrame(IFrame* frame)
{
    StreamedFrame const* const own = ownFrame(frame);
    if (own == nullptr) {
        return frame != nullptr && frame->isInvalid() ? 0 : -1;
    }
    v4l2_buffer buffer = own->buffer();
    return node().xioctl(VIDIOC_QBUF, &buffer) == -1 ? -1 : 0;
}

StreamedFrame const* InputMethodStreaming::findFrame(IFrame const* frame, std::size_t start) const
{
    // Backwards from the frame lent last: what comes back is not far behind it.
    std::size_t const count = m_frames.size();
    std::size_t index = start;
    for (std::size_t left = count; left > 0; --left) {
        index = (index == 0 || index > count ? count : index) - 1;
        if (isAt(index, frame)) {
            return m_frames[index].get();
        }
    }
    return nullptr;
}

void InputMethodStreaming::createInvalidFrame(unsigned int size)
{
    m_invalidFrame = std::make_unique<InputMethod::InvalidFrame>(size);
}

void InputMethodStreaming::destroyInvalidFrame()
{
    m_invalidFrame.reset();
}

InputMethod::BaseFrame* InputMethodStreaming::invalidFrame() const
{
    return m_invalidFrame ? m_invalidFrame.get() : &InputMethod::InvalidFrame::getUniqueInstance();
}

} // namespace ImageAcquisition
