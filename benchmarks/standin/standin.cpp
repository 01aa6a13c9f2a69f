// SPDX-License-Identifier: MIT
// A stand-in for libv4l2, to be preloaded: one camera that always has a frame and answers every
// call at once and at the same cost, so that what is left is what the caller adds. Environment:
//   STANDIN_FORMATS, STANDIN_INTERVALS, STANDIN_CONTROLS   how many it has (1, 1, 1)
//   STANDIN_DESCRIPTOR   the lowest descriptor that an opening gets (0)
//   STANDIN_AGAIN        1: every second DQBUF says EAGAIN first (0)
//   STANDIN_PACED        1: a frame comes only when all others were given back (0)
//   STANDIN_FIRST_AFTER  milliseconds from STREAMON to the first frame (0)
#include <fcntl.h>
#include <libv4l2.h>
#include <linux/videodev2.h>
#include <sys/eventfd.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <cstring>

#define STANDIN_EXPORT __attribute__((visibility("default")))

namespace
{

constexpr unsigned int mostBuffers = 32;
constexpr unsigned int width = 640;
constexpr unsigned int height = 480;
constexpr unsigned int imageSize = width * height * 2;

unsigned int setting(char const* name, unsigned int otherwise)
{
    char const* const text = std::getenv(name);
    return text == nullptr ? otherwise : static_cast<unsigned int>(std::strtoul(text, nullptr, 10));
}

struct Queue
{
    std::array<unsigned int, mostBuffers> indices{};
    unsigned int first = 0;
    unsigned int length = 0;
};

struct Camera
{
    unsigned int formats = setting("STANDIN_FORMATS", 1);
    unsigned int intervals = setting("STANDIN_INTERVALS", 1);
    unsigned int controls = setting("STANDIN_CONTROLS", 1);
    unsigned int descriptor = setting("STANDIN_DESCRIPTOR", 0);
    bool again = setting("STANDIN_AGAIN", 0) != 0;
    bool paced = setting("STANDIN_PACED", 0) != 0;
    unsigned int firstAfter = setting("STANDIN_FIRST_AFTER", 0);
    bool refusedLast = false;
    int file = -1; ///< Who streams; readable while there is a frame.
    unsigned int pixelFormat = V4L2_PIX_FMT_YUYV;
    unsigned int buffers = 0;
    unsigned int sequence = 0;
    Queue queue;
};

Camera camera;

int failWith(int error)
{
    errno = error;
    return -1;
}

template <std::size_t Room, std::size_t Length>
void setText(unsigned char (&field)[Room], char const (&text)[Length])
{
    static_assert(Length <= Room);
    std::memcpy(field, text, Length);
}

int describeCapability(v4l2_capability& capability)
{
    capability = {};
    setText(capability.driver, "standin");
    setText(capability.card, "Stand-in");
    setText(capability.bus_info, "usb-standin-1");
    capability.device_caps = V4L2_CAP_VIDEO_CAPTURE | V4L2_CAP_STREAMING | V4L2_CAP_EXT_PIX_FORMAT;
    capability.capabilities = capability.device_caps | V4L2_CAP_DEVICE_CAPS;
    return 0;
}

/// The first is a format that everybody knows, the others have numbers for names.
unsigned int formatCode(unsigned int index)
{
    return index == 0
               ? V4L2_PIX_FMT_YUYV
               : v4l2_fourcc('Z', '0' + index / 100 % 10, '0' + index / 10 % 10, '0' + index % 10);
}

int describeFormat(v4l2_fmtdesc& format)
{
    if (format.index >= camera.formats) {
        return failWith(EINVAL);
    }
    format.pixelformat = formatCode(format.index);
    format.flags = 0;
    setText(format.description, "Stand-in");
    return 0;
}

int describeSize(v4l2_frmsizeenum& size)
{
    if (size.index != 0) {
        return failWith(EINVAL);
    }
    size.type = V4L2_FRMSIZE_TYPE_DISCRETE;
    size.discrete = {width, height};
    return 0;
}

int describeInterval(v4l2_frmivalenum& interval)
{
    if (interval.index >= camera.intervals) {
        return failWith(EINVAL);
    }
    interval.type = V4L2_FRMIVAL_TYPE_DISCRETE;
    interval.discrete = {1, 30 + interval.index};
    return 0;
}

int transferFormat(v4l2_format& format, bool isTaken)
{
    if (isTaken) {
        camera.pixelFormat = format.fmt.pix.pixelformat;
    }
    format.fmt.pix = {};
    format.fmt.pix.width = width;
    format.fmt.pix.height = height;
    format.fmt.pix.pixelformat = camera.pixelFormat;
    format.fmt.pix.bytesperline = 2 * width;
    format.fmt.pix.sizeimage = imageSize;
    format.fmt.pix.field = V4L2_FIELD_NONE;
    return 0;
}

int describeInterval(v4l2_streamparm& parameters)
{
    parameters.parm.capture = {};
    parameters.parm.capture.capability = V4L2_CAP_TIMEPERFRAME;
    parameters.parm.capture.timeperframe = {1, 30};
    return 0;
}

int describeControl(v4l2_queryctrl& query)
{
    unsigned int const first = V4L2_CID_BASE;
    unsigned int id = query.id & V4L2_CTRL_ID_MASK;
    if ((query.id & V4L2_CTRL_FLAG_NEXT_CTRL) != 0) {
        id = std::max(id + 1, first);
    }
    if (id < first || id >= first + camera.controls) {
        return failWith(EINVAL);
    }
    query = {};
    query.id = id;
    query.type = V4L2_CTRL_TYPE_INTEGER;
    // Cheaper than printing, since it is counted as well.
    setText(query.name, "Control 000");
    query.name[8] = static_cast<unsigned char>('0' + (id - first) / 100 % 10);
    query.name[9] = static_cast<unsigned char>('0' + (id - first) / 10 % 10);
    query.name[10] = static_cast<unsigned char>('0' + (id - first) % 10);
    query.maximum = 255;
    query.step = 1;
    query.default_value = 128;
    return 0;
}

int requestBuffers(int file, v4l2_requestbuffers& request)
{
    if (request.memory != V4L2_MEMORY_MMAP) {
        return failWith(EINVAL);
    }
    request.count = std::min(request.count, mostBuffers);
    camera.buffers = request.count;
    camera.queue = {};
    camera.file = file;
    return 0;
}

void describeBuffer(v4l2_buffer& buffer)
{
    buffer.length = imageSize;
    buffer.m.offset = buffer.index * imageSize;
    buffer.flags = V4L2_BUF_FLAG_MAPPED;
}

int queryBuffer(v4l2_buffer& buffer)
{
    if (buffer.index >= camera.buffers) {
        return failWith(EINVAL);
    }
    describeBuffer(buffer);
    return 0;
}

int queueBuffer(v4l2_buffer const& buffer)
{
    Queue& queue = camera.queue;
    if (buffer.index >= camera.buffers || queue.length == mostBuffers) {
        return failWith(EINVAL);
    }
    queue.indices[(queue.first + queue.length) % mostBuffers] = buffer.index;
    ++queue.length;
    if (camera.paced && queue.length == camera.buffers) {
        eventfd_write(camera.file, 1);
    }
    return 0;
}

int dequeueBuffer(v4l2_buffer& buffer)
{
    Camera& device = camera;
    Queue& queue = device.queue;
    if (device.paced) {
        eventfd_t count = 0;
        if (eventfd_read(device.file, &count) == -1) {
            return -1;
        }
    }
    device.refusedLast = device.again && !device.refusedLast;
    if (device.refusedLast || queue.length == 0) {
        return failWith(EAGAIN);
    }
    buffer.index = queue.indices[queue.first];
    queue.first = (queue.first + 1) % mostBuffers;
    --queue.length;
    describeBuffer(buffer);
    buffer.bytesused = imageSize;
    buffer.sequence = device.sequence++;
    return 0;
}

int awaitFirstFrame(int file)
{
    itimerspec time{};
    time.it_value.tv_sec = camera.firstAfter / 1000;
    time.it_value.tv_nsec = camera.firstAfter % 1000 * 1000000L;
    return camera.firstAfter == 0 ? 0 : timerfd_settime(file, 0, &time, nullptr);
}

template <typename Record>
Record& as(void* argument)
{
    return *static_cast<Record*>(argument);
}

int answer(int file, unsigned int request, void* argument)
{
    switch (request) {
    case VIDIOC_DQBUF:
        return dequeueBuffer(as<v4l2_buffer>(argument));
    case VIDIOC_QBUF:
        return queueBuffer(as<v4l2_buffer>(argument));
    case VIDIOC_QUERYCAP:
        return describeCapability(as<v4l2_capability>(argument));
    case VIDIOC_ENUM_FMT:
        return describeFormat(as<v4l2_fmtdesc>(argument));
    case VIDIOC_ENUM_FRAMESIZES:
        return describeSize(as<v4l2_frmsizeenum>(argument));
    case VIDIOC_ENUM_FRAMEINTERVALS:
        return describeInterval(as<v4l2_frmivalenum>(argument));
    case VIDIOC_G_FMT:
    case VIDIOC_TRY_FMT:
    case VIDIOC_S_FMT:
        return transferFormat(as<v4l2_format>(argument), request == VIDIOC_S_FMT);
    case VIDIOC_G_PARM:
    case VIDIOC_S_PARM:
        return describeInterval(as<v4l2_streamparm>(argument));
    case VIDIOC_QUERYCTRL:
        return describeControl(as<v4l2_queryctrl>(argument));
    case VIDIOC_REQBUFS:
        return requestBuffers(file, as<v4l2_requestbuffers>(argument));
    case VIDIOC_QUERYBUF:
        return queryBuffer(as<v4l2_buffer>(argument));
    case VIDIOC_STREAMON:
        return awaitFirstFrame(file);
    case VIDIOC_STREAMOFF:
        return 0;
    default:
        return failWith(ENOTTY);
    }
}

/// A descriptor that is always readable, but for a paced camera, and from the first frame on for
/// one that takes its time.
int openDescriptor(unsigned int lowest)
{
    int const descriptor = camera.firstAfter != 0 ? timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK)
                                                  : eventfd(camera.paced ? 0 : 1, EFD_NONBLOCK);
    if (descriptor == -1 || lowest == 0) {
        return descriptor;
    }
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = limit.rlim_max;
    setrlimit(RLIMIT_NOFILE, &limit);
    int const high = fcntl(descriptor, F_DUPFD, static_cast<int>(lowest));
    close(descriptor);
    return high;
}

} // namespace

extern "C" {

STANDIN_EXPORT int v4l2_open(char const* /*file*/, int /*oflag*/, ...)
{
    return openDescriptor(camera.descriptor);
}

STANDIN_EXPORT int v4l2_fd_open(int fd, int /*v4l2_flags*/)
{
    return fd;
}

STANDIN_EXPORT int v4l2_dup(int fd)
{
    return dup(fd);
}

STANDIN_EXPORT int v4l2_close(int fd)
{
    return close(fd);
}

STANDIN_EXPORT int v4l2_ioctl(int fd, unsigned long int request, ...)
{
    va_list arguments;
    va_start(arguments, request);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    // Some callers keep the request in an int and hand it over with its sign extended.
    return answer(fd, static_cast<unsigned int>(request), argument);
}

STANDIN_EXPORT ssize_t v4l2_read(int /*fd*/, void* /*buffer*/, size_t /*n*/)
{
    return failWith(EINVAL);
}

STANDIN_EXPORT ssize_t v4l2_write(int /*fd*/, void const* /*buffer*/, size_t /*n*/)
{
    return failWith(EINVAL);
}

STANDIN_EXPORT int v4l2_set_control(int /*fd*/, int /*cid*/, int /*value*/)
{
    return failWith(EINVAL);
}

STANDIN_EXPORT int v4l2_get_control(int /*fd*/, int /*cid*/)
{
    return failWith(EINVAL);
}

STANDIN_EXPORT void* v4l2_mmap(void* start, size_t length, int prot, int /*flags*/, int /*fd*/,
                               int64_t /*offset*/)
{
    return mmap(start, length, prot, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
}

STANDIN_EXPORT int v4l2_munmap(void* start, size_t length)
{
    return munmap(start, length);
}

} // extern "C"
