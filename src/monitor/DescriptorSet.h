// SPDX-License-Identifier: MIT
#pragma once

#include <sys/select.h>

#include <vector>

namespace ImageAcquisition
{

/// The descriptors that a select() waits for. Unlike a bare fd_set, which a descriptor of 1024 or
/// more overflows, it grows with its largest descriptor.
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
    std::vector<fd_mask> m_wanted;
    std::vector<fd_mask> m_ready;
    int m_count = 0;
};

} // namespace ImageAcquisition
