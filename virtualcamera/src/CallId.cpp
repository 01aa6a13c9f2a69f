// SPDX-License-Identifier: MIT
#include "CallId.h"

#include <linux/uvcvideo.h>
#include <linux/videodev2.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <stdexcept>

namespace VirtualCamera
{

namespace
{

struct NamedCall
{
    char const* name;
    CallId call;
};

std::array<NamedCall, 44> const& namedCalls()
{
#define VIRTUALCAMERA_REQUEST(request)                                                             \
    {                                                                                              \
#request, CallId(static_cast <unsigned long>(request))                                     \
    }
    static std::array<NamedCall, 44> const calls{{
        {"open", Call::Open},
        {"close", Call::Close},
        {"ioctl", Call::Ioctl},
        {"read", Call::Read},
        {"mmap", Call::Mmap},
        {"munmap", Call::Munmap},
        VIRTUALCAMERA_REQUEST(VIDIOC_QUERYCAP),
        VIRTUALCAMERA_REQUEST(VIDIOC_ENUM_FMT),
        VIRTUALCAMERA_REQUEST(VIDIOC_ENUM_FRAMESIZES),
        VIRTUALCAMERA_REQUEST(VIDIOC_ENUM_FRAMEINTERVALS),
        VIRTUALCAMERA_REQUEST(VIDIOC_G_FMT),
        VIRTUALCAMERA_REQUEST(VIDIOC_S_FMT),
        VIRTUALCAMERA_REQUEST(VIDIOC_TRY_FMT),
        VIRTUALCAMERA_REQUEST(VIDIOC_G_PARM),
        VIRTUALCAMERA_REQUEST(VIDIOC_S_PARM),
        VIRTUALCAMERA_REQUEST(VIDIOC_REQBUFS),
        VIRTUALCAMERA_REQUEST(VIDIOC_QUERYBUF),
        VIRTUALCAMERA_REQUEST(VIDIOC_QBUF),
        VIRTUALCAMERA_REQUEST(VIDIOC_DQBUF),
        VIRTUALCAMERA_REQUEST(VIDIOC_STREAMON),
        VIRTUALCAMERA_REQUEST(VIDIOC_STREAMOFF),
        VIRTUALCAMERA_REQUEST(VIDIOC_EXPBUF),
        VIRTUALCAMERA_REQUEST(VIDIOC_CREATE_BUFS),
        VIRTUALCAMERA_REQUEST(VIDIOC_PREPARE_BUF),
        VIRTUALCAMERA_REQUEST(VIDIOC_QUERYCTRL),
        VIRTUALCAMERA_REQUEST(VIDIOC_QUERY_EXT_CTRL),
        VIRTUALCAMERA_REQUEST(VIDIOC_QUERYMENU),
        VIRTUALCAMERA_REQUEST(VIDIOC_G_CTRL),
        VIRTUALCAMERA_REQUEST(VIDIOC_S_CTRL),
        VIRTUALCAMERA_REQUEST(VIDIOC_G_EXT_CTRLS),
        VIRTUALCAMERA_REQUEST(VIDIOC_S_EXT_CTRLS),
        VIRTUALCAMERA_REQUEST(VIDIOC_TRY_EXT_CTRLS),
        VIRTUALCAMERA_REQUEST(VIDIOC_ENUMINPUT),
        VIRTUALCAMERA_REQUEST(VIDIOC_G_INPUT),
        VIRTUALCAMERA_REQUEST(VIDIOC_S_INPUT),
        VIRTUALCAMERA_REQUEST(VIDIOC_G_PRIORITY),
        VIRTUALCAMERA_REQUEST(VIDIOC_S_PRIORITY),
        VIRTUALCAMERA_REQUEST(VIDIOC_G_STD),
        VIRTUALCAMERA_REQUEST(VIDIOC_CROPCAP),
        VIRTUALCAMERA_REQUEST(VIDIOC_G_SELECTION),
        VIRTUALCAMERA_REQUEST(VIDIOC_SUBSCRIBE_EVENT),
        VIRTUALCAMERA_REQUEST(VIDIOC_DQEVENT),
        VIRTUALCAMERA_REQUEST(UVCIOC_CTRL_MAP),
        VIRTUALCAMERA_REQUEST(UVCIOC_CTRL_QUERY),
    }};
#undef VIRTUALCAMERA_REQUEST
    return calls;
}

} // namespace

std::string callName(CallId const& call)
{
    for (NamedCall const& named : namedCalls()) {
        if (named.call == call) {
            return named.name;
        }
    }
    char text[16];
    std::snprintf(text, sizeof text, "0x%08x", call.request);
    return text;
}

bool isKnownCall(CallId const& call)
{
    auto const same = [&call](NamedCall const& named) { return named.call == call; };
    return std::any_of(namedCalls().begin(), namedCalls().end(), same);
}

CallId callByName(std::string const& name)
{
    for (NamedCall const& named : namedCalls()) {
        if (name == named.name) {
            return named.call;
        }
    }
    if (name.size() > 2 && name[0] == '0' && name[1] == 'x') {
        return CallId(std::stoul(name, nullptr, 16));
    }
    throw std::invalid_argument("no call is named \"" + name + "\"");
}

} // namespace VirtualCamera
