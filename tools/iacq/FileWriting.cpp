// SPDX-License-Identifier: MIT
#include "FileWriting.h"

#include "Failure.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

namespace Iacq
{

namespace
{

/// Writes and closes. Returns 0, or the number of the error.
int writeAndClose(int fd, std::vector<unsigned char> const& bytes)
{
    int const error = writeAll(fd, bytes.data(), bytes.size()) ? 0 : errno;
    return ::close(fd) != 0 && error == 0 ? errno : error;
}

int openForWriting(std::string const& path)
{
    int const fd = ::open(path.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC | O_NOCTTY);
    if (fd == -1) {
        failWriting(path);
    }
    return fd;
}

void writeToSpecialFile(std::string const& path, std::vector<unsigned char> const& bytes)
{
    if (int const error = writeAndClose(openForWriting(path), bytes); error != 0) {
        failWriting(path, error);
    }
}

/// Leaves empty what it cannot write whole.
void overwrite(std::string const& path, std::vector<unsigned char> const& bytes)
{
    SignalsBlocked const blocked;
    int const error = writeAndClose(openForWriting(path), bytes);
    if (error != 0 && ::truncate(path.c_str(), 0) != 0) {
        failWriting(path);
    }
    if (error != 0) {
        failWriting(path, error);
    }
}

/// The name that links lead to, whether there is a file under it yet or not.
std::string behindLinks(std::string path)
{
    constexpr int mostLinks = 40; // The kernel follows no more either.
    for (int links = 0; links < mostLinks; ++links) {
        std::error_code noLink;
        auto const target = std::filesystem::read_symlink(path, noLink);
        if (noLink) {
            break;
        }
        path = std::filesystem::path(path).parent_path() / target;
    }
    return path;
}

bool isSameFile(std::string const& path, struct stat const& file)
{
    struct stat status;
    return ::stat(path.c_str(), &status) == 0 && status.st_dev == file.st_dev &&
           status.st_ino == file.st_ino;
}

/// Whether the file itself may be written all the same.
bool directoryIsToBlame(int error)
{
    return error == EACCES || error == EPERM || error == EROFS || error == EBUSY;
}

/// Gives a file another's owner, as far as that is allowed, and its permissions.
bool takeAfter(int fd, struct stat const& file)
{
    if (::fchown(fd, file.st_uid, file.st_gid) != 0 &&
        ::fchown(fd, static_cast<uid_t>(-1), file.st_gid) != 0) {
        // Then it belongs to who wrote it, as any new file does.
    }
    return ::fchmod(fd, file.st_mode & 0777) == 0;
}

/// Writes beside the target and renames. @p old is what the target is now, null for nothing.
/// Returns 0, or the number of the error that left everything as it was.
int writeBesideAndRename(std::string const& target, struct stat const* old,
                         std::vector<unsigned char> const& bytes)
{
    SignalsBlocked const blocked;
    std::string const partial = target + ".partial-" + std::to_string(::getpid());
    // Nobody may read meanwhile what the older file does not let him read.
    int const fd = ::open(partial.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC,
                          old == nullptr ? 0666 : 0600);
    if (fd == -1) {
        return errno;
    }
    int error = old == nullptr || takeAfter(fd, *old) ? 0 : errno;
    int const writingError = writeAndClose(fd, bytes);
    error = error == 0 ? writingError : error;
    if (error == 0 && ::rename(partial.c_str(), target.c_str()) != 0) {
        error = errno;
    }
    if (error != 0) {
        ::unlink(partial.c_str());
    }
    return error;
}

void replace(std::string const& path, std::vector<unsigned char> const& bytes)
{
    struct stat status;
    bool const exists = ::stat(path.c_str(), &status) == 0;
    if (!exists && errno != ENOENT) {
        failWriting(path);
    }
    std::string const target = behindLinks(path);
    if (exists && !isSameFile(target, status)) {
        // Links in /proc need not lead to a name.
        overwrite(path, bytes);
        return;
    }
    int const error = writeBesideAndRename(target, exists ? &status : nullptr, bytes);
    if (error != 0 && exists && directoryIsToBlame(error)) {
        overwrite(path, bytes);
    } else if (error != 0) {
        failWriting(path, error);
    }
}

} // namespace

void failWriting(std::string const& what, int error)
{
    throw Failure(CameraFailed, "cannot write " + what + ": " + std::strerror(error));
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

bool isSpecialFile(std::string const& path)
{
    struct stat status;
    return ::stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode) &&
           !S_ISDIR(status.st_mode);
}

SignalsBlocked::SignalsBlocked()
{
    sigset_t signals;
    sigemptyset(&signals);
    for (int const number : {SIGINT, SIGTERM, SIGHUP}) {
        sigaddset(&signals, number);
    }
    pthread_sigmask(SIG_BLOCK, &signals, &m_before);
}

SignalsBlocked::~SignalsBlocked()
{
    pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
}

void writeFile(std::string const& path, std::vector<unsigned char> const& bytes)
{
    if (isSpecialFile(path)) {
        writeToSpecialFile(path, bytes);
    } else {
        replace(path, bytes);
    }
}

} // namespace Iacq
