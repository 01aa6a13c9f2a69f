// SPDX-License-Identifier: MIT
#include "FrameSink.h"

#include "FileWriting.h"
#include "Output.h"
#include "Progress.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <thread>
#include <utility>

namespace Iacq
{

namespace
{

constexpr char standardOutput[] = "-";

bool isNamedPipe(std::string const& path)
{
    struct stat status;
    return ::stat(path.c_str(), &status) == 0 && S_ISFIFO(status.st_mode);
}

/// Waits for a reader outside of open(), in which some libraries block signals.
int openNamedPipe(std::string const& path)
{
    Progress const progress("waiting for a reader of " + path);
    for (;;) {
        int const fd = ::open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NONBLOCK);
        if (fd != -1 && ::fcntl(fd, F_SETFL, 0) == 0) {
            return fd;
        }
        if (errno != ENXIO) {
            failWriting(path);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
}

int openDevice(std::string const& path)
{
    int const fd = ::open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY);
    if (fd == -1) {
        failWriting(path);
    }
    return fd;
}

/// Returns where even that does not end the process.
void endLikeOtherTools()
{
    sigset_t brokenPipe;
    sigemptyset(&brokenPipe);
    sigaddset(&brokenPipe, SIGPIPE);
    std::signal(SIGPIPE, SIG_DFL);
    pthread_sigmask(SIG_UNBLOCK, &brokenPipe, nullptr);
    ::raise(SIGPIPE);
}

} // namespace

FrameSink::FrameSink(std::string path, int count) : m_path(std::move(path)), m_count(count)
{
    numberedPath(m_path, 1, m_count);
}

FrameSink::~FrameSink()
{
    if (m_fd != -1 && m_fd != STDOUT_FILENO) {
        ::close(m_fd);
    }
}

void FrameSink::open()
{
    if (m_path == standardOutput) {
        m_fd = STDOUT_FILENO;
    } else if (isNamedPipe(m_path)) {
        m_fd = openNamedPipe(m_path);
    } else if (isSpecialFile(m_path)) {
        m_fd = openDevice(m_path);
    }
}

void FrameSink::write(int number, std::vector<unsigned char> const& bytes)
{
    if (m_fd == -1) {
        writeFile(numberedPath(m_path, number, m_count), bytes);
        return;
    }
    if (writeAll(m_fd, bytes.data(), bytes.size())) {
        return;
    }
    int const error = errno;
    if (error == EPIPE) {
        endLikeOtherTools();
    }
    failWriting(m_fd == STDOUT_FILENO ? "standard output" : m_path, error);
}

void FrameSink::close()
{
    int const fd = std::exchange(m_fd, -1);
    if (fd != -1 && fd != STDOUT_FILENO && ::close(fd) != 0) {
        failWriting(m_path);
    }
}

} // namespace Iacq
