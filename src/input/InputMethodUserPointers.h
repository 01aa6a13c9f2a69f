// SPDX-License-Identifier: MIT
#pragma once

#include "input/InputMethodStreaming.h"

namespace ImageAcquisition
{

/// Streams into buffers of the process that are lent to the driver.
class InputMethodUserPointers
    : public InputMethodStreamingWith<InputMethod::UserPointers, V4L2_MEMORY_USERPTR>
{
public:
    class Frame;

    using InputMethodStreamingWith::InputMethodStreamingWith;
    ~InputMethodUserPointers() override;

    /// Fails, and asks the driver for nothing, whenever the wake-up pipe could be opened; buffers
    /// are made only when it could not. Kept as it is: docs/behaviour.md, Capture.
    int setup(int bufferCount, unsigned int imageSize) override;
    IFrame* acquireFrame() override;
    int cleanup() override;

protected:
    void describe(StreamedFrame& frame, v4l2_buffer& buffer) const override;
    StreamedFrame* frameOf(v4l2_buffer const& buffer) const override;

private:
    void makeFrames(int count, unsigned int imageSize);
};

/// A buffer that is lent to the driver.
class InputMethodUserPointers::Frame : public StreamedFrame
{
public:
    explicit Frame(unsigned int size) : m_bytes(size) {}

    unsigned int allocSize() const override { return static_cast<unsigned int>(m_bytes.size()); }
    unsigned char const* bytePtr() const override { return m_bytes.data(); }
    unsigned char* bytePtr() override { return m_bytes.data(); }

private:
    ZeroedBytes m_bytes;
};

} // namespace ImageAcquisition
