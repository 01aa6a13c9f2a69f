// SPDX-License-Identifier: MIT
#include "TtyName.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <stdexcept>
#include <thread>
#include <utility>

namespace VirtualCamera
{

namespace files = std::filesystem;

TtyName::TtyName()
{
    using Clock = std::chrono::steady_clock;
    constexpr int digits = 10; // Clients look for one digit only.
    Clock::time_point const end = Clock::now() + std::chrono::seconds(20);
    while (Clock::now() < end) {
        for (int digit = 0; digit < digits; ++digit)
            if (reserve(digit))
                return;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    throw std::runtime_error("no name for a serial port is free");
}

TtyName::TtyName(TtyName&& other) noexcept
    : _digit(other._digit), _reservation(std::exchange(other._reservation, -1))
{
}

TtyName::~TtyName()
{
    if (_reservation != -1)
        close(_reservation);
}

bool TtyName::reserve(int digit)
{
    std::string const name = "ttyACM" + std::to_string(digit);
    // The unit tests reserve their names by the same files.
    files::path const file = files::temp_directory_path() / ("imageacquisition-test-" + name);
    int const descriptor = open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    bool const taken =
        flock(descriptor, LOCK_EX | LOCK_NB) != 0 || files::exists("/var/lock/LCK.." + name);
    if (taken && descriptor != -1)
        close(descriptor);
    if (taken)
        return false;
    _digit = digit;
    _reservation = descriptor;
    return true;
}

} // namespace VirtualCamera
