// SPDX-License-Identifier: MIT
#pragma once

#include "input/InputMethod.h"

#include <linux/videodev2.h>

namespace ImageAcquisition
{

/// A frame whose particulars are those of the buffer that was last dequeued into it.
class StreamedFrame : public virtual InputMethod::BaseFrame
{
public:
    bool isInvalid() const override { return false; }
    bool isCorrupted() const override { return (m_buffer.flags & V4L2_BUF_FLAG_ERROR) != 0; }
    unsigned int bytesUsed() const override { return m_buffer.bytesused; }
    unsigned long long counter() const override { return m_buffer.sequence; }
    FrameTimeStamp timeStamp() const override
    {
        return {m_buffer.timestamp.tv_sec, m_buffer.timestamp.tv_usec};
    }

    v4l2_buffer const& buffer() const { return m_buffer; }
    void setBuffer(v4l2_buffer const& buffer) { m_buffer = buffer; }

private:
    v4l2_buffer m_buffer{};
};

} // namespace ImageAcquisition
