// SPDX-License-Identifier: MIT
#include "session/Error.h"
#include "session/Profile.h"

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

/// No camera has so many controls; a device that never ends does.
constexpr std::size_t mostBytes = std::size_t{16} << 20;

[[noreturn]] void failWithFile(std::string const& operation)
{
    int const error = errno;
    ErrorKind const kind = error == ENOENT                     ? ErrorKind::NotFound
                           : error == EACCES || error == EPERM ? ErrorKind::NoPermission
                                                               : ErrorKind::Refused;
    throw Error({kind, operation, toText(kind), {}, error});
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
    if (text.size() > mostBytes) {
        throw Error({ErrorKind::BadRequest, operation, "too large for a profile"});
    }
    if (!file.eof()) {
        failWithFile(operation);
    }
    return fromJson(text);
}

void Profile::save(std::string const& path) const
{
    // Beside the file, for a full disk must not cost the profile that was there. What is no file, such
    // as /dev/stdout, is not replaced by one.
    std::error_code ignored;
    bool const isReplaced = !std::filesystem::is_other(path, ignored);
    std::string const written = isReplaced ? path + ".new" : path;
    std::string const text = json();
    errno = 0;
    std::ofstream file(written, std::ios::binary | std::ios::trunc);
    bool const isWritten = file.is_open() && file << text && file.flush();
    if (isWritten && (!isReplaced || std::rename(written.c_str(), path.c_str()) == 0)) {
        return;
    }
    int const error = errno;
    if (isReplaced && file.is_open()) {
        unlink(written.c_str());
    }
    errno = error;
    failWithFile("save " + path);
}

} // namespace ImageAcquisition::Session
