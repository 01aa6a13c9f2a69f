// SPDX-License-Identifier: MIT
#pragma once

#include "session/Bytes.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstring>
#include <stdexcept>
#include <vector>

/// A copy of bytes that ends, or begins, at a page that cannot be read: who reads beyond them ends
/// the program, in libraries that no sanitizer looks into as well.
class GuardedBytes
{
public:
    enum class Guard { Behind, Before };

    explicit GuardedBytes(std::vector<unsigned char> const& bytes, Guard guard = Guard::Behind)
        : m_size(bytes.size())
    {
        auto const page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
        std::size_t const pages = (m_size + page - 1) / page;
        m_mapped = (pages + 2) * page;
        void* const memory =
            ::mmap(nullptr, m_mapped, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED) {
            throw std::runtime_error("no memory");
        }
        m_memory = static_cast<unsigned char*>(memory);
        unsigned char* const readable = m_memory + page;
        m_data = readable + (guard == Guard::Behind ? pages * page - m_size : 0);
        if (m_size != 0) {
            if (::mprotect(readable, pages * page, PROT_READ | PROT_WRITE) != 0) {
                throw std::runtime_error("no protection");
            }
            std::memcpy(m_data, bytes.data(), m_size);
            ::mprotect(readable, pages * page, PROT_READ);
        }
    }
    GuardedBytes(GuardedBytes const&) = delete;
    GuardedBytes& operator=(GuardedBytes const&) = delete;
    ~GuardedBytes() { ::munmap(m_memory, m_mapped); }

    /// Not to be written to, either.
    ImageAcquisition::Session::Bytes bytes() const { return {m_data, m_size}; }

private:
    std::size_t m_size;
    std::size_t m_mapped = 0;
    unsigned char* m_memory = nullptr;
    unsigned char* m_data = nullptr;
};
