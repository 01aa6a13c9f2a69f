// SPDX-License-Identifier: MIT
#include "CameraDriver.h"

#include "RecordedCall.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace VirtualCamera
{

CameraDriver::CameraDriver(CameraScript script)
    : _script(std::move(script)), _log(_script.faults, _script.callsLogged), _formats(_script),
      _controls(_script), _extensionUnit(_script.extensionUnit), _queue(_script), _source(_script)
{
}

bool CameraDriver::gone()
{
    std::lock_guard const lock(_mutex);
    catchUp();
    return _gone;
}

bool CameraDriver::present() const
{
    return _script.presenceFile.empty() || access(_script.presenceFile.c_str(), F_OK) == 0;
}

void CameraDriver::unplug()
{
    std::lock_guard const lock(_mutex);
    _gone = true;
    announce();
}

void CameraDriver::catchUp()
{
    _source.advance(monotonicNow(), _queue);
    _gone = _gone || _source.vanished() || !present();
}

std::optional<Nanoseconds> CameraDriver::wakeTime() const
{
    // select() finds a kernel's node readable when it has a frame, and when it has an error to
    // report: gone, not streaming, or nothing queued since streaming was last stopped.
    constexpr Nanoseconds atOnce = 1;
    if (_gone || !_queue.streaming() || _queue.waitingForBuffers() || _queue.hasDone())
        return atOnce;
    return _source.nextEvent(_queue);
}

void CameraDriver::announce()
{
    catchUp();
    std::optional<Nanoseconds> const wake = wakeTime();
    for (OpenFile& file : _files) {
        if (file.wakeTime == wake)
            continue;
        file.wakeTime = wake;
        itimerspec setting{};
        if (wake) {
            setting.it_value.tv_sec = static_cast<time_t>(*wake / 1000000000);
            setting.it_value.tv_nsec = static_cast<long>(*wake % 1000000000);
        }
        timerfd_settime(file.descriptor, TFD_TIMER_ABSTIME, &setting, nullptr);
    }
    _changed.notify_all();
}

int CameraDriver::open(std::string const& path, int flags)
{
    std::lock_guard const lock(_mutex);
    RecordedCall call(_log, Call::Open);
    call.record().path = path;
    call.record().openFlags = flags;
    if (int const scripted = _log.countUse(Call::Open))
        return call.end(-scripted);
    int const nonBlocking = (flags & O_NONBLOCK) != 0 ? TFD_NONBLOCK : 0;
    int const file = timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | nonBlocking);
    if (file == -1)
        return call.end(-errno);
    _files.push_back({file, std::nullopt});
    ++_totalOpens;
    call.record().descriptor = file;
    announce();
    call.end(0);
    return file;
}

int CameraDriver::close(int file)
{
    std::lock_guard const lock(_mutex);
    RecordedCall call(_log, Call::Close, file);
    int const scripted = _log.countUse(Call::Close);
    if (scripted != EINTR) {
        release(file);
        ::close(file);
    }
    return call.end(-scripted);
}

void CameraDriver::release(int file)
{
    _queue.closed(file);
    auto const sameFile = [file](OpenFile const& open) { return open.descriptor == file; };
    _files.erase(std::remove_if(_files.begin(), _files.end(), sameFile), _files.end());
    announce();
}

void CameraDriver::forgetFile(int file)
{
    std::lock_guard const lock(_mutex);
    release(file);
}

int CameraDriver::map(int file, std::size_t length, int protection, int flags, std::int64_t offset,
                      MappingTicket& ticket)
{
    std::lock_guard const lock(_mutex);
    RecordedCall call(_log, Call::Mmap, file);
    call.record().length = length;
    call.record().offset = offset;
    if (int const scripted = _log.countUse(Call::Mmap))
        return call.end(-scripted);
    catchUp();
    if (_gone)
        return call.end(-ENODEV);
    if ((flags & MAP_SHARED) == 0)
        return call.end(-EINVAL);
    ticket.length = length;
    ticket.generation = _queue.generation();
    int const result = _queue.map(length, protection, offset, ticket.address, ticket.index);
    if (result == 0) {
        ++_liveMappings;
        ++_totalMappings;
    }
    return call.end(result);
}

int CameraDriver::unmap(MappingTicket const& ticket)
{
    std::lock_guard const lock(_mutex);
    RecordedCall call(_log, Call::Munmap);
    call.record().length = ticket.length;
    if (int const scripted = _log.countUse(Call::Munmap))
        return call.end(-scripted);
    munmap(ticket.address, roundToPages(ticket.length));
    _queue.unmapped(ticket.generation, ticket.index);
    --_liveMappings;
    return call.end(0);
}

Accounting CameraDriver::accounting() const
{
    std::lock_guard const lock(_mutex);
    Accounting account;
    account.openDescriptors = static_cast<int>(_files.size());
    account.liveMappings = _liveMappings;
    account.allocatedBuffers = _queue.reading() ? 0 : static_cast<int>(_queue.count());
    account.queuedBuffers = _queue.reading() ? 0 : static_cast<int>(_queue.queuedCount());
    account.streaming = _queue.streaming();
    account.totalOpens = _totalOpens;
    account.totalMappings = _totalMappings;
    account.totalFrames = _totalFrames;
    account.droppedFrames = _source.dropped();
    return account;
}

void CameraDriver::deliverFrames(unsigned count)
{
    std::lock_guard const lock(_mutex);
    _source.deliver(count, monotonicNow(), _queue);
    announce();
}

} // namespace VirtualCamera
