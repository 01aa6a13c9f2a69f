// SPDX-License-Identifier: MIT
#pragma once

#include <sys/select.h>

#include <vector>

namespace ImageAcquisition
{

/// The descriptors that a select() waits for. A bare fd_set overflows with a descriptor of 1024 or
/// more, and all of it is copied for the sake of one bit; this has the words that its largest
/// descriptor needs, and writes only those that it has descriptors in. Who waits often keeps it:
/// adding may allocate, waiting does not.
class DescriptorSet
{
public:
    /// Adds a descriptor; a negative one is left out.
    void add(int fd);

    /// Waits until one of them is readable. @p timeout null waits without limit; otherwise it is
    /// left with the time that remains. Returns what select() does: the number of descriptors that
    /// are ready, 0 when the time is up, -1 and errno on failure.
    int waitReadable(timeval* timeout)
    {
        // select() overwrites what it is given: with zeros, wherever nothing was wanted.
        for (Word const& word : m_wanted) {
            m_words[word.index] = word.wanted;
        }
        int const result =
            select(m_count, reinterpret_cast<fd_set*>(m_words.data()), nullptr, nullptr, timeout);
        if (result < 1) {
            forgetReady();
        }
        return result;
    }

    /// Whether the last wait found the descriptor readable.
    bool isReady(int fd) const;

private:
    void forgetReady();

    struct Word
    {
        std::size_t index;
        fd_mask wanted;
    };

    std::vector<Word> m_wanted;
    std::vector<fd_mask> m_words; // What select() reads, and then what is ready.
    int m_count = 0;
};

} // namespace ImageAcquisition
