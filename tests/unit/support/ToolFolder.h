// SPDX-License-Identifier: MIT
#pragma once

#include "ScratchFolder.h"

#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

/// While it lives, the process has a working directory and a PATH of its own, both empty at first,
/// for the tools that the library runs.
class ToolFolder
{
public:
    ToolFolder() : m_earlierFolder(std::filesystem::current_path())
    {
        std::filesystem::create_directory(m_root.path() / "bin");
        std::filesystem::create_directory(m_root.path() / "work");
        std::filesystem::current_path(m_root.path() / "work");
        char const* const path = std::getenv("PATH");
        m_earlierPath = path == nullptr ? "" : path;
        setenv("PATH", (m_root.path() / "bin").c_str(), 1);
        // What the test itself runs on is not for the tools.
        unsetenv("LD_PRELOAD");
    }
    ToolFolder(ToolFolder const&) = delete;
    ToolFolder& operator=(ToolFolder const&) = delete;
    ~ToolFolder()
    {
        setenv("PATH", m_earlierPath.c_str(), 1);
        std::filesystem::current_path(m_earlierFolder);
    }

    /// Puts a shell script on the PATH; it finds the working directory in $WORK.
    void onPath(std::string const& name, std::string const& script)
    {
        writeScript(m_root.path() / "bin" / name, script);
    }
    void inWorkingDirectory(std::string const& name, std::string const& script)
    {
        writeScript(m_root.path() / "work" / name, script);
    }

    /// A file of the working directory: what it holds, and what it is to hold.
    std::string read(std::string const& name) const
    {
        return wholeFile(m_root.path() / "work" / name);
    }
    void write(std::string const& name, std::string const& content) const
    {
        std::ofstream(m_root.path() / "work" / name) << content;
    }
    bool exists(std::string const& name) const
    {
        return std::filesystem::exists(m_root.path() / "work" / name);
    }

private:
    void writeScript(std::filesystem::path const& file, std::string const& script) const
    {
        std::ofstream(file) << "#!/bin/sh\nPATH=/usr/bin:/bin\nWORK='"
                            << (m_root.path() / "work").string() << "'\n"
                            << script << '\n';
        chmod(file.c_str(), 0755);
    }

    std::filesystem::path m_earlierFolder;
    ScratchFolder const m_root;
    std::string m_earlierPath;
};
