// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

namespace ImageAcquisition::Session
{

/// Bytes that somebody else owns: a pointer and a size. Copying it copies no byte.
class Bytes
{
public:
    constexpr Bytes() noexcept = default;
    /// @p size bytes from @p data on, which stay where they are.
    constexpr Bytes(unsigned char const* data, std::size_t size) noexcept
        : m_data(data), m_size(size)
    {
    }

    /// The first byte; null when there are none.
    constexpr unsigned char const* data() const noexcept { return m_data; }
    /// How many there are.
    constexpr std::size_t size() const noexcept { return m_size; }
    /// Whether there are none.
    constexpr bool empty() const noexcept { return m_size == 0; }

    /// For a range `for`.
    constexpr unsigned char const* begin() const noexcept { return m_data; }
    /// Behind the last byte.
    constexpr unsigned char const* end() const noexcept { return m_data + m_size; }

    /// The byte at @p position, which must be below size().
    constexpr unsigned char operator[](std::size_t position) const { return m_data[position]; }

private:
    unsigned char const* m_data = nullptr;
    std::size_t m_size = 0;
};

} // namespace ImageAcquisition::Session
