// SPDX-License-Identifier: MIT
#include "session/Error.h"
#include "session/Profile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace ImageAcquisition::Session
{

namespace
{

/// More than a profile may have, for a device that never ends.
constexpr std::size_t mostBytes = std::size_t{1} << 20;

[[noreturn]] void failWithFile(std::string const& operation)
{
    int const error = errno;
    ErrorKind const kind = error == ENOENT                     ? ErrorKind::NotFound
                           : error == EACCES || error == EPERM ? ErrorKind::NoPermission
                                                               : ErrorKind::Refused;
    throw Error({kind, operation, toText(kind), {}, error});
}

void write(std::string const& operation, std::ofstream file, std::string const& text)
{
    if (!file.is_open() || !(file << text) || !file.flush()) {
        failWithFile(operation);
    }
}

/// Makes a new file, with the rights of the one whose place it is to take, if that is there.
/// @return its path.
std::string makeBeside(std::string const& file, std::string const& operation)
{
    struct stat there
    {
    };
    bool const isThere = stat(file.c_str(), &there) == 0;
    std::string const start = file + "." + std::to_string(getpid()) + ".";
    for (int number = 0;; ++number) {
        std::string path = start + std::to_string(number);
        int const descriptor = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (descriptor != -1) {
            if (isThere) {
                fchmod(descriptor, there.st_mode & 0777U);
            }
            close(descriptor);
            return path;
        }
        if (errno != EEXIST) {
            failWithFile(operation);
        }
    }
}

} // namespace

Profile Profile::load(std::string const& path)
{
    std::string const operation = "load " + path;
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    std::string text;
    for (char part[4096]; file && text.size() <= mostBytes;) {
        file.read(part, sizeof part);
        text.append(part, static_cast<std::size_t>(file.gcount()));
    }
    if (!file.eof() && text.size() <= mostBytes) {
        failWithFile(operation);
    }
    return fromJson(text);
}

void Profile::save(std::string const& path) const
{
    std::string const operation = "save " + path;
    std::error_code error;
    // What is no file, such as /dev/stdout, is not replaced by one.
    if (std::filesystem::is_other(path, error)) {
        write(operation, std::ofstream(path), json());
        return;
    }
    std::string const file = std::filesystem::is_symlink(path, error)
                                 ? std::filesystem::weakly_canonical(path, error).string()
                                 : path;
    // Beside the file, for a full disk must not cost the profile that was there.
    std::string const beside = makeBeside(file, operation);
    try {
        write(operation, std::ofstream(beside), json());
        if (std::rename(beside.c_str(), file.c_str()) != 0) {
            failWithFile(operation);
        }
    } catch (...) {
        unlink(beside.c_str());
        throw;
    }
}

} // namespace ImageAcquisition::Session
