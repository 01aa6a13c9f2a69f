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
    : m_script(std::move(script)), m_log(m_script.faults, m_script.callsLogged),
      m_formats(m_script), m_controls(m_script), m_extensionUnit(m_script.extensionUnit),
      m_queue(m_script), m_source(m_script)
{
}

bool CameraDriver::gone()
{
    std::lock_guard const lock(m_mutex);
    catchUp();
    return m_gone;
}

bool CameraDriver::present() const
{
    return m_script.presenceFile.empty() || access(m_script.presenceFile.c_str(), F_OK) == 0;
}

void CameraDriver::unplug()
{
    std::lock_guard const lock(m_mutex);
    m_gone = true;
    announce();
}

void CameraDriver::catchUp()
{
    m_source.advance(monotonicNow(), m_queue);
    m_gone = m_gone || m_source.vanished() || !present();
}

std::optional<Nanoseconds> CameraDriver::wakeTime() const
{
    // select() finds a kernel's node readable when it has a frame, and when it has an error to
    // report: gone, not streaming, or nothing queued since streaming was last stopped.
    constexpr Nanoseconds atOnce = 1;
    if (m_gone || !m_queue.streaming() || m_queue.waitingForBuffers() || m_queue.hasDone()) {
        return atOnce;
    }
    return m_source.nextEvent(m_queue);
}

void CameraDriver::announce()
{
    catchUp();
    std::optional<Nanoseconds> const wake = wakeTime();
    for (OpenFile& file : m_files) {
        if (file.wakeTime == wake) {
            continue;
        }
        file.wakeTime = wake;
        itimerspec setting{};
        if (wake) {
            setting.it_value.tv_sec = static_cast<time_t>(*wake / 1000000000);
            setting.it_value.tv_nsec = static_cast<long>(*wake % 1000000000);
        }
        timerfd_settime(file.descriptor, TFD_TIMER_ABSTIME, &setting, nullptr);
    }
    m_changed.notify_all();
}

int CameraDriver::open(std::string const& path, int flags)
{
    std::lock_guard const lock(m_mutex);
    RecordedCall call(m_log, Call::Open);
    call.record().path = path;
    call.record().openFlags = flags;
    if (int const scripted = m_log.countUse(Call::Open)) {
        return call.end(-scripted);
    }
    int const nonBlocking = (flags & O_NONBLOCK) != 0 ? TFD_NONBLOCK : 0;
    int const file = timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | nonBlocking);
    if (file == -1) {
        return call.end(-errno);
    }
    m_files.push_back({file, std::nullopt});
    ++m_totalOpens;
    call.record().descriptor = file;
    announce();
    call.end(0);
    return file;
}

int CameraDriver::close(int file)
{
    std::lock_guard const lock(m_mutex);
    RecordedCall call(m_log, Call::Close, file);
    int const scripted = m_log.countUse(Call::Close);
    if (scripted != EINTR) {
        release(file);
        ::close(file);
    }
    return call.end(-scripted);
}

void CameraDriver::release(int file)
{
    m_queue.closed(file);
    auto const sameFile = [file](OpenFile const& open) { return open.descriptor == file; };
    m_files.erase(std::remove_if(m_files.begin(), m_files.end(), sameFile), m_files.end());
    announce();
}

void CameraDriver::forgetFile(int file)
{
    std::lock_guard const lock(m_mutex);
    release(file);
}

int CameraDriver::map(int file, std::size_t length, int protection, int flags, std::int64_t offset,
                      MappingTicket& ticket)
{
    std::lock_guard const lock(m_mutex);
    RecordedCall call(m_log, Call::Mmap, file);
    call.record().length = length;
    call.record().offset = offset;
    if (int const scripted = m_log.countUse(Call::Mmap)) {
        return call.end(-scripted);
    }
    catchUp();
    if (m_gone) {
        return call.end(-ENODEV);
    }
    if ((flags & MAP_SHARED) == 0) {
        return call.end(-EINVAL);
    }
    ticket.length = length;
    ticket.generation = m_queue.generation();
    int const result = m_queue.map(length, protection, offset, ticket.address, ticket.index);
    if (result == 0) {
        ++m_liveMappings;
        ++m_totalMappings;
    }
    return call.end(result);
}

int CameraDriver::unmap(MappingTicket const& ticket)
{
    std::lock_guard const lock(m_mutex);
    RecordedCall call(m_log, Call::Munmap);
    call.record().length = ticket.length;
    if (int const scripted = m_log.countUse(Call::Munmap)) {
        return call.end(-scripted);
    }
    munmap(ticket.address, roundToPages(ticket.length));
    m_queue.unmapped(ticket.generation, ticket.index);
    --m_liveMappings;
    return call.end(0);
}

Accounting CameraDriver::accounting() const
{
    std::lock_guard const lock(m_mutex);
    Accounting account;
    account.openDescriptors = static_cast<int>(m_files.size());
    account.liveMappings = m_liveMappings;
    account.allocatedBuffers = m_queue.reading() ? 0 : static_cast<int>(m_queue.count());
    account.queuedBuffers = m_queue.reading() ? 0 : static_cast<int>(m_queue.queuedCount());
    account.streaming = m_queue.streaming();
    account.totalOpens = m_totalOpens;
    account.totalMappings = m_totalMappings;
    account.totalFrames = m_totalFrames;
    account.droppedFrames = m_source.dropped();
    return account;
}

void CameraDriver::deliverFrames(unsigned count)
{
    std::lock_guard const lock(m_mutex);
    m_source.deliver(count, monotonicNow(), m_queue);
    announce();
}

} // namespace VirtualCamera
