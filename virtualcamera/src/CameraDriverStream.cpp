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
    bool const wasStreaming = _queue.streaming();
    int const result = _queue.streamOn(file, type);
    if (result == 0 && !wasStreaming)
        _source.start(monotonicNow(), _formats.interval());
    return result;
}

int CameraDriver::awaitFrame(Lock& lock, int file)
{
    for (;;) {
        catchUp();
        if (_gone)
            return -ENODEV;
        if (!_queue.streaming())
            return -EINVAL;
        if (_queue.hasDone())
            return 0;
        if ((fcntl(file, F_GETFL) & O_NONBLOCK) != 0)
            return -EAGAIN;
        announce();
        // steady_clock and frame times count the same nanoseconds.
        using Clock = std::chrono::steady_clock;
        if (std::optional<Nanoseconds> const event = _source.nextEvent(_queue))
            _changed.wait_until(lock, Clock::time_point(std::chrono::nanoseconds(*event)));
        else
            _changed.wait(lock);
    }
}

std::uint32_t CameraDriver::fill(Buffer const& buffer, unsigned char* target,
                                 FrameFault const& fault)
{
    std::uint32_t const number = _script.stillPattern ? 0 : buffer.frame;
    std::size_t const painted = _painter.paint(_formats.pixels(), _formats.present(), number,
                                               target, _formats.pixels().sizeimage);
    auto const used = static_cast<std::uint32_t>(painted);
    return fault.bytesUsed ? std::min(*fault.bytesUsed, used) : used;
}

int CameraDriver::dequeue(Lock& lock, int file, v4l2_buffer& buffer)
{
    if (int const refused = _queue.checkDequeue(file, buffer))
        return refused;
    if (int const failed = awaitFrame(lock, file))
        return failed;
    Buffer const& filled = _queue.dequeue(buffer);
    FrameFault const fault = _source.faultOf(filled.frame);
    // V4L2 passes pointers as numbers.
    auto* const target = filled.pages
                             ? filled.pages->bytes()
                             : reinterpret_cast<unsigned char*>(filled.userPointer); // NOLINT
    std::uint32_t const used = fill(filled, target, fault);
    buffer.bytesused = fault.claimedBytes.value_or(used);
    if (fault.corrupted)
        buffer.flags |= V4L2_BUF_FLAG_ERROR;
    if (fault.index)
        buffer.index = *fault.index;
    if (fault.userPointer)
        buffer.m.userptr = *fault.userPointer;
    if (fault.length)
        buffer.length = *fault.length;
    ++_totalFrames;
    return 0;
}

int CameraDriver::checkRead(int file)
{
    if (_gone)
        return -ENODEV;
    if (!_script.readOffered)
        return -EINVAL;
    if (_queue.reading())
        return _queue.ownedByOther(file) ? -EBUSY : 0;
    int const started = _queue.startReading(file, _formats.pixels().sizeimage);
    if (started == 0) {
        _readImage.clear();
        _readClaim.reset();
        _readPosition = 0;
        _source.start(monotonicNow(), _formats.interval());
    }
    return started;
}

int CameraDriver::nextReadImage(Lock& lock, int file)
{
    if (int const failed = awaitFrame(lock, file))
        return failed;
    v4l2_buffer buffer{};
    Buffer& filled = _queue.dequeue(buffer);
    _readImage.resize(_formats.pixels().sizeimage);
    FrameFault const fault = _source.faultOf(filled.frame);
    _readImage.resize(fill(filled, _readImage.data(), fault));
    _readClaim = fault.claimedBytes;
    _readPosition = 0;
    _queue.requeue(filled);
    ++_totalFrames;
    return 0;
}

std::int64_t CameraDriver::read(int file, void* target, std::size_t size)
{
    Lock lock(_mutex);
    catchUp();
    Announcement const announcement(*this);
    RecordedCall call(_log, Call::Read, file);
    call.record().length = size;
    if (int const scripted = _log.countUse(Call::Read))
        return call.end(-scripted);
    if (int const refused = checkRead(file))
        return call.end(refused);
    if (_readPosition == _readImage.size())
        if (int const failed = nextReadImage(lock, file))
            return call.end(failed);
    // As in the kernel, what doesn't fit stays for the next read.
    std::size_t const bytes = std::min(size, _readImage.size() - _readPosition);
    if (bytes != 0)
        std::memcpy(target, _readImage.data() + _readPosition, bytes);
    _readPosition += bytes;
    std::size_t const told = std::exchange(_readClaim, std::nullopt).value_or(bytes);
    call.end(static_cast<int>(std::min<std::size_t>(told, INT_MAX)));
    return static_cast<std::int64_t>(told);
}

} // namespace VirtualCamera
