// SPDX-License-Identifier: MIT
// The functions of libv4l2, answered for virtual cameras and handed on for everything else.
#include "Registry.h"
#include "VirtualCameraExport.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <libv4l2.h>
#include <sys/mman.h>

#include <cerrno>
#include <cstdarg>

using VirtualCamera::CameraDriver;
using VirtualCamera::MappingTicket;
using VirtualCamera::Registry;

namespace
{

template <typename Function>
Function* realFunction(char const* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

int failWith(int error)
{
    errno = error;
    return -1;
}

int resultOf(int result)
{
    return result < 0 ? failWith(-result) : result;
}

} // namespace

extern "C" {

VIRTUALCAMERA_EXPORT int v4l2_open(char const* file, int oflag, ...)
{
    mode_t mode = 0;
    if ((oflag & O_CREAT) != 0) {
        va_list arguments;
        va_start(arguments, oflag);
        mode = va_arg(arguments, mode_t); // NOLINT: started in the line above
        va_end(arguments);
    }
    auto const device = file == nullptr ? nullptr : Registry::instance().byNode(file);
    if (device) {
        if (Registry::instance().isFull()) {
            return failWith(EBUSY);
        }
        int const descriptor = device->open(file, oflag);
        if (descriptor >= 0) {
            Registry::instance().addDescriptor(descriptor, device);
        }
        return resultOf(descriptor);
    }
    static auto* const real = realFunction<decltype(v4l2_open)>("v4l2_open");
    return real != nullptr ? real(file, oflag, mode) : failWith(ENOENT);
}

VIRTUALCAMERA_EXPORT int v4l2_close(int fd)
{
    if (auto const device = Registry::instance().byDescriptor(fd)) {
        // Forgotten first: once closed, the number may belong to another thread's next open.
        Registry::instance().removeDescriptor(fd);
        int const result = device->close(fd);
        if (result == -EINTR) {
            Registry::instance().addDescriptor(fd, device);
        }
        return resultOf(result);
    }
    static auto* const real = realFunction<decltype(v4l2_close)>("v4l2_close");
    return real != nullptr ? real(fd) : failWith(EBADF);
}

VIRTUALCAMERA_EXPORT int v4l2_ioctl(int fd, unsigned long int request, ...)
{
    va_list arguments;
    va_start(arguments, request);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    // Callers that keep the request in an int hand it over with its sign extended.
    if (auto const device = Registry::instance().byDescriptor(fd)) {
        return resultOf(device->ioctl(fd, static_cast<std::uint32_t>(request), argument));
    }
    static auto* const real = realFunction<decltype(v4l2_ioctl)>("v4l2_ioctl");
    return real != nullptr ? real(fd, request, argument) : failWith(EBADF);
}

VIRTUALCAMERA_EXPORT ssize_t v4l2_read(int fd, void* buffer, size_t n)
{
    if (auto const device = Registry::instance().byDescriptor(fd)) {
        std::int64_t const result = device->read(fd, buffer, n);
        return result < 0 ? failWith(static_cast<int>(-result)) : static_cast<ssize_t>(result);
    }
    static auto* const real = realFunction<decltype(v4l2_read)>("v4l2_read");
    return real != nullptr ? real(fd, buffer, n) : failWith(EBADF);
}

VIRTUALCAMERA_EXPORT void* v4l2_mmap(void* start, size_t length, int prot, int flags, int fd,
                                     int64_t offset)
{
    if (auto const device = Registry::instance().byDescriptor(fd)) {
        MappingTicket ticket;
        int const result = device->map(fd, length, prot, flags, offset, ticket);
        if (result < 0) {
            errno = -result;
            return MAP_FAILED;
        }
        Registry::instance().addMapping(ticket, device);
        return ticket.address;
    }
    static auto* const real = realFunction<decltype(v4l2_mmap)>("v4l2_mmap");
    if (real != nullptr) {
        return real(start, length, prot, flags, fd, offset);
    }
    errno = EBADF;
    return MAP_FAILED;
}

VIRTUALCAMERA_EXPORT int v4l2_munmap(void* m_start, size_t length)
{
    MappingTicket ticket;
    std::shared_ptr<CameraDriver> device;
    if (Registry::instance().findMapping(m_start, ticket, device)) {
        // Unmapping a part would leave the rest behind for good.
        if (VirtualCamera::roundToPages(length) != VirtualCamera::roundToPages(ticket.length)) {
            return failWith(EINVAL);
        }
        // Forgotten first: once unmapped, the address may become another thread's next mapping.
        Registry::instance().removeMapping(m_start);
        int const result = device->unmap(ticket);
        if (result < 0) {
            Registry::instance().addMapping(ticket, device);
        }
        return resultOf(result);
    }
    static auto* const real = realFunction<decltype(v4l2_munmap)>("v4l2_munmap");
    return real != nullptr ? real(m_start, length) : failWith(EINVAL);
}

} // extern "C"
