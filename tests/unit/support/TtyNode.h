// SPDX-License-Identifier: MIT
#pragma once

#include "Testbed.h"
#include "TtyName.h"

#include <filesystem>
#include <string>

/// Lets a pseudo-terminal appear as "/dev/ttyACM" and a digit. No two tests that run at a time get
/// the same digit: Qt keeps one lock file for each name of a tty on the whole machine.
class TtyNode
{
public:
    TtyNode(VirtualCamera::Testbed const& testbed, std::string const& terminal)
    {
        std::filesystem::path const node = testbed.rootDirectory() + path();
        std::filesystem::create_directories(node.parent_path());
        std::filesystem::remove(node);
        std::filesystem::create_symlink(terminal, node);
    }

    /// Such as "ttyACM3", and another that no device bears.
    std::string name() const { return m_name.text(); }
    std::string otherName() const
    {
        std::string other = name();
        other.back() = other.back() == '9' ? '0' : static_cast<char>(other.back() + 1);
        return other;
    }
    std::string path() const { return "/dev/" + name(); }
    /// Where Qt keeps the lock.
    std::string lockFile() const { return m_name.lockFile(); }

private:
    VirtualCamera::TtyName m_name;
};
