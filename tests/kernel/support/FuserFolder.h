// SPDX-License-Identifier: MIT
#pragma once

#include "ScratchFolder.h"

#include <filesystem>

namespace KernelTest
{

/// While it lives, the working directory is one of its own, with the real fuser in it: the library
/// looks for the tool there.
class FuserFolder
{
public:
    FuserFolder();
    ~FuserFolder();
    FuserFolder(FuserFolder const&) = delete;
    FuserFolder& operator=(FuserFolder const&) = delete;

private:
    std::filesystem::path m_earlier = std::filesystem::current_path();
    ScratchFolder const m_folder;
};

} // namespace KernelTest
