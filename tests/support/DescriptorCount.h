// SPDX-License-Identifier: MIT
#pragma once

#include "Await.h"

#include <dirent.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

/// What every descriptor of the process stands for, such as "pipe:[4711]".
inline std::vector<std::string> descriptorTargets()
{
    struct Closer
    {
        void operator()(DIR* directory) const { closedir(directory); }
    };
    std::unique_ptr<DIR, Closer> const directory(opendir("/proc/self/fd"));
    std::vector<std::string> targets;
    if (!directory) {
        return targets;
    }
    while (dirent const* const entry = readdir(directory.get())) {
        std::string const path = std::string("/proc/self/fd/") + entry->d_name;
        char target[4096];
        ssize_t const length = readlink(path.c_str(), target, sizeof target);
        if (length > 0 && std::atoi(entry->d_name) != dirfd(directory.get())) {
            targets.emplace_back(target, static_cast<std::size_t>(length));
        }
    }
    return targets;
}

/// How many descriptors the process has open.
inline int openDescriptors()
{
    return static_cast<int>(descriptorTargets().size());
}

/// Returns once the process has no more descriptors open than so many; false when that does not
/// come about within 5 seconds.
inline bool awaitAtMostDescriptors(int wanted)
{
    return await([wanted] { return openDescriptors() <= wanted; });
}
