// SPDX-License-Identifier: MIT
#include "Progress.h"

#include <unistd.h>

#include <chrono>
#include <cstdio>

namespace Iacq
{

Progress::Progress(std::string const& what)
{
    if (isatty(STDERR_FILENO) != 0) {
        m_thread = std::thread([this, what] { show(what); });
    }
}

Progress::~Progress()
{
    if (!m_thread.joinable()) {
        return;
    }
    {
        std::lock_guard<std::mutex> const lock(m_mutex);
        m_done = true;
    }
    m_changed.notify_all();
    m_thread.join();
}

void Progress::show(std::string const& what)
{
    constexpr auto period = std::chrono::milliseconds(300);
    std::unique_lock<std::mutex> lock(m_mutex);
    int rounds = 0;
    while (!m_changed.wait_for(lock, period, [this] { return m_done; })) {
        ++rounds;
        std::fprintf(stderr, "\riacq: %s %.*s\033[K", what.c_str(), 1 + rounds % 3, "...");
    }
    if (rounds > 0) {
        std::fputs("\r\033[K", stderr);
    }
}

} // namespace Iacq
