// SPDX-License-Identifier: MIT
#include "PassThrough.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <libv4l2.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

namespace
{

std::atomic<bool> isStraight{false};

/// The function of this name in libv4l2. It is opened by hand: since nothing of it seems to be used
/// here, a linker may leave it out.
template <typename Function>
Function* libraryFunction(Function* /*ours*/, char const* name)
{
    static void* const library = dlopen("libv4l2.so.0", RTLD_NOW);
    void* const address = library == nullptr ? nullptr : dlsym(library, name);
    if (address == nullptr) {
        std::fprintf(stderr, "libv4l2 has no %s: %s\n", name, dlerror());
        std::abort();
    }
    return reinterpret_cast<Function*>(address);
}

} // namespace

namespace KernelTest
{

PassThrough::PassThrough()
{
    isStraight = true;
}

PassThrough::~PassThrough()
{
    isStraight = false;
}

} // namespace KernelTest

extern "C" {

int v4l2_open(char const* file, int flags, ...)
{
    static auto* const real = libraryFunction(v4l2_open, "v4l2_open");
    return isStraight ? ::open(file, flags) : real(file, flags);
}

int v4l2_close(int fd)
{
    static auto* const real = libraryFunction(v4l2_close, "v4l2_close");
    return isStraight ? ::close(fd) : real(fd);
}

int v4l2_ioctl(int fd, unsigned long int request, ...)
{
    static auto* const real = libraryFunction(v4l2_ioctl, "v4l2_ioctl");
    va_list arguments;
    va_start(arguments, request);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    return isStraight ? ::ioctl(fd, request, argument) : real(fd, request, argument);
}

ssize_t v4l2_read(int fd, void* buffer, size_t size)
{
    static auto* const real = libraryFunction(v4l2_read, "v4l2_read");
    return isStraight ? ::read(fd, buffer, size) : real(fd, buffer, size);
}

void* v4l2_mmap(void* start, size_t length, int protection, int flags, int fd, int64_t offset)
{
    static auto* const real = libraryFunction(v4l2_mmap, "v4l2_mmap");
    return isStraight ? ::mmap(start, length, protection, flags, fd, offset)
                      : real(start, length, protection, flags, fd, offset);
}

int v4l2_munmap(void* start, size_t length)
{
    static auto* const real = libraryFunction(v4l2_munmap, "v4l2_munmap");
    return isStraight ? ::munmap(start, length) : real(start, length);
}

} // extern "C"
