// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

namespace VirtualCamera
{

/// A folder below the temporary one, or below /tmp when the name of that is very long, which only
/// this user can look into. A process of its own waits for the end of this one and removes the
/// folder then, so that it goes however that end comes, by abort() in a library or by SIGKILL.
class PrivateFolder
{
public:
    /// Has to be made before this process has any other thread. @throws std::runtime_error
    PrivateFolder();
    PrivateFolder(PrivateFolder const&) = delete;
    PrivateFolder& operator=(PrivateFolder const&) = delete;
    /// The folder is gone when this returns.
    ~PrivateFolder();

    std::string const& path() const { return m_path; }

private:
    [[noreturn]] void removeAtTheEnd(int lifeline) const;

    std::string m_path;
    int m_lifeline = -1; ///< The remover reads its other end, which ends with this process.
    pid_t m_remover = -1;
};

/// Lets the process use another temporary folder as long as this lives.
class TemporaryFolderIs
{
public:
    explicit TemporaryFolderIs(std::string const& path);
    TemporaryFolderIs(TemporaryFolderIs const&) = delete;
    TemporaryFolderIs& operator=(TemporaryFolderIs const&) = delete;
    ~TemporaryFolderIs();

private:
    std::optional<std::string> m_earlier;
};

} // namespace VirtualCamera
