// SPDX-License-Identifier: MIT
#include "system/DescriptorSet.h"

#include <algorithm>

namespace ImageAcquisition
{

namespace
{

constexpr std::size_t bitsPerWord = 8 * sizeof(fd_mask);
constexpr std::size_t smallWords = sizeof(fd_set) / sizeof(fd_mask);

std::size_t wordOf(int fd)
{
    return static_cast<std::size_t>(fd) / bitsPerWord;
}

fd_mask bitOf(int fd)
{
    return static_cast<fd_mask>(1UL << (static_cast<std::size_t>(fd) % bitsPerWord));
}

fd_mask* wordsOf(fd_set& set)
{
    return reinterpret_cast<fd_mask*>(&set);
}

} // namespace

fd_mask* DescriptorSet::wanted()
{
    return m_largeWanted.empty() ? wordsOf(m_smallWanted) : m_largeWanted.data();
}

fd_mask* DescriptorSet::ready()
{
    return m_largeWanted.empty() ? wordsOf(m_smallReady) : m_largeReady.data();
}

void DescriptorSet::add(int fd)
{
    if (fd < 0) {
        return;
    }
    if (wordOf(fd) >= std::max(smallWords, m_largeWanted.size())) {
        if (m_largeWanted.empty()) {
            m_largeWanted.assign(wordsOf(m_smallWanted), wordsOf(m_smallWanted) + smallWords);
        }
        m_largeWanted.resize(wordOf(fd) + 1);
        m_largeReady.assign(m_largeWanted.size(), 0);
    }
    wanted()[wordOf(fd)] |= bitOf(fd);
    m_count = std::max(m_count, fd + 1);
}

int DescriptorSet::waitReadable(timeval* timeout)
{
    // select() overwrites what it is given, and one set may be waited for again.
    if (m_largeWanted.empty()) {
        m_smallReady = m_smallWanted;
    } else {
        m_largeReady = m_largeWanted;
    }
    int const result =
        select(m_count, reinterpret_cast<fd_set*>(ready()), nullptr, nullptr, timeout);
    if (result < 1) {
        m_smallReady = {};
        m_largeReady.assign(m_largeReady.size(), 0);
    }
    return result;
}

bool DescriptorSet::isReady(int fd) const
{
    if (fd < 0 || fd >= m_count) {
        return false;
    }
    fd_mask const* const words = m_largeWanted.empty()
                                     ? reinterpret_cast<fd_mask const*>(&m_smallReady)
                                     : m_largeReady.data();
    return (words[wordOf(fd)] & bitOf(fd)) != 0;
}

} // namespace ImageAcquisition
