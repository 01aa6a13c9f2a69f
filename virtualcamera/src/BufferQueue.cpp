// SPDX-License-Identifier: MIT
#include "BufferQueue.h"

#include <sys/mman.h>

#include <algorithm>
#include <cerrno>

namespace VirtualCamera
{

namespace
{
constexpr std::uint32_t captureType = V4L2_BUF_TYPE_VIDEO_CAPTURE;
constexpr std::uint32_t mostBuffers = VIDEO_MAX_FRAME;
} // namespace

BufferQueue::BufferQueue(CameraScript const& script) : _script(script)
{
    _buffers.reserve(mostBuffers);
    _queued.reserve(mostBuffers);
    _done.reserve(mostBuffers);
}

bool BufferQueue::offered(std::uint32_t memory) const
{
    return (memory == V4L2_MEMORY_MMAP && _script.mmapOffered) ||
           (memory == V4L2_MEMORY_USERPTR && _script.userPointersOffered);
}

std::uint32_t BufferQueue::granted(std::uint32_t wanted) const
{
    std::uint32_t count = std::max(wanted, _script.fewestBuffers);
    if (_script.mostBuffers)
        count = std::min(count, *_script.mostBuffers);
    return std::min(count, mostBuffers);
}

int BufferQueue::request(int file, v4l2_requestbuffers& request, std::uint32_t sizeImage)
{
    if (request.type != captureType || !offered(request.memory))
        return -EINVAL;
    if (ownedByOther(file) || _reading || _streaming)
        return -EBUSY;
    auto const mapped = [](Buffer const& buffer) { return buffer.mappings != 0; };
    if (std::any_of(_buffers.begin(), _buffers.end(), mapped))
        return -EBUSY;
    free();
    request.capabilities = (_script.mmapOffered ? V4L2_BUF_CAP_SUPPORTS_MMAP : 0u) |
                           (_script.userPointersOffered ? V4L2_BUF_CAP_SUPPORTS_USERPTR : 0u);
    if (request.count == 0)
        return 0;
    request.count = granted(request.count);
    if (int const failed = allocate(request.count, request.memory, sizeImage))
        return failed;
    if (request.count != 0)
        _owner = file;
    return 0;
}

int BufferQueue::allocate(std::uint32_t count, std::uint32_t memory, std::uint32_t sizeImage)
{
    ++_generation;
    _memory = memory;
    _sizeImage = sizeImage;
    for (std::uint32_t index = 0; index < count; ++index) {
        Buffer buffer;
        if (memory == V4L2_MEMORY_MMAP) {
            buffer.length = sizeImage;
            buffer.pages = std::make_shared<SharedPages>(sizeImage);
            if (!buffer.pages->valid()) {
                free();
                return -ENOMEM;
            }
        }
        _buffers.push_back(std::move(buffer));
    }
    return 0;
}

void BufferQueue::free()
{
    stop();
    _buffers.clear();
    _owner = -1;
    _reading = false;
}

void BufferQueue::stop()
{
    _streaming = false;
    _waitingForBuffers = true;
    _queued.clear();
    _done.clear();
    for (Buffer& buffer : _buffers)
        buffer.state = Buffer::State::Dequeued;
}

void BufferQueue::describe(unsigned index, v4l2_buffer& buffer) const
{
    Buffer const& known = _buffers[index];
    buffer.index = index;
    buffer.type = captureType;
    buffer.memory = _memory;
    buffer.length = known.length;
    buffer.field = V4L2_FIELD_NONE;
    buffer.flags = V4L2_BUF_FLAG_TIMESTAMP_MONOTONIC | V4L2_BUF_FLAG_TSTAMP_SRC_SOE;
    if (known.mappings != 0)
        buffer.flags |= V4L2_BUF_FLAG_MAPPED;
    if (known.state == Buffer::State::Queued)
        buffer.flags |= V4L2_BUF_FLAG_QUEUED;
    if (known.state == Buffer::State::Done)
        buffer.flags |= V4L2_BUF_FLAG_DONE;
    if (_memory == V4L2_MEMORY_MMAP)
        buffer.m.offset = static_cast<__u32>(index * roundToPages(_sizeImage));
    else
        buffer.m.userptr = known.userPointer;
}

int BufferQueue::query(v4l2_buffer& buffer) const
{
    if (buffer.type != captureType || buffer.index >= count() || _reading)
        return -EINVAL;
    describe(buffer.index, buffer);
    buffer.bytesused = 0;
    return 0;
}

int BufferQueue::queue(int file, v4l2_buffer& buffer)
{
    if (buffer.type != captureType)
        return -EINVAL;
    if (ownedByOther(file) || _reading)
        return -EBUSY;
    if (buffer.index >= count() || buffer.memory != _memory)
        return -EINVAL;
    Buffer& known = _buffers[buffer.index];
    if (known.state != Buffer::State::Dequeued)
        return -EINVAL;
    if (_memory == V4L2_MEMORY_USERPTR) {
        if (buffer.m.userptr == 0 || buffer.length < _sizeImage)
            return -EINVAL;
        known.userPointer = buffer.m.userptr;
        known.length = buffer.length;
    }
    requeue(known);
    describe(buffer.index, buffer);
    return 0;
}

void BufferQueue::requeue(Buffer& buffer)
{
    buffer.state = Buffer::State::Queued;
    _queued.push_back(static_cast<unsigned>(&buffer - _buffers.data()));
    _waitingForBuffers = false;
}

int BufferQueue::streamOn(int file, int type)
{
    if (type != static_cast<int>(captureType))
        return -EINVAL;
    if (ownedByOther(file) || _reading)
        return -EBUSY;
    if (_buffers.empty())
        return -EINVAL;
    _streaming = true;
    return 0;
}

int BufferQueue::streamOff(int file, int type)
{
    if (type != static_cast<int>(captureType))
        return -EINVAL;
    if (_reading)
        return -EBUSY;
    // libv4l2 passes this on only for a descriptor that streams.
    if (streamsTo(file))
        stop();
    return 0;
}

int BufferQueue::checkDequeue(int file, v4l2_buffer const& buffer) const
{
    if (buffer.type != captureType)
        return -EINVAL;
    if (ownedByOther(file) || _reading)
        return -EBUSY;
    return _streaming ? 0 : -EINVAL;
}

Buffer& BufferQueue::dequeue(v4l2_buffer& buffer)
{
    unsigned const index = _done.front();
    _done.erase(_done.begin());
    Buffer& known = _buffers[index];
    known.state = Buffer::State::Dequeued;
    describe(index, buffer);
    buffer.sequence = known.frame;
    buffer.timestamp = known.timestamp;
    return known;
}

int BufferQueue::map(std::size_t length, int protection, std::int64_t offset, void*& address,
                     unsigned& index)
{
    if (_reading)
        return -EBUSY;
    if (_memory != V4L2_MEMORY_MMAP || length == 0 || (protection & PROT_READ) == 0)
        return -EINVAL;
    auto const spacing = static_cast<std::int64_t>(roundToPages(_sizeImage));
    if (offset < 0 || offset % spacing != 0 || offset / spacing >= count())
        return -EINVAL;
    index = static_cast<unsigned>(offset / spacing);
    if (roundToPages(length) > static_cast<std::size_t>(spacing))
        return -EINVAL;
    address = _buffers[index].pages->mirror(length, protection);
    if (address == nullptr)
        return -ENOMEM;
    ++_buffers[index].mappings;
    return 0;
}

void BufferQueue::unmapped(unsigned generation, unsigned index)
{
    if (generation == _generation && index < count())
        --_buffers[index].mappings;
}

int BufferQueue::startReading(int file, std::uint32_t sizeImage)
{
    constexpr std::uint32_t ownBuffers = 2;
    if (ownedByOther(file) || !_buffers.empty())
        return -EBUSY;
    if (int const failed = allocate(ownBuffers, 0, sizeImage))
        return failed;
    _owner = file;
    _reading = true;
    _streaming = true;
    for (Buffer& buffer : _buffers)
        requeue(buffer);
    return 0;
}

void BufferQueue::closed(int file)
{
    if (_owner == file)
        free();
}

void BufferQueue::complete(std::uint32_t frame, timeval const& timestamp)
{
    unsigned const index = _queued.front();
    _queued.erase(_queued.begin());
    _buffers[index].state = Buffer::State::Done;
    _buffers[index].frame = frame;
    _buffers[index].timestamp = timestamp;
    _done.push_back(index);
}

} // namespace VirtualCamera
