// SPDX-License-Identifier: MIT
#pragma once

#include "VirtualCameraExport.h"

#include <cstdint>
#include <string>

namespace VirtualCamera
{

/// The libv4l2 functions that a virtual camera answers.
enum class Call : std::uint8_t { Open, Close, Ioctl, Read, Mmap, Munmap };

/// Names a call that can be counted, searched for or made to fail: one of the functions, or one
/// ioctl request. `Call::Ioctl` without a request stands for an ioctl of any request.
/// Converts from both, so that a test can write `Call::Mmap` and `VIDIOC_DQBUF` alike.
struct VIRTUALCAMERA_EXPORT CallId
{
    // The conversions are wanted: they are what makes scripts readable.
    CallId(Call calledFunction) : function(calledFunction) {} // NOLINT
    CallId(unsigned long ioctlRequest)                        // NOLINT
        : function(Call::Ioctl), request(static_cast<std::uint32_t>(ioctlRequest)),
          anyRequest(false)
    {
    }
    CallId(unsigned int ioctlRequest)
        : CallId(static_cast<unsigned long>(ioctlRequest)) {} // NOLINT

    Call function;
    std::uint32_t request = 0;
    bool anyRequest = true;

    bool operator==(CallId const& other) const
    {
        return function == other.function && request == other.request &&
               anyRequest == other.anyRequest;
    }
    /// True when a call known by `actual` is one of those that this id stands for.
    bool covers(CallId const& actual) const
    {
        return function == actual.function && (anyRequest || request == actual.request);
    }
};

/// "open", "mmap", "VIDIOC_DQBUF", or the request in hexadecimal when it is not a known one.
VIRTUALCAMERA_EXPORT std::string callName(CallId const& call);

/// True for the functions and for the requests that have a name.
VIRTUALCAMERA_EXPORT bool isKnownCall(CallId const& call);

/// The reverse of `callName`; throws `std::invalid_argument` for a name that is none.
VIRTUALCAMERA_EXPORT CallId callByName(std::string const& name);

} // namespace VirtualCamera
