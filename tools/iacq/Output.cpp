// SPDX-License-Identifier: MIT
#include "Output.h"

#include "Failure.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <optional>

namespace Iacq
{

namespace
{

/// A "%d" or "%04d" in a name.
struct NumberPattern
{
    std::size_t at;
    std::size_t size;
    int width;
};

/// The first pattern from @p start on; any other "%" is a character like the rest.
std::optional<NumberPattern> findPattern(std::string const& path, std::size_t start)
{
    for (auto at = path.find('%', start); at != std::string::npos; at = path.find('%', at + 1)) {
        if (path.compare(at, 2, "%d") == 0) {
            return NumberPattern{at, 2, 1};
        }
        if (path.compare(at, 2, "%0") == 0 && path[at + 2] >= '1' && path[at + 2] <= '9' &&
            path.compare(at + 3, 1, "d") == 0) {
            return NumberPattern{at, 4, path[at + 2] - '0'};
        }
    }
    return std::nullopt;
}

std::string withNumber(std::string const& path, NumberPattern const& pattern, int number)
{
    std::size_t const behind = pattern.at + pattern.size;
    if (findPattern(path, behind)) {
        throw Failure(BadUsage, "'" + path + "' has more than one place for the number");
    }
    char text[32];
    std::snprintf(text, sizeof text, "%0*d", pattern.width, number);
    return path.substr(0, pattern.at) + text + path.substr(behind);
}

} // namespace

std::string numberedPath(std::string const& path, int number, int count)
{
    if (auto const pattern = findPattern(path, 0)) {
        return withNumber(path, *pattern, number);
    }
    if (count <= 1 || path == "-" || isSpecialFile(path)) {
        return path;
    }
    char text[32];
    std::snprintf(text, sizeof text, "-%04d", number);
    auto const dot = path.find_last_of("./");
    auto const at = dot != std::string::npos && path[dot] == '.' ? dot : path.size();
    return path.substr(0, at) + text + path.substr(at);
}

void print(std::string const& text)
{
    if (!writeAll(STDOUT_FILENO, reinterpret_cast<unsigned char const*>(text.data()),
                  text.size())) {
        failWriting("standard output");
    }
}

void closeStandardOutput()
{
    // Nobody misses what was closed from the start: whatever was to be written has failed already.
    if (::close(STDOUT_FILENO) != 0 && errno != EBADF) {
        failWriting("standard output");
    }
}

} // namespace Iacq
