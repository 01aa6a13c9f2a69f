// SPDX-License-Identifier: MIT
// A program that knows nothing of virtual cameras, to be run on them.
#include <fcntl.h>
#include <libudev.h>
#include <libv4l2.h>
#include <linux/videodev2.h>
#include <poll.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

namespace
{

int showCard(char const* node)
{
    int const file = v4l2_open(node, O_RDWR | O_NONBLOCK);
    v4l2_capability capability{};
    if (file < 0 || v4l2_ioctl(file, VIDIOC_QUERYCAP, &capability) != 0) {
        return 1;
    }
    std::printf("%s\n", reinterpret_cast<char const*>(capability.card));
    return v4l2_close(file);
}

int showCapabilities(char const* node)
{
    int const file = v4l2_open(node, O_RDWR | O_NONBLOCK);
    v4l2_capability capability{};
    if (file < 0 || v4l2_ioctl(file, VIDIOC_QUERYCAP, &capability) != 0) {
        return 1;
    }
    std::printf("%08x %08x\n", capability.capabilities, capability.device_caps);
    return v4l2_close(file);
}

/// Streams until `count` frames have come or the camera is gone.
int stream(char const* node, int count)
{
    int const file = v4l2_open(node, O_RDWR | O_NONBLOCK);
    v4l2_requestbuffers request{};
    request.count = 2;
    request.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    request.memory = V4L2_MEMORY_MMAP;
    if (file < 0 || v4l2_ioctl(file, VIDIOC_REQBUFS, &request) != 0) {
        return 1;
    }
    v4l2_buffer buffer{};
    buffer.type = request.type;
    buffer.memory = request.memory;
    for (buffer.index = 0; buffer.index < request.count; ++buffer.index) {
        if (v4l2_ioctl(file, VIDIOC_QBUF, &buffer) != 0) {
            return 1;
        }
    }
    int type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    if (v4l2_ioctl(file, VIDIOC_STREAMON, &type) != 0) {
        return 1;
    }
    std::printf("streaming\n");
    std::fflush(stdout);
    for (int frame = 0; frame < count;) {
        pollfd waiting{file, POLLIN, 0};
        poll(&waiting, 1, 2000);
        if (v4l2_ioctl(file, VIDIOC_DQBUF, &buffer) != 0) {
            if (errno == EAGAIN) {
                continue;
            }
            std::printf("%s\n", strerrorname_np(errno));
            return 2;
        }
        std::printf("frame %u\n", buffer.sequence);
        ++frame;
        v4l2_ioctl(file, VIDIOC_QBUF, &buffer);
    }
    return v4l2_close(file);
}

/// Asks the camera behind a tty for the length of its focus control, and prints the reply.
int exchange(char const* node)
{
    int const file = open(node, O_RDWR | O_NOCTTY);
    unsigned char const request[] = {0xa1, 0x85, 0x00, 0x06, 0x00, 0x01, 0x02, 0x00};
    if (file < 0 || write(file, request, sizeof request) != sizeof request) {
        return 1;
    }
    for (int byte = 0; byte < 10; ++byte) {
        unsigned char answer = 0;
        pollfd waiting{file, POLLIN, 0};
        if (poll(&waiting, 1, 5000) != 1 || read(file, &answer, 1) != 1) {
            return 2;
        }
        std::printf("%02x", answer);
    }
    std::printf("\n");
    return close(file);
}

/// Prints uevents of video devices until `count` have come.
int watch(int count)
{
    udev* const context = udev_new();
    udev_monitor* const monitor = udev_monitor_new_from_netlink(context, "udev");
    udev_monitor_filter_add_match_subsystem_devtype(monitor, "video4linux", nullptr);
    udev_monitor_enable_receiving(monitor);
    for (; count > 0; --count) {
        pollfd waiting{udev_monitor_get_fd(monitor), POLLIN, 0};
        if (poll(&waiting, 1, 20000) != 1) {
            return 1;
        }
        udev_device* const device = udev_monitor_receive_device(monitor);
        std::printf("%s %s\n", udev_device_get_action(device), udev_device_get_devnode(device));
        udev_device_unref(device);
    }
    udev_monitor_unref(monitor);
    udev_unref(context);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    std::string const what = argc > 1 ? argv[1] : "";
    if (what == "card" && argc > 2) {
        return showCard(argv[2]);
    }
    if (what == "capabilities" && argc > 2) {
        return showCapabilities(argv[2]);
    }
    if (what == "stream" && argc > 3) {
        return stream(argv[2], std::stoi(argv[3]));
    }
    if (what == "exchange" && argc > 2) {
        return exchange(argv[2]);
    }
    if (what == "watch" && argc > 2) {
        return watch(std::stoi(argv[2]));
    }
    return 64;
}
