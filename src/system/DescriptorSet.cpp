// SPDX-License-Identifier: MIT
#include "system/DescriptorSet.h"

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
    std::size_t const index = wordOf(fd);
    auto word = std::find_if(m_wanted.begin(), m_wanted.end(),
                             [index](Word const& one) { return one.index == index; });
    if (word == m_wanted.end()) {
        m_words.resize(std::max(m_words.size(), index + 1));
        word = m_wanted.insert(word, {index, 0});
    }
    word->wanted |= bitOf(fd);
    m_count = std::max(m_count, fd + 1);
}

void DescriptorSet::forgetReady()
{
    for (Word const& word : m_wanted) {
        m_words[word.index] = 0;
    }
}

bool DescriptorSet::isReady(int fd) const
{
    return fd >= 0 && fd < m_count && (m_words[wordOf(fd)] & bitOf(fd)) != 0;
}

} // namespace ImageAcquisition
