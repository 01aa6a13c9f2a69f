// SPDX-License-Identifier: MIT
#include "Shell.h"

#include "Await.h"
#include "WholeFile.h"

#include <ctime>
#include <sstream>

namespace KernelTest
{

CommandResult runShell(std::string const& line)
{
    return ShellCommand(line).finish();
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
    std::string content = wholeFile(path);
    while (!content.empty() && content.back() == '\n') {
        content.pop_back();
    }
    return content;
}

double monotonicSeconds()
{
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

bool waitFor(std::function<bool()> const& condition, std::chrono::milliseconds limit)
{
    // Each look takes long where the processor is emulated.
    return await(condition, limit, std::chrono::milliseconds(20));
}

} // namespace KernelTest
