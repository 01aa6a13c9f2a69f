// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

namespace VirtualCamera
{

std::size_t roundToPages(std::size_t bytes);

/// Memory that can be seen through further mappings, which outlive the object.
class SharedPages
{
public:
    /// Check `valid` afterwards: without memory there are no pages.
    explicit SharedPages(std::size_t bytes);
    ~SharedPages();
    SharedPages(SharedPages const&) = delete;
    SharedPages& operator=(SharedPages const&) = delete;

    bool valid() const { return m_base != nullptr; }
    unsigned char* bytes() const { return m_base; }
    /// Another mapping of the first `length` bytes; null, with errno, when there is no room.
    void* mirror(std::size_t length, int protection) const;

private:
    unsigned char* m_base = nullptr;
    std::size_t m_size;
    int m_file = -1; ///< Of the pages, where they cannot be mapped again without one.
};

} // namespace VirtualCamera
