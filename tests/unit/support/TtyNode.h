// SPDX-License-Identifier: MIT
#pragma once

#include "Testbed.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <thread>

/// Lets a pseudo-terminal appear as "/dev/ttyACM" and a digit. No two tests that run at a time get
/// the same digit: Qt keeps one lock file for each name of a tty on the whole machine.
class TtyNode
{
public:
    TtyNode(VirtualCamera::Testbed const& testbed, std::string const& terminal)
    {
        reserveName();
        std::filesystem::path const node = testbed.rootDirectory() + path();
        std::filesystem::create_directories(node.parent_path());
        std::filesystem::remove(node);
        std::filesystem::create_symlink(terminal, node);
    }
    TtyNode(TtyNode const&) = delete;
    TtyNode& operator=(TtyNode const&) = delete;
    ~TtyNode() { close(_reservation); }

    /// Such as "ttyACM3", and another that no device bears.
    std::string name() const { return "ttyACM" + std::to_string(_digit); }
    std::string otherName() const { return "ttyACM" + std::to_string((_digit + 1) % digits); }
    std::string path() const { return "/dev/" + name(); }
    /// Where Qt keeps the lock.
    std::string lockFile() const { return "/var/lock/LCK.." + name(); }

private:
    static constexpr int digits = 10;

    void reserveName()
    {
        auto const deadline = std::chrono::steady_clock::now() + std::chrono::seconds(40);
        for (int turn = static_cast<int>(getpid()); _reservation == -1; ++turn) {
            if (std::chrono::steady_clock::now() > deadline) {
                throw std::runtime_error("no name for a tty is free");
            }
            tryToReserve(turn % digits);
            if (_reservation == -1) {
                std::this_thread::sleep_for(std::chrono::milliseconds(5));
            }
        }
    }
    void tryToReserve(int digit)
    {
        auto const file = std::filesystem::temp_directory_path() /
                          ("imageacquisition-test-ttyACM" + std::to_string(digit));
        int const descriptor = open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
        _digit = digit;
        if (flock(descriptor, LOCK_EX | LOCK_NB) == 0 && !std::filesystem::exists(lockFile())) {
            _reservation = descriptor;
        } else if (descriptor != -1) {
            close(descriptor);
        }
    }

    int _digit = 0;
    int _reservation = -1;
};
