// SPDX-License-Identifier: MIT
#pragma once

#include "WholeFile.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

/// A folder of its own for a test, gone with its contents afterwards.
class ScratchFolder
{
public:
    ScratchFolder()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "test-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr) {
            throw std::runtime_error("cannot make " + pattern);
        }
        m_path = pattern;
    }
    ~ScratchFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    ScratchFolder(ScratchFolder const&) = delete;
    ScratchFolder& operator=(ScratchFolder const&) = delete;

    std::filesystem::path const& path() const { return m_path; }
    std::string path(std::string const& name) const { return (m_path / name).string(); }

    /// Writes a file of it; the result is its path.
    std::string write(std::string const& name, std::string const& text) const
    {
        std::ofstream(path(name)) << text;
        return path(name);
    }
    std::string read(std::string const& name) const { return wholeFile(path(name)); }
    bool has(std::string const& name) const { return std::filesystem::exists(path(name)); }

    /// The names of what is in it, in their order.
    std::vector<std::string> names() const
    {
        std::vector<std::string> result;
        for (auto const& entry : std::filesystem::directory_iterator(m_path)) {
            result.push_back(entry.path().filename());
        }
        std::sort(result.begin(), result.end());
        return result;
    }

private:
    std::filesystem::path m_path;
};
