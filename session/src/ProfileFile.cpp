// SPDX-License-Identifier: MIT
#include "session/Error.h"
#include "session/Profile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

namespace ImageAcquisition::Session
{

namespace
{

/// No camera has so many controls; a device that never ends does.
constexpr std::size_t mostBytes = std::size_t{16} << 20;

[[noreturn]] void failWithFile(std::string const& operation, int error)
{
    ErrorKind const kind = error == ENOENT                     ? ErrorKind::NotFound
                           : error == EACCES || error == EPERM ? ErrorKind::NoPermission
                                                               : ErrorKind::Refused;
    throw Error({kind, operation, toText(kind), {}, error});
}

/// A descriptor of a file, closed at the end.
class File
{
public:
    File(std::string const& path, int flags) : m_fd(::open(path.c_str(), flags | O_CLOEXEC, 0666))
    {
    }
    File(File const&) = delete;
    File& operator=(File const&) = delete;
    ~File() { close(); }

    int descriptor() const { return m_fd; }
    bool close()
    {
        int const fd = m_fd;
        m_fd = -1;
        return fd == -1 || ::close(fd) == 0;
    }

private:
    int m_fd;
};

bool writeAll(int descriptor, std::string const& text)
{
    for (std::size_t written = 0; written < text.size();) {
        ssize_t const now = ::write(descriptor, text.data() + written, text.size() - written);
        if (now < 0 && errno != EINTR) {
            return false;
        }
        written += now < 0 ? 0 : static_cast<std::size_t>(now);
    }
    return true;
}

} // namespace

Profile Profile::load(std::string const& path)
{
    std::string const operation = "load " + path;
    File const file(path, O_RDONLY);
    std::string text;
    char part[4096];
    for (;;) {
        ssize_t const size =
            file.descriptor() == -1 ? -1 : ::read(file.descriptor(), part, sizeof part);
        if (size < 0 && errno == EINTR) {
            continue;
        }
        if (size < 0) {
            failWithFile(operation, errno);
        }
        text.append(part, static_cast<std::size_t>(size));
        if (text.size() > mostBytes) {
            throw Error({ErrorKind::BadRequest, operation, "too large for a profile"});
        }
        if (size == 0) {
            return fromJson(text);
        }
    }
}

void Profile::save(std::string const& path) const
{
    std::string const operation = "save " + path;
    // Beside the file, for a full disk must not cost the profile that was there.
    std::string const beside = path + ".new";
    std::string const text = json();
    File file(beside, O_WRONLY | O_CREAT | O_TRUNC);
    if (file.descriptor() == -1) {
        failWithFile(operation, errno);
    }
    if (!writeAll(file.descriptor(), text) || !file.close() ||
        std::rename(beside.c_str(), path.c_str()) != 0) {
        int const error = errno;
        ::unlink(beside.c_str());
        failWithFile(operation, error);
    }
}

} // namespace ImageAcquisition::Session
