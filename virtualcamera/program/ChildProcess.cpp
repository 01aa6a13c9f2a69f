// SPDX-License-Identifier: MIT
#include "ChildProcess.h"

#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <system_error>

extern char** environ;

namespace VirtualCamera
{

namespace
{

std::atomic<pid_t> receiver{0};

void passOn(int signal)
{
    if (pid_t const process = receiver)
        kill(process, signal);
}

void passSignalsOn(pid_t process)
{
    receiver = process;
    struct sigaction action{};
    action.sa_handler = passOn;
    for (int const signal : {SIGTERM, SIGHUP, SIGUSR1, SIGUSR2})
        sigaction(signal, &action, nullptr);
    // The terminal sends these to both; the child decides what becomes of it.
    action.sa_handler = SIG_IGN;
    for (int const signal : {SIGINT, SIGQUIT})
        sigaction(signal, &action, nullptr);
}

} // namespace

ChildProcess::ChildProcess(std::vector<std::string> const& command)
{
    std::vector<char*> arguments;
    for (std::string const& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    int const error =
        posix_spawnp(&_process, arguments.front(), nullptr, nullptr, arguments.data(), environ);
    if (error != 0)
        throw std::system_error(error, std::generic_category(), command.front());
    passSignalsOn(_process);
    _processDescriptor = static_cast<int>(syscall(SYS_pidfd_open, _process, 0));
}

bool ChildProcess::waitFor(int milliseconds)
{
    pollfd waiting{_processDescriptor, POLLIN, 0};
    if (_running && poll(&waiting, 1, milliseconds) > 0) {
        int status = 0;
        while (waitpid(_process, &status, 0) == -1 && errno == EINTR) {
        }
        ended(status);
    }
    return !_running;
}

void ChildProcess::ended(int status)
{
    receiver = 0;
    close(_processDescriptor);
    _running = false;
    _exitStatus = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

} // namespace VirtualCamera
