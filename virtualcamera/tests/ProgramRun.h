// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

struct Outcome
{
    std::string output; ///< Standard output and error.
    int status = -1;
};

/// A command of the shell that runs beside the test.
class Running
{
public:
    explicit Running(std::string const& command) : m_pipe(popen((command + " 2>&1").c_str(), "r"))
    {
    }
    Running(Running const&) = delete;
    Running& operator=(Running const&) = delete;
    ~Running() { finish(); }

    /// Waits for the next line that it prints; empty at the end.
    std::string line()
    {
        std::string text;
        for (int letter = std::fgetc(m_pipe); letter != EOF && letter != '\n';
             letter = std::fgetc(m_pipe)) {
            text += static_cast<char>(letter);
        }
        return text;
    }
    /// Waits for its end; the output is what has not been asked for as lines.
    Outcome finish()
    {
        Outcome outcome;
        if (m_pipe == nullptr) {
            return outcome;
        }
        char text[256];
        while (std::fgets(text, sizeof text, m_pipe) != nullptr) {
            outcome.output += text;
        }
        int const status = pclose(m_pipe);
        m_pipe = nullptr;
        outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        return outcome;
    }

private:
    FILE* m_pipe;
};

inline Outcome run(std::string const& arguments)
{
    return Running(std::string(WITH_VIRTUAL_CAMERA) + " " + arguments).finish();
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
