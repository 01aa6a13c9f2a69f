// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>

namespace ImageAcquisition::Session
{

/**
 * Tells whether the process was forked since this was made. The child has no thread of its parent's
 * and shares its open camera, so that whatever it did with a stream it would do to the parent's.
 */
class ForkGuard
{
public:
    bool isForked() const noexcept { return m_generation != forks; }

private:
    /// How many lie between the program's first process and this one. Asking the system for the
    /// process's id would be a system call for each frame.
    static std::atomic<unsigned> forks;
    static int const registered;

    unsigned const m_generation = forks;
};

} // namespace ImageAcquisition::Session
