// SPDX-License-Identifier: MIT
#pragma once

#include "input/InputMethodStreaming.h"

namespace ImageAcquisition
{

/// Streams through driver buffers that are mapped into the process; nothing is copied.
class InputMethodMemoryMapping
    : public InputMethodStreamingWith<InputMethod::MemoryMapping, V4L2_MEMORY_MMAP>
{
public:
    class Frame;

    using InputMethodStreamingWith::InputMethodStreamingWith;
    /// Neither unmaps nor gives buffers back, so that a frame that is still lent stays readable:
    /// cleanup() must have run.
    ~InputMethodMemoryMapping() override;

    int setup(int bufferCount, unsigned int imageSize) override;
    IFrame* acquireFrame() override;
    int cleanup() override;

protected:
    StreamedFrame* frameOf(v4l2_buffer const& buffer) const final;

private:
    struct Unmapper
    {
        void operator()(void* address) const;

        std::size_t length;
    };
    using Mapping = std::unique_ptr<void, Unmapper>;

    bool mapBuffers(unsigned int count);
    bool mapBuffer(unsigned int index);
    void unmapAll();
    void giveBuffersBack();

    std::vector<Mapping> m_mappings; // One for each frame.
};

/// A mapped driver buffer. The mapping is the input method's to undo.
class InputMethodMemoryMapping::Frame : public StreamedFrame
{
public:
    Frame(unsigned int length, void* data)
        : m_length(length), m_data(static_cast<unsigned char*>(data))
    {
    }

    unsigned int allocSize() const override { return m_length; }
    unsigned char const* bytePtr() const override { return m_data; }
    unsigned char* bytePtr() override { return m_data; }

private:
    unsigned int m_length;
    unsigned char* m_data;
};

} // namespace ImageAcquisition
