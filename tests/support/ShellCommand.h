// SPDX-License-Identifier: MIT
#pragma once

#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <stdexcept>
#include <string>

/// What a command left behind.
struct CommandResult
{
    int status = -1;    ///< Its exit status, or 128 and the signal that ended it.
    std::string output; ///< Standard output and standard error, in the order they were written.
};

/// A line of the shell that runs beside the test. It has nothing to read: standard input would be
/// the test's own, which no command may wait for.
class ShellCommand
{
public:
    explicit ShellCommand(std::string const& line)
        : m_pipe(popen(("exec 2>&1 </dev/null; " + line).c_str(), "r"))
    {
        if (m_pipe == nullptr) {
            throw std::runtime_error("cannot start a shell");
        }
    }
    ShellCommand(ShellCommand const&) = delete;
    ShellCommand& operator=(ShellCommand const&) = delete;
    ~ShellCommand() { finish(); }

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
    CommandResult finish()
    {
        CommandResult result;
        if (m_pipe == nullptr) {
            return result;
        }
        std::array<char, 4096> bytes{};
        for (std::size_t count = 0;
             (count = std::fread(bytes.data(), 1, bytes.size(), m_pipe)) > 0;) {
            result.output.append(bytes.data(), count);
        }
        int const status = pclose(m_pipe);
        m_pipe = nullptr;
        result.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        return result;
    }

private:
    FILE* m_pipe;
};
