// SPDX-License-Identifier: MIT
#pragma once

#include "ShellCommand.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

/// Runs the wrapper.
inline CommandResult run(std::string const& arguments)
{
    return ShellCommand(std::string(WITH_VIRTUAL_CAMERA) + " " + arguments).finish();
}

inline std::string const client = SAMPLE_CLIENT;

/// A file of cameras, for as long as it lives.
class Configuration
{
public:
    explicit Configuration(std::string const& text)
        : m_path(testing::TempDir() + "virtual-cameras-" + std::to_string(getpid()))
    {
        std::ofstream(m_path) << text;
    }
    Configuration(Configuration const&) = delete;
    Configuration& operator=(Configuration const&) = delete;
    ~Configuration() { std::filesystem::remove(m_path); }

    std::string option() const { return "--config " + m_path + " "; }

private:
    std::string m_path;
};
