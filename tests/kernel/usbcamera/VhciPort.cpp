// SPDX-License-Identifier: MIT
#include "VhciPort.h"

#include <cerrno>
#include <fcntl.h>
#include <fstream>
#include <sstream>
#include <sys/socket.h>
#include <system_error>
#include <unistd.h>

namespace UsbCamera
{

namespace
{

char const folder[] = "/sys/devices/platform/vhci_hcd.0/";
constexpr unsigned freePort = 4;

[[noreturn]] void fail(std::string const& what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

/// The status file lists the ports of the high-speed hub first, then those of the super-speed hub.
unsigned portsPerHub(std::string const& statusFile)
{
    std::ifstream status(statusFile);
    std::string line;
    unsigned count = 0;
    while (std::getline(status, line)) {
        count += line.compare(0, 2, "hs") == 0 ? 1U : 0U;
    }
    if (count == 0) {
        errno = ENODEV;
        fail("no virtual host controller (is the module vhci-hcd loaded?): " + statusFile);
    }
    return count;
}

} // namespace

std::string speedName(Speed speed)
{
    switch (speed) {
    case Speed::Full:
        return "full";
    case Speed::High:
        return "high";
    case Speed::Super:
        break;
    }
    return "super";
}

VhciPort::VhciPort(unsigned controller, unsigned port, Speed speed)
    : m_controller(controller), m_number(0), m_speed(speed)
{
    unsigned const ports = portsPerHub(statusFile());
    if (port == 0 || port > ports) {
        errno = EINVAL;
        fail("a hub of the virtual host controller has the ports 1 to " + std::to_string(ports));
    }
    m_number = controller * 2 * ports + (speed == Speed::Super ? ports : 0) + port - 1;
}

std::string VhciPort::statusFile() const
{
    return std::string(folder) + "status" +
           (m_controller == 0 ? "" : "." + std::to_string(m_controller));
}

bool VhciPort::isFree() const
{
    std::ifstream status(statusFile());
    std::string line;
    while (std::getline(status, line)) {
        std::istringstream words(line);
        std::string hub;
        unsigned number = 0;
        unsigned state = 0;
        if (words >> hub >> number >> state && number == m_number) {
            return state == freePort;
        }
    }
    return false;
}

int VhciPort::attach()
{
    if (!isFree()) {
        return -1;
    }
    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
        fail("socketpair");
    }
    std::string const request = std::to_string(m_number) + " " + std::to_string(ends[1]) + " " +
                                std::to_string(0x10000U + m_number + 1) + " " +
                                std::to_string(static_cast<unsigned>(m_speed));
    int const file = ::open((std::string(folder) + "attach").c_str(), O_WRONLY | O_CLOEXEC);
    bool const written = file >= 0 && ::write(file, request.data(), request.size()) ==
                                          static_cast<ssize_t>(request.size());
    int const error = errno;
    if (file >= 0) {
        ::close(file);
    }
    ::close(ends[1]);
    if (!written) {
        ::close(ends[0]);
        errno = error;
        fail("cannot attach to the virtual host controller");
    }
    return ends[0];
}

} // namespace UsbCamera
