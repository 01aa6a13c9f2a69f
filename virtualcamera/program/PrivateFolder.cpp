// SPDX-License-Identifier: MIT
#include "PrivateFolder.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <system_error>

namespace VirtualCamera
{

namespace
{

constexpr char variable[] = "TMPDIR";

std::runtime_error failure(std::string const& what)
{
    return std::runtime_error(what + ": " + std::strerror(errno));
}

// umockdev makes sockets in the folder, whose names have to be short.
std::string temporaryFolder()
{
    constexpr std::size_t most = sizeof sockaddr_un::sun_path -
                                 sizeof "/virtcam-XXXXXX/umockdev.XXXXXX/ioctl/dev/bus/usb/001/002";
    char const* const given = std::getenv(variable);
    std::string const folder = given == nullptr ? "" : given;
    return folder.empty() || folder.size() > most ? "/tmp" : folder;
}

std::string makeFolder()
{
    std::string const parent = temporaryFolder();
    std::string path = parent + "/virtcam-XXXXXX";
    if (mkdtemp(path.data()) == nullptr) {
        throw failure("cannot make a folder in " + parent);
    }
    return path;
}

} // namespace

PrivateFolder::PrivateFolder() : m_path(makeFolder())
{
    std::array<int, 2> ends{};
    bool const joined = pipe2(ends.data(), O_CLOEXEC) == 0;
    m_remover = joined ? fork() : -1;
    if (m_remover == -1) {
        std::runtime_error const failed = failure("cannot watch over " + m_path);
        rmdir(m_path.c_str());
        throw failed;
    }
    if (m_remover == 0) {
        close(ends[1]);
        removeAtTheEnd(ends[0]);
    }
    close(ends[0]);
    m_lifeline = ends[1];
}

PrivateFolder::~PrivateFolder()
{
    close(m_lifeline);
    while (waitpid(m_remover, nullptr, 0) == -1 && errno == EINTR) {
    }
}

void PrivateFolder::removeAtTheEnd(int lifeline) const
{
    // What the terminal or a caller sends to the whole group is not meant for this process.
    setsid();
    char nothing = 0;
    while (read(lifeline, &nothing, 1) == -1 && errno == EINTR) {
    }
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
    _exit(EXIT_SUCCESS);
}

TemporaryFolderIs::TemporaryFolderIs(std::string const& path)
{
    if (char const* const earlier = std::getenv(variable)) {
        m_earlier = earlier;
    }
    setenv(variable, path.c_str(), 1);
}

TemporaryFolderIs::~TemporaryFolderIs()
{
    if (m_earlier) {
        setenv(variable, m_earlier->c_str(), 1);
    } else {
        unsetenv(variable);
    }
}

} // namespace VirtualCamera
