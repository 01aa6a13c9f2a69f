// SPDX-License-Identifier: MIT
#include "SerialClient.h"

#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <system_error>
#include <termios.h>
#include <unistd.h>

namespace KernelTest
{

using UsbCamera::Bytes;

SerialClient::SerialClient(std::string const& node)
    : m_descriptor(::open(node.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC))
{
    termios settings{};
    if (m_descriptor < 0 || ::tcgetattr(m_descriptor, &settings) != 0) {
        throw std::system_error(errno, std::generic_category(), node);
    }
    ::cfmakeraw(&settings);
    ::tcsetattr(m_descriptor, TCSANOW, &settings);
}

SerialClient::~SerialClient()
{
    ::close(m_descriptor);
}

void SerialClient::write(Bytes const& packet) const
{
    if (::write(m_descriptor, packet.data(), packet.size()) !=
        static_cast<ssize_t>(packet.size())) {
        throw std::system_error(errno, std::generic_category(), "writing to the terminal");
    }
}

Bytes SerialClient::read(std::size_t size, int timeoutMilliseconds) const
{
    Bytes bytes;
    pollfd descriptor{m_descriptor, POLLIN, 0};
    while (bytes.size() < size && ::poll(&descriptor, 1, timeoutMilliseconds) > 0) {
        std::uint8_t part[256];
        ssize_t const count = ::read(m_descriptor, part, sizeof part);
        if (count <= 0) {
            break;
        }
        bytes.insert(bytes.end(), part, part + count);
    }
    return bytes;
}

Bytes SerialClient::exchange(std::string const& hexPacket, std::size_t answerSize) const
{
    write(UsbCamera::fromHex(hexPacket));
    return read(answerSize);
}

} // namespace KernelTest
