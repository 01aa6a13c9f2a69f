// SPDX-License-Identifier: MIT
#pragma once

#include "Await.h"
#include "DescriptorCount.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

/// What the process has open, in a fixed order. Without sockets: umockdev's preload library makes
/// some for nodes that are opened, keeps those of nodes that cannot be, and nothing else here does.
inline std::vector<std::string> descriptorsButSockets()
{
    std::vector<std::string> targets = descriptorTargets();
    targets.erase(
        std::remove_if(targets.begin(), targets.end(),
                       [](std::string const& one) { return one.rfind("socket:", 0) == 0; }),
        targets.end());
    std::sort(targets.begin(), targets.end());
    return targets;
}

/// State letter and parent of a process, as /proc tells them; '\0' when there is no such process.
struct ProcessState
{
    explicit ProcessState(std::string const& process)
    {
        std::ifstream file("/proc/" + process + "/stat");
        std::string const line((std::istreambuf_iterator<char>(file)), {});
        std::size_t const behindName = line.rfind(')');
        if (behindName != std::string::npos) {
            std::istringstream(line.substr(behindName + 1)) >> letter >> parent;
        }
    }

    /// A zombie counts as gone: it only waits for its parent to take note.
    bool running() const { return letter != '\0' && letter != 'Z' && letter != 'X'; }

    char letter = '\0';
    int parent = -1;
};

/// How many children this process has, those that ended but were not waited for included.
inline int childrenOfThisProcess()
{
    int count = 0;
    for (auto const& entry : std::filesystem::directory_iterator("/proc")) {
        std::string const name = entry.path().filename().string();
        if (name.find_first_not_of("0123456789") == std::string::npos &&
            ProcessState(name).parent == getpid()) {
            ++count;
        }
    }
    return count;
}

inline int wordsIn(std::string const& text)
{
    std::istringstream stream(text);
    return static_cast<int>(std::distance(std::istream_iterator<std::string>(stream), {}));
}

/// Waits until none of the processes, given as numbers with spaces between, runs any more; false
/// when one still runs after 5 s.
inline bool allEnd(std::string const& processes)
{
    std::istringstream stream(processes);
    std::vector<std::string> const all(std::istream_iterator<std::string>(stream), {});
    return await([&all] {
        return std::none_of(all.begin(), all.end(), [](std::string const& process) {
            return ProcessState(process).running();
        });
    });
}
