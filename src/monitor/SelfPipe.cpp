// SPDX-License-Identifier: MIT
#include "monitor/SelfPipe.h"

#include "system/EarlierErrno.h"
#include "system/Pause.h"

#include <fcntl.h>
#include <unistd.h>

#include <chrono>

namespace ImageAcquisition
{

namespace
{

constexpr std::chrono::milliseconds writerPoll{1};

/// Owns an end that nobody else can reach any more.
class PipeEnd
{
public:
    explicit PipeEnd(int fd) : m_fd(fd) {}
    PipeEnd(PipeEnd const&) = delete;
    PipeEnd& operator=(PipeEnd const&) = delete;
    ~PipeEnd()
    {
        if (m_fd != -1) {
            ::close(m_fd);
        }
    }

private:
    int m_fd;
};

} // namespace

bool SelfPipe::open()
{
    close();
    int ends[2] = {-1, -1};
    // Closed on exec, so that programs which the process starts keep no end open.
    bool const created = pipe2(ends, O_CLOEXEC | O_NONBLOCK) == 0;
    m_readEnd = ends[0];
    m_writeEnd = ends[1];
    return created;
}

void SelfPipe::close()
{
    ErrnoKept const earlier;
    // Closed in the opposite order: there is never an end to write to without one to read from.
    PipeEnd const readEnd(m_readEnd.exchange(-1));
    PipeEnd const writeEnd(m_writeEnd.exchange(-1));
    // A writer that is still on its way would write to whatever is opened next under that number,
    // or be killed by SIGPIPE. Its write does not block, so this is over soon.
    while (m_writers != 0) {
        pauseFor(writerPoll);
    }
}

void SelfPipe::write()
{
    ++m_writers;
    int const writeEnd = m_writeEnd;
    if (writeEnd != -1) {
        // A full pipe is as good a wake-up as one more byte, and no failure.
        ErrnoKept const earlier;
        [[maybe_unused]] auto const result = ::write(writeEnd, "x", 1);
    }
    --m_writers;
}

} // namespace ImageAcquisition
