// SPDX-License-Identifier: MIT
#include "TtyName.h"

#include <signal.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <system_error>
#include <thread>
#include <utility>

namespace VirtualCamera
{

namespace
{

std::string nameOf(int digit)
{
    return "ttyACM" + std::to_string(digit);
}

std::string lockFileOf(int digit)
{
    return "/var/lock/LCK.." + nameOf(digit);
}

/// Such locks begin with the number of the process that holds them.
bool isHeldByNobody(std::string const& lockFile)
{
    pid_t holder = 0;
    return std::ifstream(lockFile) >> holder && holder > 0 && kill(holder, 0) == -1 &&
           errno == ESRCH;
}

/// False also when a lock that is left over belongs to somebody else and cannot be taken away.
bool isUnlocked(int digit)
{
    std::string const file = lockFileOf(digit);
    std::error_code ignored;
    if (isHeldByNobody(file)) {
        std::filesystem::remove(file, ignored);
    }
    return !std::filesystem::exists(std::filesystem::symlink_status(file, ignored));
}

} // namespace

TtyName::TtyName()
{
    using Clock = std::chrono::steady_clock;
    constexpr int digits = 10; // Clients look for one digit only.
    Clock::time_point const end = Clock::now() + std::chrono::seconds(20);
    while (Clock::now() < end) {
        for (int digit = 0; digit < digits; ++digit) {
            if (reserve(digit)) {
                return;
            }
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    throw std::runtime_error("no name for a serial port is free");
}

TtyName::TtyName(TtyName&& other) noexcept
    : m_digit(other.m_digit), m_reservation(std::exchange(other.m_reservation, -1))
{
}

TtyName::~TtyName()
{
    if (m_reservation != -1) {
        isUnlocked(m_digit);
        close(m_reservation);
    }
}

std::string TtyName::text() const
{
    return nameOf(m_digit);
}

std::string TtyName::lockFile() const
{
    return lockFileOf(m_digit);
}

// An abstract socket is seen by all users, needs no file that one of them would own, and goes with
// its process, however that ends.
bool TtyName::reserve(int digit)
{
    std::string const name = "imageacquisition-" + nameOf(digit);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    // The zero in front makes it abstract.
    std::memcpy(address.sun_path + 1, name.data(), name.size());
    auto const length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + name.size());
    int const descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    bool const taken = bind(descriptor, reinterpret_cast<sockaddr const*>(&address), length) != 0 ||
                       !isUnlocked(digit);
    if (taken) {
        close(descriptor);
        return false;
    }
    m_digit = digit;
    m_reservation = descriptor;
    return true;
}

} // namespace VirtualCamera
