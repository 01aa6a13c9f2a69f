// SPDX-License-Identifier: MIT
#pragma once

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

/// While it lives, the process has a working directory and a PATH of its own, both empty at first,
/// for the tools that the library runs.
class ToolFolder
{
public:
    ToolFolder() : m_earlierFolder(std::filesystem::current_path())
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "tools-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr) {
            throw std::runtime_error("cannot make " + pattern);
        }
        m_root = pattern;
        std::filesystem::create_directory(m_root / "bin");
        std::filesystem::create_directory(m_root / "work");
        std::filesystem::current_path(m_root / "work");
        char const* const path = std::getenv("PATH");
        m_earlierPath = path == nullptr ? "" : path;
        setenv("PATH", (m_root / "bin").c_str(), 1);
        // What the test itself runs on is not for the tools.
        unsetenv("LD_PRELOAD");
    }
    ToolFolder(ToolFolder const&) = delete;
    ToolFolder& operator=(ToolFolder const&) = delete;
    ~ToolFolder()
    {
        setenv("PATH", m_earlierPath.c_str(), 1);
        std::filesystem::current_path(m_earlierFolder);
        std::error_code ignored;
        std::filesystem::remove_all(m_root, ignored);
    }

    /// Puts a shell script on the PATH; it finds the working directory in $WORK.
    void onPath(std::string const& name, std::string const& script)
    {
        writeScript(m_root / "bin" / name, script);
    }
    void inWorkingDirectory(std::string const& name, std::string const& script)
    {
        writeScript(m_root / "work" / name, script);
    }

    /// A file of the working directory: what it holds, and what it is to hold.
    std::string read(std::string const& name) const
    {
        std::ifstream file(m_root / "work" / name);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    void write(std::string const& name, std::string const& content) const
    {
        std::ofstream(m_root / "work" / name) << content;
    }
    bool exists(std::string const& name) const
    {
        return std::filesystem::exists(m_root / "work" / name);
    }

private:
    void writeScript(std::filesystem::path const& file, std::string const& script) const
    {
        std::ofstream(file) << "#!/bin/sh\nPATH=/usr/bin:/bin\nWORK='" << (m_root / "work").string()
                            << "'\n"
                            << script << '\n';
        chmod(file.c_str(), 0755);
    }

    std::filesystem::path m_earlierFolder;
    std::filesystem::path m_root;
    std::string m_earlierPath;
};
