// SPDX-License-Identifier: MIT
#pragma once

#include "Await.h"
#include "WholeFile.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

/// Another program that has a file open until the object goes.
class HoldingProcess
{
public:
    explicit HoldingProcess(std::string const& path)
    {
        int const descriptor = open(path.c_str(), O_RDONLY);
        m_id = fork();
        if (m_id == 0) {
            execlp("sleep", "sleep", "600", nullptr);
            _exit(1);
        }
        close(descriptor);
        await([this] { return wholeFile("/proc/" + std::to_string(m_id) + "/comm") == "sleep\n"; });
    }
    HoldingProcess(HoldingProcess const&) = delete;
    HoldingProcess& operator=(HoldingProcess const&) = delete;
    ~HoldingProcess()
    {
        kill(m_id, SIGKILL);
        waitpid(m_id, nullptr, 0);
    }

    pid_t id() const { return m_id; }
    static std::string name() { return "sleep"; }

private:
    pid_t m_id;
};
