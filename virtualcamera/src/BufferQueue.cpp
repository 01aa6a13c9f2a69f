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

BufferQueue::BufferQueue(CameraScript const& script) : m_script(script)
{
    m_buffers.reserve(mostBuffers);
    m_queued.reserve(mostBuffers);
    m_done.reserve(mostBuffers);
}

bool BufferQueue::offered(std::uint32_t memory) const
{
    return (memory == V4L2_MEMORY_MMAP && m_script.mmapOffered) ||
           (memory == V4L2_MEMORY_USERPTR && m_script.userPointersOffered);
}

std::uint32_t BufferQueue::granted(std::uint32_t wanted) const
{
    std::uint32_t count = std::max(wanted, m_script.fewestBuffers);
    if (m_script.mostBuffers) {
        count = std::min(count, *m_script.mostBuffers);
    }
    return std::min(count, mostBuffers);
}

int BufferQueue::request(int file, v4l2_requestbuffers& request, std::uint32_t sizeImage)
{
    if (request.type != captureType || !offered(request.memory)) {
        return -EINVAL;
    }
    if (ownedByOther(file) || m_reading || m_streaming) {
        return -EBUSY;
    }
    auto const mapped = [](Buffer const& buffer) { return buffer.mappings != 0; };
    if (std::any_of(m_buffers.begin(), m_buffers.end(), mapped)) {
        return -EBUSY;
    }
    free();
    request.capabilities = (m_script.mmapOffered ? V4L2_BUF_CAP_SUPPORTS_MMAP : 0u) |
                           (m_script.userPointersOffered ? V4L2_BUF_CAP_SUPPORTS_USERPTR : 0u);
    if (request.count == 0) {
        return 0;
    }
    request.count = granted(request.count);
    if (int const failed = allocate(request.count, request.memory, sizeImage)) {
        return failed;
    }
    if (request.count != 0) {
        m_owner = file;
    }
    return 0;
}

int BufferQueue::allocate(std::uint32_t count, std::uint32_t memory, std::uint32_t sizeImage)
{
    ++m_generation;
    m_memory = memory;
    m_sizeImage = sizeImage;
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
        m_buffers.push_back(std::move(buffer));
    }
    return 0;
}

void BufferQueue::free()
{
    stop();
    m_buffers.clear();
    m_owner = -1;
    m_reading = false;
}

void BufferQueue::stop()
{
    m_streaming = false;
    m_waitingForBuffers = true;
    m_queued.clear();
    m_done.clear();
    for (Buffer& buffer : m_buffers) {
        buffer.state = Buffer::State::Dequeued;
    }
}

void BufferQueue::describe(unsigned index, v4l2_buffer& buffer) const
{
    Buffer const& known = m_buffers[index];
    buffer.index = index;
    buffer.type = captureType;
    buffer.memory = m_memory;
    buffer.length = known.length;
    buffer.field = V4L2_FIELD_NONE;
    buffer.flags = V4L2_BUF_FLAG_TIMESTAMP_MONOTONIC | V4L2_BUF_FLAG_TSTAMP_SRC_SOE;
    if (known.mappings != 0) {
        buffer.flags |= V4L2_BUF_FLAG_MAPPED;
    }
    if (known.state == Buffer::State::Queued) {
        buffer.flags |= V4L2_BUF_FLAG_QUEUED;
    }
    if (known.state == Buffer::State::Done) {
        buffer.flags |= V4L2_BUF_FLAG_DONE;
    }
    if (m_memory == V4L2_MEMORY_MMAP) {
        buffer.m.offset = static_cast<__u32>(index * roundToPages(m_sizeImage));
    } else {
        buffer.m.userptr = known.userPointer;
    }
}

int BufferQueue::query(v4l2_buffer& buffer) const
{
    if (buffer.type != captureType || buffer.index >= count() || m_reading) {
        return -EINVAL;
    }
    describe(buffer.index, buffer);
    buffer.bytesused = 0;
    return 0;
}

int BufferQueue::queue(int file, v4l2_buffer& buffer)
{
    if (buffer.type != captureType) {
        return -EINVAL;
    }
    if (ownedByOther(file) || m_reading) {
        return -EBUSY;
    }
    if (buffer.index >= count() || buffer.memory != m_memory) {
        return -EINVAL;
    }
    Buffer& known = m_buffers[buffer.index];
    if (known.state != Buffer::State::Dequeued) {
        return -EINVAL;
    }
    if (m_memory == V4L2_MEMORY_USERPTR) {
        if (buffer.m.userptr == 0 || buffer.length < m_sizeImage) {
            return -EINVAL;
        }
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
    m_queued.push_back(static_cast<unsigned>(&buffer - m_buffers.data()));
    m_waitingForBuffers = false;
}

int BufferQueue::streamOn(int file, int type)
{
    if (type != static_cast<int>(captureType)) {
        return -EINVAL;
    }
    if (ownedByOther(file) || m_reading) {
        return -EBUSY;
    }
    if (m_buffers.empty()) {
        return -EINVAL;
    }
    m_streaming = true;
    return 0;
}

int BufferQueue::streamOff(int file, int type)
{
    if (type != static_cast<int>(captureType)) {
        return -EINVAL;
    }
    if (m_reading) {
        return -EBUSY;
    }
    // libv4l2 passes this on only for a descriptor that streams.
    if (streamsTo(file)) {
        stop();
    }
    return 0;
}

int BufferQueue::checkDequeue(int file, v4l2_buffer const& buffer) const
{
    if (buffer.type != captureType) {
        return -EINVAL;
    }
    if (ownedByOther(file) || m_reading) {
        return -EBUSY;
    }
    return m_streaming ? 0 : -EINVAL;
}

Buffer& BufferQueue::dequeue(v4l2_buffer& buffer)
{
    unsigned const index = m_done.front();
    m_done.erase(m_done.begin());
    Buffer& known = m_buffers[index];
    known.state = Buffer::State::Dequeued;
    describe(index, buffer);
    buffer.sequence = known.frame;
    buffer.timestamp = known.timestamp;
    return known;
}

int BufferQueue::map(std::size_t length, int protection, std::int64_t offset, void*& address,
                     unsigned& index)
{
    if (m_reading) {
        return -EBUSY;
    }
    if (m_memory != V4L2_MEMORY_MMAP || length == 0 || (protection & PROT_READ) == 0) {
        return -EINVAL;
    }
    auto const spacing = static_cast<std::int64_t>(roundToPages(m_sizeImage));
    if (offset < 0 || offset % spacing != 0 || offset / spacing >= count()) {
        return -EINVAL;
    }
    index = static_cast<unsigned>(offset / spacing);
    if (roundToPages(length) > static_cast<std::size_t>(spacing)) {
        return -EINVAL;
    }
    address = m_buffers[index].pages->mirror(length, protection);
    if (address == nullptr) {
        return -ENOMEM;
    }
    ++m_buffers[index].mappings;
    return 0;
}

void BufferQueue::unmapped(unsigned generation, unsigned index)
{
    if (generation == m_generation && index < count()) {
        --m_buffers[index].mappings;
    }
}

int BufferQueue::startReading(int file, std::uint32_t sizeImage)
{
    constexpr std::uint32_t ownBuffers = 2;
    if (ownedByOther(file) || !m_buffers.empty()) {
        return -EBUSY;
    }
    if (int const failed = allocate(ownBuffers, 0, sizeImage)) {
        return failed;
    }
    m_owner = file;
    m_reading = true;
    m_streaming = true;
    for (Buffer& buffer : m_buffers) {
        requeue(buffer);
    }
    return 0;
}

void BufferQueue::closed(int file)
{
    if (m_owner == file) {
        free();
    }
}

void BufferQueue::complete(std::uint32_t frame, timeval const& timestamp)
{
    unsigned const index = m_queued.front();
    m_queued.erase(m_queued.begin());
    m_buffers[index].state = Buffer::State::Done;
    m_buffers[index].frame = frame;
    m_buffers[index].timestamp = timestamp;
    m_done.push_back(index);
}

} // namespace VirtualCamera
