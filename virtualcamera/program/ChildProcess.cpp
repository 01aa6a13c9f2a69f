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
#include <csignal>
#include <system_error>

extern char** environ;

namespace VirtualCamera
{

namespace
{

std::atomic<pid_t> receiver{0};

void passOn(int signal)
{
    if (pid_t const process = receiver) {
        kill(process, signal);
    }
}

constexpr int passedSignals[] = {SIGTERM, SIGHUP, SIGUSR1, SIGUSR2};
// The terminal sends these to both processes; the child decides what becomes of it.
constexpr int terminalSignals[] = {SIGINT, SIGQUIT};

/// Ignores a signal; one that came when there was no child yet is the child's.
void leaveToChild(int signal, pid_t child)
{
    sigset_t pending;
    sigpending(&pending);
    if (sigismember(&pending, signal) == 1) {
        kill(child, signal);
    }
    std::signal(signal, SIG_IGN);
}

} // namespace

BlockedSignals::BlockedSignals()
{
    sigset_t passed;
    sigemptyset(&passed);
    for (int const signal : passedSignals) {
        sigaddset(&passed, signal);
    }
    for (int const signal : terminalSignals) {
        sigaddset(&passed, signal);
    }
    pthread_sigmask(SIG_BLOCK, &passed, &m_earlier);
}

ChildProcess::ChildProcess(std::vector<std::string> const& command, BlockedSignals const& blocked)
{
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (std::string const& argument : command) {
        arguments.push_back(const_cast<char*>(argument.c_str()));
    }
    arguments.push_back(nullptr);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setsigmask(&attributes, &blocked.earlier());
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
    int const error = posix_spawnp(&m_process, arguments.front(), nullptr, &attributes,
                                   arguments.data(), environ);
    posix_spawnattr_destroy(&attributes);
    if (error != 0) {
        throw std::system_error(error, std::generic_category(), command.front());
    }
    receiver = m_process;
    struct sigaction action
    {
    };
    action.sa_handler = passOn;
    for (int const passed : passedSignals) {
        sigaction(passed, &action, nullptr);
    }
    for (int const signal : terminalSignals) {
        leaveToChild(signal, m_process);
    }
    pthread_sigmask(SIG_SETMASK, &blocked.earlier(), nullptr);
    m_processDescriptor = static_cast<int>(syscall(SYS_pidfd_open, m_process, 0));
}

bool ChildProcess::waitFor(int milliseconds)
{
    pollfd waiting{m_processDescriptor, POLLIN, 0};
    if (m_running && poll(&waiting, 1, milliseconds) > 0) {
        int status = 0;
        while (waitpid(m_process, &status, 0) == -1 && errno == EINTR) {
        }
        ended(status);
    }
    return !m_running;
}

void ChildProcess::ended(int status)
{
    receiver = 0;
    close(m_processDescriptor);
    m_running = false;
    m_exitStatus = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

} // namespace VirtualCamera
