// SPDX-License-Identifier: MIT
#include "Run.h"

#include "Marks.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace
{

void endWithUsage()
{
    std::fputs("usage: PROGRAM [--frames N] [--buffers N] [--start-only] [--lists] [--announce] "
               "[--report] [NODE]\n",
               stderr);
    std::exit(2);
}

unsigned int numberIn(char const* text)
{
    char* end = nullptr;
    unsigned long const number = text == nullptr ? 0 : std::strtoul(text, &end, 10);
    if (text == nullptr || end == text || *end != '\0') {
        endWithUsage();
    }
    return static_cast<unsigned int>(number);
}

/// Files that the process has mapped as programs: names with ".so" in them, but not what measures.
/// The pieces of one file follow each other. Without the C++ library, which a loop by hand need not
/// have.
unsigned int sharedObjects()
{
    std::FILE* const maps = std::fopen("/proc/self/maps", "r");
    unsigned int count = 0;
    char line[4096] = "";
    char last[4096] = "";
    while (maps != nullptr && std::fgets(line, sizeof line, maps) != nullptr) {
        char const* const path = std::strchr(line, '/');
        if (path != nullptr && std::strstr(path, ".so") != nullptr &&
            std::strstr(path, "/libbenchmark-") == nullptr && std::strcmp(path, last) != 0) {
            ++count;
            std::snprintf(last, sizeof last, "%s", path);
        }
    }
    if (maps != nullptr) {
        std::fclose(maps);
    }
    return count;
}

/// The high-water mark of this very program; what the kernel counts for a process includes the
/// program that it was before exec.
unsigned long peakKilobytes()
{
    std::FILE* const status = std::fopen("/proc/self/status", "r");
    unsigned long peak = 0;
    char line[256];
    while (status != nullptr && std::fgets(line, sizeof line, status) != nullptr) {
        if (std::strncmp(line, "VmHWM:", 6) == 0) {
            peak = std::strtoul(line + 6, nullptr, 10);
        }
    }
    if (status != nullptr) {
        std::fclose(status);
    }
    return peak;
}

} // namespace

Run parseRun(int argc, char** argv)
{
    Run run;
    for (char** word = argv + 1; word < argv + argc; ++word) {
        if (std::strcmp(*word, "--frames") == 0) {
            run.frames = numberIn(*++word);
        } else if (std::strcmp(*word, "--buffers") == 0) {
            run.buffers = numberIn(*++word);
        } else if (std::strcmp(*word, "--start-only") == 0) {
            run.startOnly = true;
        } else if (std::strcmp(*word, "--announce") == 0) {
            run.announced = true;
        } else if (std::strcmp(*word, "--lists") == 0) {
            run.listed = true;
        } else if (std::strcmp(*word, "--report") == 0) {
            run.reported = true;
        } else if (**word == '-') {
            endWithUsage();
        } else {
            run.node = *word;
        }
    }
    return run;
}

void streamIsOn(Run const& run)
{
    markPassage();
    if (run.startOnly) {
        _exit(EXIT_SUCCESS);
    }
}

void framesAreThrough()
{
    markPassage();
}

void announceFrame(Run const& run)
{
    if (run.announced && write(STDOUT_FILENO, "\n", 1) != 1) {
        std::exit(EXIT_FAILURE);
    }
}

void report(Run const& run)
{
    if (run.reported) {
        // Read first: the report itself takes memory.
        unsigned long const peak = peakKilobytes();
        std::printf("%lu %u\n", peak, sharedObjects());
    }
}
