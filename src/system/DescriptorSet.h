// SPDX-License-Identifier: MIT
#pragma once

#include <sys/select.h>

#include <vector>

namespace ImageAcquisition
{

/// The descriptors that a select() waits for. Unlike a bare fd_set, which a descriptor of 1024 or
/// more overflows, it grows with its largest descriptor; below that it needs no heap, since a
/// capture makes one for every frame.
class DescriptorSet
{
public:
    /// Adds a descriptor; a negative one is left out.
    void add(int fd);

    /// Waits until one of them is readable. @p timeout null waits without limit; otherwise it is
    /// left with the time that remains. Returns what select() does: the number of descriptors that
    /// are ready, 0 when the time is up, -1 and errno on failure.
    int waitReadable(timeval* timeout);

    /// Whether the last wait found the descriptor readable.
    bool isReady(int fd) const;

private:
    fd_mask* wanted();
    fd_mask* ready();

    fd_set m_smallWanted{};
    fd_set m_smallReady{};
    // In use, and then instead of the small ones, as soon as a descriptor needs it.
    std::vector<fd_mask> m_largeWanted;
    std::vector<fd_mask> m_largeReady;
    int m_count = 0;
};

} // namespace ImageAcquisition
