// SPDX-License-Identifier: MIT
#include "RawCapture.h"

#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <system_error>
#include <unistd.h>

namespace KernelTest
{

namespace
{

v4l2_buffer makeBuffer(unsigned index = 0)
{
    v4l2_buffer buffer{};
    buffer.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    buffer.memory = V4L2_MEMORY_MMAP;
    buffer.index = index;
    return buffer;
}

RawCapture::Frame failed(int error)
{
    RawCapture::Frame frame;
    frame.error = error;
    return frame;
}

} // namespace

RawCapture::RawCapture(std::string const& node, std::uint32_t pixelFormat, unsigned width,
                       unsigned height, unsigned framesPerSecond, unsigned bufferCount)
    : m_descriptor(::open(node.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC))
{
    if (m_descriptor < 0) {
        throw std::system_error(errno, std::generic_category(), node);
    }
    try {
        setFormat(pixelFormat, width, height);
        setRate(framesPerSecond);
        mapBuffers(bufferCount);
        int type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
        call(VIDIOC_STREAMON, &type, "STREAMON");
    } catch (...) {
        release();
        throw;
    }
}

RawCapture::~RawCapture()
{
    release();
}

void RawCapture::release()
{
    int type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    ::ioctl(m_descriptor, VIDIOC_STREAMOFF, &type);
    for (Mapping const& mapping : m_mappings) {
        ::munmap(mapping.address, mapping.size);
    }
    ::close(m_descriptor);
}

void RawCapture::call(unsigned long request, void* argument, char const* what) const
{
    while (::ioctl(m_descriptor, request, argument) != 0) {
        if (errno != EINTR) {
            throw std::system_error(errno, std::generic_category(), what);
        }
    }
}

void RawCapture::setFormat(std::uint32_t pixelFormat, unsigned width, unsigned height) const
{
    v4l2_format format{};
    format.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    format.fmt.pix.width = width;
    format.fmt.pix.height = height;
    format.fmt.pix.pixelformat = pixelFormat;
    call(VIDIOC_S_FMT, &format, "S_FMT");
}

void RawCapture::setRate(unsigned framesPerSecond) const
{
    v4l2_streamparm parameters{};
    parameters.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    parameters.parm.capture.timeperframe = {1, framesPerSecond};
    call(VIDIOC_S_PARM, &parameters, "S_PARM");
}

void RawCapture::mapBuffers(unsigned count)
{
    v4l2_requestbuffers request{};
    request.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    request.memory = V4L2_MEMORY_MMAP;
    request.count = count;
    call(VIDIOC_REQBUFS, &request, "REQBUFS");
    for (unsigned index = 0; index < request.count; ++index) {
        v4l2_buffer buffer = makeBuffer(index);
        call(VIDIOC_QUERYBUF, &buffer, "QUERYBUF");
        void* address = ::mmap(nullptr, buffer.length, PROT_READ, MAP_SHARED, m_descriptor,
                               static_cast<off_t>(buffer.m.offset));
        if (address == MAP_FAILED) {
            throw std::system_error(errno, std::generic_category(), "mmap");
        }
        m_mappings.push_back({address, buffer.length});
        call(VIDIOC_QBUF, &buffer, "QBUF");
    }
}

RawCapture::Frame RawCapture::next(int timeoutMilliseconds)
{
    pollfd descriptor{m_descriptor, POLLIN, 0};
    if (::poll(&descriptor, 1, timeoutMilliseconds) == 0) {
        return failed(ETIMEDOUT);
    }
    v4l2_buffer buffer = makeBuffer();
    if (::ioctl(m_descriptor, VIDIOC_DQBUF, &buffer) != 0) {
        return failed(errno);
    }
    Frame frame;
    frame.sequence = buffer.sequence;
    frame.isCorrupted = (buffer.flags & V4L2_BUF_FLAG_ERROR) != 0;
    auto const* bytes = static_cast<std::uint8_t const*>(m_mappings[buffer.index].address);
    frame.bytes.assign(bytes, bytes + buffer.bytesused);
    ::ioctl(m_descriptor, VIDIOC_QBUF, &buffer);
    return frame;
}

} // namespace KernelTest
