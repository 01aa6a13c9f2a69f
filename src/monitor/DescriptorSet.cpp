// SPDX-License-Identifier: MIT
#include "monitor/DescriptorSet.h"

#include <algorithm>

namespace ImageAcquisition
{

namespace
{

constexpr std::size_t bitsPerWord = 8 * sizeof(fd_mask);

std::size_t wordOf(int fd)
{
    return static_cast<std::size_t>(fd) / bitsPerWord;
}

fd_mask bitOf(int fd)
{
    return static_cast<fd_mask>(1UL << (static_cast<std::size_t>(fd) % bitsPerWord));
}

} // namespace

void DescriptorSet::add(int fd)
{
    if (fd < 0) {
        return;
    }
    // Never smaller than an fd_set, which checking tools take the argument of select() for.
    std::size_t const words =
        std::max({m_wanted.size(), wordOf(fd) + 1, sizeof(fd_set) / sizeof(fd_mask)});
    m_wanted.resize(words);
    m_wanted[wordOf(fd)] |= bitOf(fd);
    m_count = std::max(m_count, fd + 1);
}

int DescriptorSet::waitReadable(timeval* timeout)
{
    m_ready = m_wanted;
    int const result = select(m_count, reinterpret_cast<fd_set*>(m_ready.data()), nullptr, nullptr,
                              timeout);
    if (result < 1) {
        m_ready.clear();
    }
    return result;
}

bool DescriptorSet::isReady(int fd) const
{
    return fd >= 0 && wordOf(fd) < m_ready.size() && (m_ready[wordOf(fd)] & bitOf(fd)) != 0;
}

} // namespace ImageAcquisition
