// SPDX-License-Identifier: MIT
#include "Output.h"

#include "Failure.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>

namespace Iacq
{

namespace
{

[[noreturn]] void failWriting(std::string const& what)
{
    throw Failure(CameraFailed, "cannot write " + what + ": " + std::strerror(errno));
}

bool writeAll(int fd, unsigned char const* data, std::size_t size)
{
    while (size > 0) {
        ssize_t const written = ::write(fd, data, size);
        if (written == -1 && errno == EINTR) {
            continue;
        }
        if (written == -1) {
            return false;
        }
        data += written;
        size -= static_cast<std::size_t>(written);
    }
    return true;
}

/// Writes and closes; errno tells what went wrong.
bool writeAndClose(int fd, std::vector<unsigned char> const& bytes)
{
    bool const written = writeAll(fd, bytes.data(), bytes.size());
    int const error = errno;
    bool const closed = ::close(fd) == 0;
    if (!written) {
        errno = error;
    }
    return written && closed;
}

/// Devices, pipes and the like are written to as they are; renaming would replace them.
bool isSpecialFile(std::string const& path)
{
    struct stat status;
    return ::stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode) &&
           !S_ISDIR(status.st_mode);
}

void writeInPlace(std::string const& path, std::vector<unsigned char> const& bytes)
{
    int const fd = ::open(path.c_str(), O_WRONLY | O_CLOEXEC);
    if (fd == -1 || !writeAndClose(fd, bytes)) {
        failWriting(path);
    }
}

/// Holds back what would end the tool between two steps, and leave half of a file behind.
class SignalsHeld
{
public:
    SignalsHeld()
    {
        sigset_t signals;
        sigemptyset(&signals);
        for (int const number : {SIGINT, SIGTERM, SIGHUP}) {
            sigaddset(&signals, number);
        }
        pthread_sigmask(SIG_BLOCK, &signals, &m_before);
    }
    ~SignalsHeld() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
    SignalsHeld(SignalsHeld const&) = delete;
    SignalsHeld& operator=(SignalsHeld const&) = delete;

private:
    sigset_t m_before{};
};

void replace(std::string const& path, std::vector<unsigned char> const& bytes)
{
    SignalsHeld const held;
    std::string const partial = path + ".partial-" + std::to_string(::getpid());
    int const fd = ::open(partial.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd == -1) {
        failWriting(path);
    }
    if (!writeAndClose(fd, bytes) || ::rename(partial.c_str(), path.c_str()) != 0) {
        int const error = errno;
        ::unlink(partial.c_str());
        errno = error;
        failWriting(path);
    }
}

/// Puts the number in the place of a "%d" or "%04d", which has to be the only "%".
std::string withNumber(std::string const& path, int number)
{
    auto const percent = path.find('%');
    std::size_t end = percent + 1;
    int width = 1;
    if (path.compare(end, 1, "0") == 0 && end + 1 < path.size() && path[end + 1] >= '1' &&
        path[end + 1] <= '9') {
        width = path[end + 1] - '0';
        end += 2;
    }
    if (path.compare(end, 1, "d") != 0 || path.find('%', end) != std::string::npos) {
        throw Failure(BadUsage, "'" + path + "' may hold one %d or %04d and no other '%'");
    }
    char text[32];
    std::snprintf(text, sizeof text, "%0*d", width, number);
    return path.substr(0, percent) + text + path.substr(end + 1);
}

} // namespace

void writeFile(std::string const& path, std::vector<unsigned char> const& bytes)
{
    if (path == "-") {
        if (!writeAll(STDOUT_FILENO, bytes.data(), bytes.size())) {
            failWriting("standard output");
        }
    } else if (isSpecialFile(path)) {
        writeInPlace(path, bytes);
    } else {
        replace(path, bytes);
    }
}

std::string numberedPath(std::string const& path, int number, int count)
{
    if (path.find('%') != std::string::npos) {
        return withNumber(path, number);
    }
    if (count <= 1 || path == "-" || isSpecialFile(path)) {
        return path;
    }
    char text[32];
    std::snprintf(text, sizeof text, "-%04d", number);
    auto const dot = path.find_last_of("./");
    auto const at = dot != std::string::npos && path[dot] == '.' ? dot : path.size();
    return path.substr(0, at) + text + path.substr(at);
}

void print(std::string const& text)
{
    if (!writeAll(STDOUT_FILENO, reinterpret_cast<unsigned char const*>(text.data()),
                  text.size())) {
        failWriting("standard output");
    }
}

void closeStandardOutput()
{
    // Nobody misses what was closed from the start: whatever was to be written has failed already.
    if (::close(STDOUT_FILENO) != 0 && errno != EBADF) {
        failWriting("standard output");
    }
}

} // namespace Iacq
