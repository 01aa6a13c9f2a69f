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
#include <optional>

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

/// A "%d" or "%04d" in a name.
struct NumberPattern
{
    std::size_t at;
    std::size_t size;
    int width;
};

/// The first pattern from @p start on; any other "%" is a character like the rest.
std::optional<NumberPattern> findPattern(std::string const& path, std::size_t start)
{
    for (auto at = path.find('%', start); at != std::string::npos; at = path.find('%', at + 1)) {
        if (path.compare(at, 2, "%d") == 0) {
            return NumberPattern{at, 2, 1};
        }
        if (path.compare(at, 2, "%0") == 0 && path[at + 2] >= '1' && path[at + 2] <= '9' &&
            path.compare(at + 3, 1, "d") == 0) {
            return NumberPattern{at, 4, path[at + 2] - '0'};
        }
    }
    return std::nullopt;
}

std::string withNumber(std::string const& path, NumberPattern const& pattern, int number)
{
    std::size_t const behind = pattern.at + pattern.size;
    if (findPattern(path, behind)) {
        throw Failure(BadUsage, "'" + path + "' has more than one place for the number");
    }
    char text[32];
    std::snprintf(text, sizeof text, "%0*d", pattern.width, number);
    return path.substr(0, pattern.at) + text + path.substr(behind);
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
    if (auto const pattern = findPattern(path, 0)) {
        return withNumber(path, *pattern, number);
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
