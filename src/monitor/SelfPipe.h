// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>

namespace ImageAcquisition
{

/// A pipe whose reading end joins a wait, so that another thread can end the wait by writing.
/// Nothing drains it: once written to, it stays readable until it is closed.
class SelfPipe
{
public:
    SelfPipe() = default;
    SelfPipe(SelfPipe const&) = delete;
    SelfPipe& operator=(SelfPipe const&) = delete;

    /// Makes the pipe; ends that are still open are closed first. The owner closes it. Programs
    /// that the process starts do not inherit it.
    bool open();

    /// Another thread may write meanwhile: it writes to this pipe or to nothing. Both leave errno
    /// alone.
    void close();
    void write();
    int readingEnd() const { return m_readEnd; }

private:
    // Atomic because the waiting and the waking thread both read them. A writer announces itself
    // before it looks for the end; whoever closes it takes the end away before it looks for
    // writers. One of the two sees the other.
    std::atomic<int> m_readEnd{-1};
    std::atomic<int> m_writeEnd{-1};
    std::atomic<int> m_writers{0};
};

} // namespace ImageAcquisition
