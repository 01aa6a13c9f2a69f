// SPDX-License-Identifier: MIT
#include "monitor/SelfPipe.h"

#include <fcntl.h>
#include <unistd.h>

namespace ImageAcquisition
{

namespace
{

void makeNonBlocking(int fd)
{
    int const flags = fcntl(fd, F_GETFL);
    fcntl(fd, F_SETFL, flags | O_NONBLOCK);
}

void closeEnd(std::atomic<int>& end)
{
    int const fd = end.exchange(-1);
    if (fd != -1) {
        ::close(fd);
    }
}

} // namespace

bool SelfPipe::open()
{
    close();
    int ends[2] = {-1, -1};
    bool const created = pipe(ends) == 0;
    makeNonBlocking(ends[0]);
    makeNonBlocking(ends[1]);
    m_readEnd = ends[0];
    m_writeEnd = ends[1];
    return created;
}

void SelfPipe::close()
{
    closeEnd(m_readEnd);
    closeEnd(m_writeEnd);
}

void SelfPipe::write()
{
    // A full pipe is as good a wake-up as one more byte.
    [[maybe_unused]] auto const result = ::write(m_writeEnd, "x", 1);
}

} // namespace ImageAcquisition
