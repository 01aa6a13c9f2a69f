// SPDX-License-Identifier: MIT
#include "SharedPages.h"

#include <sys/mman.h>
#include <unistd.h>

namespace VirtualCamera
{

std::size_t roundToPages(std::size_t bytes)
{
    static auto const page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    return (bytes + page - 1) / page * page;
}

SharedPages::SharedPages(std::size_t bytes) : _size(roundToPages(bytes == 0 ? 1 : bytes))
{
    void* const base =
        mmap(nullptr, _size, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (base != MAP_FAILED)
        _base = static_cast<unsigned char*>(base);
}

SharedPages::~SharedPages()
{
    if (_base != nullptr)
        munmap(_base, _size);
}

void* SharedPages::mirror(std::size_t length, int protection) const
{
    // Resizing a shared mapping from zero bytes makes a second mapping of the same pages: no
    // descriptor is spent, so a test can count descriptors and run out of them undisturbed.
    void* const address = mremap(_base, 0, roundToPages(length), MREMAP_MAYMOVE);
    if (address == MAP_FAILED)
        return nullptr;
    if (protection != (PROT_READ | PROT_WRITE))
        mprotect(address, roundToPages(length), protection);
    return address;
}

} // namespace VirtualCamera
