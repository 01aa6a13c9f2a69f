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

namespace
{

// Resizing a shared mapping from zero bytes makes a second mapping of the same pages: no
// descriptor is spent, so a test can count descriptors and run out of them undisturbed.
void* mapAgain(void* base, std::size_t size)
{
    return mremap(base, 0, size, MREMAP_MAYMOVE);
}

bool canMapAgain(void* base, std::size_t size)
{
    void* const again = mapAgain(base, size);
    if (again != MAP_FAILED) {
        munmap(again, size);
    }
    return again != MAP_FAILED;
}

void* mapFile(int file, std::size_t size)
{
    return mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
}

} // namespace

SharedPages::SharedPages(std::size_t bytes) : m_size(roundToPages(bytes == 0 ? 1 : bytes))
{
    void* base = mmap(nullptr, m_size, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (base != MAP_FAILED && !canMapAgain(base, m_size)) {
        // Valgrind, for one, does not let mappings be made so.
        munmap(base, m_size);
        m_file = memfd_create("virtual camera buffer", MFD_CLOEXEC);
        base = ftruncate(m_file, static_cast<off_t>(m_size)) == 0 ? mapFile(m_file, m_size)
                                                                  : MAP_FAILED;
    }
    if (base != MAP_FAILED) {
        m_base = static_cast<unsigned char*>(base);
    }
}

SharedPages::~SharedPages()
{
    if (m_base != nullptr) {
        munmap(m_base, m_size);
    }
    if (m_file != -1) {
        close(m_file);
    }
}

void* SharedPages::mirror(std::size_t length, int protection) const
{
    std::size_t const size = roundToPages(length);
    void* const address = m_file == -1 ? mapAgain(m_base, size) : mapFile(m_file, size);
    if (address == MAP_FAILED) {
        return nullptr;
    }
    if (protection != (PROT_READ | PROT_WRITE)) {
        mprotect(address, size, protection);
    }
    return address;
}

} // namespace VirtualCamera
