// SPDX-License-Identifier: MIT
#include "FuserFolder.h"

#include "Shell.h"

#include <cstdlib>
#include <stdexcept>

namespace KernelTest
{

FuserFolder::FuserFolder()
{
    std::string const fuser = runShell("command -v fuser").output;
    char pattern[] = "/tmp/fuser.XXXXXX";
    if (fuser.empty() || ::mkdtemp(pattern) == nullptr) {
        throw std::runtime_error("there is no fuser, or no folder for it");
    }
    m_folder = pattern;
    std::filesystem::create_symlink(splitLines(fuser).front(), m_folder / "fuser");
    // Also for a user without rights, as which a test may run.
    std::filesystem::permissions(m_folder, std::filesystem::perms(0755));
    std::filesystem::current_path(m_folder);
}

FuserFolder::~FuserFolder()
{
    std::filesystem::current_path(m_earlier);
    std::error_code ignored;
    std::filesystem::remove_all(m_folder, ignored);
}

} // namespace KernelTest
