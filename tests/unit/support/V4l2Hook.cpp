// SPDX-License-Identifier: MIT
#include "V4l2Hook.h"

#include <dlfcn.h>
#include <libv4l2.h>

#include <cstdarg>
#include <utility>

namespace
{

V4l2Hook::Ioctl ioctlHook;
V4l2Hook::Close closeHook;

} // namespace

V4l2Hook::V4l2Hook(Ioctl answer)
{
    ioctlHook = std::move(answer);
}

V4l2Hook::V4l2Hook(Close answer)
{
    closeHook = std::move(answer);
}

V4l2Hook::~V4l2Hook()
{
    ioctlHook = nullptr;
    closeHook = nullptr;
}

int V4l2Hook::realIoctl(int fd, unsigned long request, void* argument)
{
    static auto* const real =
        reinterpret_cast<decltype(&v4l2_ioctl)>(dlsym(RTLD_NEXT, "v4l2_ioctl"));
    return real(fd, request, argument);
}

int V4l2Hook::realClose(int fd)
{
    static auto* const real =
        reinterpret_cast<decltype(&v4l2_close)>(dlsym(RTLD_NEXT, "v4l2_close"));
    return real(fd);
}

extern "C" {

int v4l2_ioctl(int fd, unsigned long int request, ...)
{
    va_list arguments;
    va_start(arguments, request);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    return ioctlHook ? ioctlHook(fd, request, argument)
                     : V4l2Hook::realIoctl(fd, request, argument);
}

int v4l2_close(int fd)
{
    return closeHook ? closeHook(fd) : V4l2Hook::realClose(fd);
}

} // extern "C"
