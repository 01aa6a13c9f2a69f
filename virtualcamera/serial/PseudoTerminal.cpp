// SPDX-License-Identifier: MIT
#include "PseudoTerminal.h"

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <system_error>

namespace VirtualCamera
{

PseudoTerminal::PseudoTerminal()
    : _descriptor(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC))
{
    std::array<char, 64> path{};
    if (_descriptor == -1 || grantpt(_descriptor) != 0 || unlockpt(_descriptor) != 0 ||
        ptsname_r(_descriptor, path.data(), path.size()) != 0) {
        int const error = errno;
        if (_descriptor != -1)
            close(_descriptor);
        throw std::system_error(error, std::generic_category(), "cannot make a pseudo-terminal");
    }
    _path = path.data();
    // Without echo and translation, also before the client sets the same.
    termios settings{};
    tcgetattr(_descriptor, &settings);
    cfmakeraw(&settings);
    tcsetattr(_descriptor, TCSANOW, &settings);
}

PseudoTerminal::~PseudoTerminal()
{
    close(_descriptor);
}

SerialBytes PseudoTerminal::read()
{
    std::array<std::uint8_t, 4096> buffer{};
    ssize_t const count = ::read(_descriptor, buffer.data(), buffer.size());
    return count > 0 ? SerialBytes(buffer.begin(), buffer.begin() + count) : SerialBytes();
}

void PseudoTerminal::write(SerialBytes const& bytes)
{
    ssize_t const written = ::write(_descriptor, bytes.data(), bytes.size());
    static_cast<void>(written);
}

} // namespace VirtualCamera
