// SPDX-License-Identifier: MIT
// To be preloaded: counts allocations, and copies of 256 bytes and more: a picture is that large, a
// record for the driver is not. A line "ALLOCATIONS COPIES" goes to the file that BENCHMARK_CALLS
// names.
#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>

#define CALLS_EXPORT __attribute__((visibility("default")))

namespace
{

constexpr std::size_t smallestCopy = 256;

std::atomic<unsigned long> allocations{0};
std::atomic<unsigned long> copies{0};

/// By hand, since the compiler knows what memcpy does and would call it.
__attribute__((optimize("no-tree-loop-distribute-patterns"))) void
copyBytes(unsigned char* to, unsigned char const* from, std::size_t size)
{
    if (to <= from) {
        for (std::size_t i = 0; i < size; ++i) {
            to[i] = from[i];
        }
    } else {
        for (std::size_t i = size; i > 0; --i) {
            to[i - 1] = from[i - 1];
        }
    }
}

void* copy(void* to, void const* from, std::size_t size)
{
    if (size >= smallestCopy) {
        copies.fetch_add(1, std::memory_order_relaxed);
    }
    copyBytes(static_cast<unsigned char*>(to), static_cast<unsigned char const*>(from), size);
    return to;
}

__attribute__((destructor)) void tell()
{
    char const* const path = std::getenv("BENCHMARK_CALLS");
    int const file = path == nullptr ? -1 : open(path, O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (file != -1) {
        dprintf(file, "%lu %lu\n", allocations.load(), copies.load());
        close(file);
    }
}

} // namespace

extern "C" {

void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);

CALLS_EXPORT void* malloc(std::size_t size)
{
    allocations.fetch_add(1, std::memory_order_relaxed);
    return __libc_malloc(size);
}

CALLS_EXPORT void* calloc(std::size_t count, std::size_t size)
{
    allocations.fetch_add(1, std::memory_order_relaxed);
    return __libc_calloc(count, size);
}

CALLS_EXPORT void* realloc(void* memory, std::size_t size)
{
    allocations.fetch_add(1, std::memory_order_relaxed);
    return __libc_realloc(memory, size);
}

CALLS_EXPORT void* aligned_alloc(std::size_t alignment, std::size_t size)
{
    allocations.fetch_add(1, std::memory_order_relaxed);
    return __libc_memalign(alignment, size);
}

CALLS_EXPORT int posix_memalign(void** memory, std::size_t alignment, std::size_t size)
{
    allocations.fetch_add(1, std::memory_order_relaxed);
    *memory = __libc_memalign(alignment, size);
    return *memory == nullptr ? 12 : 0;
}

CALLS_EXPORT void* memcpy(void* to, void const* from, std::size_t size)
{
    return copy(to, from, size);
}

CALLS_EXPORT void* memmove(void* to, void const* from, std::size_t size)
{
    return copy(to, from, size);
}

CALLS_EXPORT void* mempcpy(void* to, void const* from, std::size_t size)
{
    return static_cast<char*>(copy(to, from, size)) + size;
}

} // extern "C"
