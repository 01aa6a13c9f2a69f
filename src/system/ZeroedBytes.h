// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

namespace ImageAcquisition
{

/// Memory of zeros. The system takes the room for a page of it only when somebody touches that
/// page, so that what nobody looks at costs nothing.
class ZeroedBytes
{
public:
    /// @throws std::bad_alloc when the address space does not hold so many.
    explicit ZeroedBytes(std::size_t size);
    ZeroedBytes(ZeroedBytes const&) = delete;
    ZeroedBytes& operator=(ZeroedBytes const&) = delete;
    ~ZeroedBytes();

    std::size_t size() const { return m_size; }
    /// Never null, also when there are none.
    unsigned char* data() { return m_data; }
    unsigned char const* data() const { return m_data; }

private:
    std::size_t mappedSize() const { return m_size == 0 ? 1 : m_size; }

    std::size_t m_size;
    unsigned char* m_data;
};

} // namespace ImageAcquisition
