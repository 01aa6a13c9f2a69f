// SPDX-License-Identifier: MIT
#include "system/ZeroedBytes.h"

#include <sys/mman.h>

#include <new>

namespace ImageAcquisition
{

ZeroedBytes::ZeroedBytes(std::size_t size) : m_size(size)
{
    // Not from the heap: what it has used before it has to clear, and so to touch.
    void* const address =
        mmap(nullptr, mappedSize(), PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (address == MAP_FAILED) {
        throw std::bad_alloc();
    }
    m_data = static_cast<unsigned char*>(address);
}

ZeroedBytes::~ZeroedBytes()
{
    munmap(m_data, mappedSize());
}

} // namespace ImageAcquisition
