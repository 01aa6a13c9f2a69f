// SPDX-License-Identifier: MIT
// The yardstick: what a careful developer writes by hand for one camera whose frames are mapped.
#include "Run.h"

#include <fcntl.h>
#include <libv4l2.h>
#include <linux/videodev2.h>
#include <sys/mman.h>
#include <sys/select.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>

namespace
{

struct Buffer
{
    void* address = nullptr;
    std::size_t length = 0;
};

std::array<Buffer, 64> buffers;

int call(int fd, unsigned long request, void* argument)
{
    int result;
    do {
        result = v4l2_ioctl(fd, request, argument);
    } while (result == -1 && errno == EINTR);
    return result;
}

void require(bool isDone, char const* what)
{
    if (!isDone) {
        std::perror(what);
        std::exit(EXIT_FAILURE);
    }
}

v4l2_buffer bufferRecord(unsigned int index)
{
    v4l2_buffer buffer{};
    buffer.index = index;
    buffer.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    buffer.memory = V4L2_MEMORY_MMAP;
    return buffer;
}

void readIntervals(int fd, unsigned int format, v4l2_frmsize_discrete const& size)
{
    v4l2_frmivalenum interval{};
    interval.pixel_format = format;
    interval.width = size.width;
    interval.height = size.height;
    while (call(fd, VIDIOC_ENUM_FRAMEINTERVALS, &interval) == 0) {
        ++interval.index;
    }
}

void readFormats(int fd)
{
    v4l2_fmtdesc format{};
    format.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    for (; call(fd, VIDIOC_ENUM_FMT, &format) == 0; ++format.index) {
        v4l2_frmsizeenum size{};
        size.pixel_format = format.pixelformat;
        for (; call(fd, VIDIOC_ENUM_FRAMESIZES, &size) == 0; ++size.index) {
            readIntervals(fd, format.pixelformat, size.discrete);
        }
    }
}

void readControls(int fd)
{
    v4l2_queryctrl control{};
    control.id = V4L2_CTRL_FLAG_NEXT_CTRL;
    while (call(fd, VIDIOC_QUERYCTRL, &control) == 0) {
        bool const isMenu =
            control.type == V4L2_CTRL_TYPE_MENU || control.type == V4L2_CTRL_TYPE_INTEGER_MENU;
        for (int index = control.minimum; isMenu && index <= control.maximum; ++index) {
            v4l2_querymenu item{};
            item.id = control.id;
            item.index = static_cast<unsigned int>(index);
            call(fd, VIDIOC_QUERYMENU, &item);
        }
        control.id |= V4L2_CTRL_FLAG_NEXT_CTRL;
    }
}

unsigned int mapBuffers(int fd, unsigned int wanted)
{
    v4l2_requestbuffers request{};
    request.count = wanted;
    request.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    request.memory = V4L2_MEMORY_MMAP;
    require(call(fd, VIDIOC_REQBUFS, &request) == 0 && request.count <= buffers.size(), "REQBUFS");
    for (unsigned int index = 0; index < request.count; ++index) {
        v4l2_buffer buffer = bufferRecord(index);
        require(call(fd, VIDIOC_QUERYBUF, &buffer) == 0, "QUERYBUF");
        buffers[index].length = buffer.length;
        buffers[index].address = v4l2_mmap(nullptr, buffer.length, PROT_READ | PROT_WRITE,
                                           MAP_SHARED, fd, buffer.m.offset);
        require(buffers[index].address != MAP_FAILED, "mmap");
        require(call(fd, VIDIOC_QBUF, &buffer) == 0, "QBUF");
    }
    return request.count;
}

void waitForFrame(int fd)
{
    int ready;
    do {
        fd_set set;
        FD_ZERO(&set);
        FD_SET(fd, &set);
        timeval timeout{2, 0};
        ready = select(fd + 1, &set, nullptr, nullptr, &timeout);
    } while (ready == -1 && errno == EINTR);
    require(ready == 1, "select");
}

void takeFrame(int fd)
{
    v4l2_buffer buffer = bufferRecord(0);
    int taken;
    do {
        waitForFrame(fd);
        taken = call(fd, VIDIOC_DQBUF, &buffer);
    } while (taken == -1 && errno == EAGAIN);
    require(taken == 0, "DQBUF");
    // Here the picture would be looked at, in buffers[buffer.index].
    require(call(fd, VIDIOC_QBUF, &buffer) == 0, "QBUF");
}

} // namespace

int main(int argc, char** argv)
{
    Run const run = parseRun(argc, argv);
    int const fd = v4l2_open(run.node, O_RDWR | O_NONBLOCK);
    require(fd != -1, run.node);
    if (fd >= FD_SETSIZE) {
        std::fputs("bare-loop: select takes no descriptor above 1023\n", stderr);
        return EXIT_FAILURE;
    }
    if (run.listed) {
        readFormats(fd);
        readControls(fd);
    }
    unsigned int const count = mapBuffers(fd, run.buffers);
    int type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    require(call(fd, VIDIOC_STREAMON, &type) == 0, "STREAMON");
    streamIsOn(run);
    for (unsigned int frame = 0; frame < run.frames; ++frame) {
        takeFrame(fd);
        if (frame == 0) {
            announceFrame(run);
        }
    }
    framesAreThrough();
    require(call(fd, VIDIOC_STREAMOFF, &type) == 0, "STREAMOFF");
    for (unsigned int index = 0; index < count; ++index) {
        v4l2_munmap(buffers[index].address, buffers[index].length);
    }
    v4l2_close(fd);
    report(run);
}
