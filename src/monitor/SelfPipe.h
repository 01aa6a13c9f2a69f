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

    /// Makes the pipe; ends that are still open are closed first. The owner closes it.
    bool open();
    void close();
    void write();
    int readingEnd() const { return m_readEnd; }

private:
    // Atomic because the waiting and the waking thread both read them.
    std::atomic<int> m_readEnd{-1};
    std::atomic<int> m_writeEnd{-1};
};

} // namespace ImageAcquisition
