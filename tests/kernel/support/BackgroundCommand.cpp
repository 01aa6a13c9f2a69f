// SPDX-License-Identifier: MIT
#include "BackgroundCommand.h"

#include "Shell.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace KernelTest
{

BackgroundCommand::BackgroundCommand(std::string const& line)
{
    char file[] = "/tmp/background-XXXXXX";
    ::close(::mkstemp(file));
    m_file = file;
    std::string const text = "exec < /dev/null > " + m_file + " 2>&1; exec " + line;
    char const* const arguments[] = {"sh", "-c", text.c_str(), nullptr};
    if (::posix_spawn(&m_process, "/bin/sh", nullptr, nullptr, const_cast<char**>(arguments),
                      environ) != 0) {
        throw std::runtime_error("cannot start " + line);
    }
}

BackgroundCommand::~BackgroundCommand()
{
    if (m_process != -1) {
        signal(SIGKILL);
        ::waitpid(m_process, nullptr, 0);
    }
    ::unlink(m_file.c_str());
}

std::string BackgroundCommand::output() const
{
    return readFile(m_file);
}

void BackgroundCommand::signal(int number) const
{
    ::kill(m_process, number);
}

bool BackgroundCommand::listensToUdev() const
{
    std::ifstream table("/proc/net/netlink");
    std::string line;
    while (std::getline(table, line)) {
        std::istringstream words(line);
        std::string socket;
        std::string protocol;
        std::string port;
        std::string groups;
        words >> socket >> protocol >> port >> groups;
        if (protocol == "15" && port == std::to_string(m_process) && groups == "00000002") {
            return true;
        }
    }
    return false;
}

int BackgroundCommand::wait()
{
    int status = 0;
    if (!waitFor([&] { return ::waitpid(m_process, &status, WNOHANG) == m_process; })) {
        return -1;
    }
    m_process = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

} // namespace KernelTest
