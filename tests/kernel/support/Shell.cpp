// SPDX-License-Identifier: MIT
#include "Shell.h"

#include <array>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <sys/wait.h>
#include <thread>

namespace KernelTest
{

CommandResult runShell(std::string const& line)
{
    // Standard input is this program's own, which no command may wait for.
    FILE* pipe = ::popen(("exec 2>&1 < /dev/null; " + line).c_str(), "r");
    if (pipe == nullptr) {
        throw std::runtime_error("cannot start a shell");
    }
    CommandResult result;
    std::array<char, 4096> bytes{};
    std::size_t count = 0;
    while ((count = std::fread(bytes.data(), 1, bytes.size(), pipe)) > 0) {
        result.output.append(bytes.data(), count);
    }
    int const status = ::pclose(pipe);
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return result;
}

std::vector<std::string> splitLines(std::string const& text)
{
    std::vector<std::string> lines;
    std::istringstream stream(text);
    std::string line;
    while (std::getline(stream, line)) {
        lines.push_back(line);
    }
    return lines;
}

std::string readFile(std::string const& path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    std::string content = text.str();
    while (!content.empty() && content.back() == '\n') {
        content.pop_back();
    }
    return content;
}

bool waitFor(std::function<bool()> const& condition, std::chrono::milliseconds limit)
{
    auto const until = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= until) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return true;
}

} // namespace KernelTest
