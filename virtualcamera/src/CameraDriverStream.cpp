// SPDX-License-Identifier: MIT
#include "CameraDriver.h"

#include "RecordedCall.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cstring>
#include <utility>

namespace VirtualCamera
{

int CameraDriver::streamOn(int file, int type)
{
    bool const wasStreaming = m_queue.streaming();
    int const result = m_queue.streamOn(file, type);
    if (result == 0 && !wasStreaming) {
        m_source.start(monotonicNow(), m_formats.interval());
    }
    return result;
}

int CameraDriver::awaitFrame(Lock& lock, int file)
{
    for (;;) {
        catchUp();
        if (m_gone) {
            return -ENODEV;
        }
        if (!m_queue.streaming()) {
            return -EINVAL;
        }
        if (m_queue.hasDone()) {
            return 0;
        }
        if ((fcntl(file, F_GETFL) & O_NONBLOCK) != 0) {
            return -EAGAIN;
        }
        announce();
        // steady_clock and frame times count the same nanoseconds.
        using Clock = std::chrono::steady_clock;
        if (std::optional<Nanoseconds> const event = m_source.nextEvent(m_queue)) {
            m_changed.wait_until(lock, Clock::time_point(std::chrono::nanoseconds(*event)));
        } else {
            m_changed.wait(lock);
        }
    }
}

std::uint32_t CameraDriver::fill(Buffer const& buffer, unsigned char* target,
                                 FrameFault const& fault)
{
    std::uint32_t const number = m_script.stillPattern ? 0 : buffer.frame;
    std::size_t const painted = m_painter.paint(m_formats.pixels(), m_formats.present(), number,
                                                target, m_formats.pixels().sizeimage);
    auto const used = static_cast<std::uint32_t>(painted);
    return fault.bytesUsed ? std::min(*fault.bytesUsed, used) : used;
}

int CameraDriver::dequeue(Lock& lock, int file, v4l2_buffer& buffer)
{
    if (int const refused = m_queue.checkDequeue(file, buffer)) {
        return refused;
    }
    if (int const failed = awaitFrame(lock, file)) {
        return failed;
    }
    Buffer const& filled = m_queue.dequeue(buffer);
    FrameFault const fault = m_source.faultOf(filled.frame);
    // V4L2 passes pointers as numbers.
    auto* const target = filled.pages
                             ? filled.pages->bytes()
                             : reinterpret_cast<unsigned char*>(filled.userPointer); // NOLINT
    std::uint32_t const used = fill(filled, target, fault);
    buffer.bytesused = fault.claimedBytes.value_or(used);
    if (fault.corrupted) {
        buffer.flags |= V4L2_BUF_FLAG_ERROR;
    }
    if (fault.index) {
        buffer.index = *fault.index;
    }
    if (fault.userPointer) {
        buffer.m.userptr = *fault.userPointer;
    }
    if (fault.length) {
        buffer.length = *fault.length;
    }
    ++m_totalFrames;
    return 0;
}

int CameraDriver::checkRead(int file)
{
    if (m_gone) {
        return -ENODEV;
    }
    if (!m_script.readOffered) {
        return -EINVAL;
    }
    if (m_queue.reading()) {
        return m_queue.ownedByOther(file) ? -EBUSY : 0;
    }
    int const started = m_queue.startReading(file, m_formats.pixels().sizeimage);
    if (started == 0) {
        m_readImage.clear();
        m_readClaim.reset();
        m_readPosition = 0;
        m_source.start(monotonicNow(), m_formats.interval());
    }
    return started;
}

int CameraDriver::nextReadImage(Lock& lock, int file)
{
    if (int const failed = awaitFrame(lock, file)) {
        return failed;
    }
    v4l2_buffer buffer{};
    Buffer& filled = m_queue.dequeue(buffer);
    m_readImage.resize(m_formats.pixels().sizeimage);
    FrameFault const fault = m_source.faultOf(filled.frame);
    m_readImage.resize(fill(filled, m_readImage.data(), fault));
    m_readClaim = fault.claimedBytes;
    m_readPosition = 0;
    m_queue.requeue(filled);
    ++m_totalFrames;
    return 0;
}

std::int64_t CameraDriver::read(int file, void* target, std::size_t size)
{
    Lock lock(m_mutex);
    catchUp();
    Announcement const announcement(*this);
    RecordedCall call(m_log, Call::Read, file);
    call.record().length = size;
    if (int const scripted = m_log.countUse(Call::Read)) {
        return call.end(-scripted);
    }
    if (int const refused = checkRead(file)) {
        return call.end(refused);
    }
    if (m_readPosition == m_readImage.size()) {
        if (int const failed = nextReadImage(lock, file)) {
            return call.end(failed);
        }
    }
    // As in the kernel, what doesn't fit stays for the next read.
    std::size_t const bytes = std::min(size, m_readImage.size() - m_readPosition);
    if (bytes != 0) {
        std::memcpy(target, m_readImage.data() + m_readPosition, bytes);
    }
    m_readPosition += bytes;
    std::size_t const told = std::exchange(m_readClaim, std::nullopt).value_or(bytes);
    call.end(static_cast<int>(std::min<std::size_t>(told, INT_MAX)));
    return static_cast<std::int64_t>(told);
}

} // namespace VirtualCamera
