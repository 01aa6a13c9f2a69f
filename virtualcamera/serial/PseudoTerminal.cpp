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
    : m_descriptor(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC))
{
    std::array<char, 64> path{};
    if (m_descriptor == -1 || grantpt(m_descriptor) != 0 || unlockpt(m_descriptor) != 0 ||
        ptsname_r(m_descriptor, path.data(), path.size()) != 0) {
        int const error = errno;
        if (m_descriptor != -1) {
            close(m_descriptor);
        }
        throw std::system_error(error, std::generic_category(), "cannot make a pseudo-terminal");
    }
    m_path = path.data();
    // Without echo and translation, also before the client sets the same.
    termios settings{};
    tcgetattr(m_descriptor, &settings);
    cfmakeraw(&settings);
    tcsetattr(m_descriptor, TCSANOW, &settings);
}

PseudoTerminal::~PseudoTerminal()
{
    close(m_descriptor);
}

SerialBytes PseudoTerminal::read()
{
    std::array<std::uint8_t, 4096> buffer{};
    ssize_t const count = ::read(m_descriptor, buffer.data(), buffer.size());
    return count > 0 ? SerialBytes(buffer.begin(), buffer.begin() + count) : SerialBytes();
}

void PseudoTerminal::write(SerialBytes const& bytes)
{
    ssize_t const written = ::write(m_descriptor, bytes.data(), bytes.size());
    static_cast<void>(written);
}

} // namespace VirtualCamera
