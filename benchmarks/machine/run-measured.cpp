// SPDX-License-Identifier: MIT
// Runs a command and prints one line about it: its exit status, its seconds, the seconds until its
// first byte on standard output (-1 where there was none or nobody asked), and its peak memory in
// kilobytes.
//   run-measured [--first-byte] COMMAND [ARGUMENT...]
// Without --first-byte the command's output goes nowhere, and marks tell an emulator that counts
// instructions where the command begins and ends.
#include "Marks.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace
{

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start)
{
    return std::chrono::duration<double>(Clock::now() - start).count();
}

[[noreturn]] void become(char** command, int output)
{
    dup2(output, STDOUT_FILENO);
    markBeginning();
    execvp(command[0], command);
    std::perror(command[0]);
    _exit(127);
}

/// Reads on to the end, so that the command is not ended by a closed pipe.
double awaitFirstByte(int input, Clock::time_point start)
{
    static char bytes[65536];
    double seconds = -1;
    while (read(input, bytes, sizeof bytes) > 0) {
        if (seconds < 0) {
            seconds = secondsSince(start);
        }
    }
    return seconds;
}

} // namespace

int main(int argc, char** argv)
{
    bool const awaited = argc > 1 && std::strcmp(argv[1], "--first-byte") == 0;
    char** const command = argv + (awaited ? 2 : 1);
    int ends[2] = {-1, -1};
    if (*command == nullptr || pipe2(ends, O_CLOEXEC) != 0) {
        std::fputs("usage: run-measured [--first-byte] COMMAND [ARGUMENT...]\n", stderr);
        return 2;
    }
    int const nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    auto const start = Clock::now();
    pid_t const child = fork();
    if (child == 0) {
        become(command, awaited ? ends[1] : nowhere);
    }
    close(ends[1]);
    double const first = awaited ? awaitFirstByte(ends[0], start) : -1;
    int status = 0;
    rusage usage{};
    wait4(child, &status, 0, &usage);
    markEnd();
    double const whole = secondsSince(start);
    std::printf("%d %.6f %.6f %ld\n", WIFEXITED(status) ? WEXITSTATUS(status) : 128, whole, first,
                usage.ru_maxrss);
}
