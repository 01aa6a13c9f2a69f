// SPDX-License-Identifier: MIT
#include "FuserFolder.h"

#include "Shell.h"

#include <stdexcept>

namespace KernelTest
{

FuserFolder::FuserFolder()
{
    std::string const fuser = runShell("command -v fuser").output;
    if (fuser.empty()) {
        throw std::runtime_error("there is no fuser");
    }
    std::filesystem::create_symlink(splitLines(fuser).front(), m_folder.path("fuser"));
    // Also for a user without rights, as which a test may run.
    std::filesystem::permissions(m_folder.path(), std::filesystem::perms(0755));
    std::filesystem::current_path(m_folder.path());
}

FuserFolder::~FuserFolder()
{
    std::filesystem::current_path(m_earlier);
}

} // namespace KernelTest
