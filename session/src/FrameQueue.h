// SPDX-License-Identifier: MIT
#pragma once

#include "session/Frame.h"

#include <cstddef>
#include <vector>

namespace ImageAcquisition::Session
{

/// Frames in a ring that never grows. Of one thread at a time.
class FrameQueue
{
public:
    explicit FrameQueue(std::size_t room) : m_ring(room) {}

    bool empty() const noexcept { return m_size == 0; }
    bool isFull() const noexcept { return m_size == m_ring.size(); }
    Frame& back() noexcept { return m_ring[position(m_size - 1)]; }

    /// Leaves an empty frame behind.
    void push(Frame& frame) noexcept
    {
        m_ring[position(m_size)].swap(frame);
        ++m_size;
    }
    /// @param frame an empty one, which it becomes.
    void popInto(Frame& frame) noexcept
    {
        frame.swap(m_ring[m_first]);
        m_first = position(1);
        --m_size;
    }

private:
    /// Without a division, which costs more than all the rest.
    std::size_t position(std::size_t offset) const noexcept
    {
        std::size_t const position = m_first + offset;
        return position < m_ring.size() ? position : position - m_ring.size();
    }

    std::vector<Frame> m_ring;
    std::size_t m_first = 0;
    std::size_t m_size = 0;
};

} // namespace ImageAcquisition::Session
