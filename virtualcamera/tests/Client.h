// SPDX-License-Identifier: MIT
#pragma once

#include "SmallCamera.h"
#include "VirtualCamera.h"

#include <fcntl.h>
#include <libv4l2.h>
#include <linux/videodev2.h>
#include <poll.h>
#include <sys/mman.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <string>
#include <vector>

namespace VirtualCamera
{

/// A program's side of an open camera: each call gives 0, or the errno that it failed with.
class Client
{
public:
    explicit Client(std::string const& node = "/dev/video0", int flags = O_RDWR | O_NONBLOCK)
        : m_descriptor(v4l2_open(node.c_str(), flags)), m_openError(m_descriptor < 0 ? errno : 0)
    {
    }
    ~Client()
    {
        for (Mapping const& mapping : m_mappings) {
            v4l2_munmap(mapping.address, mapping.length);
        }
        close();
    }
    Client(Client const&) = delete;
    Client& operator=(Client const&) = delete;

    int descriptor() const { return m_descriptor; }
    int openError() const { return m_openError; }
    int close()
    {
        int const result = m_descriptor < 0 ? 0 : errorOf(v4l2_close(m_descriptor));
        m_descriptor = -1;
        return result;
    }

    template <typename Argument>
    int call(unsigned long request, Argument& argument) const
    {
        return errorOf(v4l2_ioctl(m_descriptor, request, &argument));
    }

    int request(unsigned count, unsigned memory = V4L2_MEMORY_MMAP, unsigned* granted = nullptr)
    {
        v4l2_requestbuffers request{};
        request.count = count;
        request.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
        request.memory = memory;
        int const result = call(VIDIOC_REQBUFS, request);
        if (granted != nullptr) {
            *granted = request.count;
        }
        return result;
    }

    static v4l2_buffer buffer(unsigned index = 0, unsigned memory = V4L2_MEMORY_MMAP)
    {
        v4l2_buffer buffer{};
        buffer.index = index;
        buffer.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
        buffer.memory = memory;
        return buffer;
    }
    int queue(unsigned index)
    {
        v4l2_buffer queued = buffer(index);
        return call(VIDIOC_QBUF, queued);
    }
    int queue(unsigned index, std::vector<unsigned char>& bytes)
    {
        v4l2_buffer queued = buffer(index, V4L2_MEMORY_USERPTR);
        queued.m.userptr = reinterpret_cast<unsigned long>(bytes.data());
        queued.length = static_cast<__u32>(bytes.size());
        return call(VIDIOC_QBUF, queued);
    }
    int dequeue(v4l2_buffer& dequeued)
    {
        unsigned const usual = V4L2_MEMORY_MMAP;
        dequeued = buffer(0, dequeued.memory == 0 ? usual : dequeued.memory);
        return call(VIDIOC_DQBUF, dequeued);
    }
    int stream(bool on)
    {
        int type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
        return call(on ? VIDIOC_STREAMON : VIDIOC_STREAMOFF, type);
    }
    /// Requests, maps and queues buffers, and streams; the first error.
    int start(unsigned count)
    {
        if (int const error = request(count)) {
            return error;
        }
        for (unsigned index = 0; index < count; ++index) {
            if (int const error = map(index)) {
                return error;
            }
            if (int const error = queue(index)) {
                return error;
            }
        }
        return stream(true);
    }
    /// Requests buffers, lends one, and streams; the first error.
    int startInto(std::vector<unsigned char>& bytes)
    {
        if (int const error = request(1, V4L2_MEMORY_USERPTR)) {
            return error;
        }
        if (int const error = queue(0, bytes)) {
            return error;
        }
        return stream(true);
    }
    int map(unsigned index)
    {
        v4l2_buffer queried = buffer(index);
        if (int const error = call(VIDIOC_QUERYBUF, queried)) {
            return error;
        }
        void* const address = v4l2_mmap(nullptr, queried.length, PROT_READ | PROT_WRITE, MAP_SHARED,
                                        m_descriptor, queried.m.offset);
        if (address == MAP_FAILED) {
            return errno;
        }
        m_mappings.push_back({address, queried.length});
        return 0;
    }
    int unmapAll()
    {
        for (Mapping const& mapping : m_mappings) {
            if (v4l2_munmap(mapping.address, mapping.length) != 0) {
                return errno;
            }
        }
        m_mappings.clear();
        return 0;
    }
    unsigned char* mapped(unsigned index) const
    {
        return static_cast<unsigned char*>(m_mappings.at(index).address);
    }

    /// True when the node becomes readable in time.
    bool readable(int milliseconds) const
    {
        pollfd waiting{m_descriptor, POLLIN, 0};
        return poll(&waiting, 1, milliseconds) == 1;
    }

    static int errorOf(int result) { return result == 0 ? 0 : errno; }

private:
    struct Mapping
    {
        void* address;
        std::size_t length;
    };

    int m_descriptor;
    int m_openError;
    std::vector<Mapping> m_mappings;
};

} // namespace VirtualCamera
