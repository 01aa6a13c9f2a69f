// SPDX-License-Identifier: MIT
#include "CommandServer.h"

#include <cerrno>
#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>
#include <system_error>
#include <unistd.h>

namespace UsbCamera
{

namespace
{

[[noreturn]] void fail(std::string const& what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

sockaddr_un makeAddress(std::string const& path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
        errno = ENAMETOOLONG;
        fail(path);
    }
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    return address;
}

int makeSocket()
{
    int const socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (socket < 0) {
        fail("socket");
    }
    return socket;
}

bool sendText(int socket, std::string const& text)
{
    return ::send(socket, text.data(), text.size(), MSG_NOSIGNAL) ==
           static_cast<ssize_t>(text.size());
}

} // namespace

CommandServer::CommandServer(std::string const& path, CommandInterpreter& interpreter)
    : m_path(path), m_interpreter(interpreter), m_listener(makeSocket())
{
    sockaddr_un const address = makeAddress(path);
    ::unlink(path.c_str());
    if (::bind(m_listener, reinterpret_cast<sockaddr const*>(&address), sizeof address) != 0 ||
        ::listen(m_listener, 8) != 0) {
        int const error = errno;
        ::close(m_listener);
        errno = error;
        fail(path);
    }
}

CommandServer::~CommandServer()
{
    for (auto const& client : m_clients) {
        ::close(client.first);
    }
    ::close(m_listener);
    ::unlink(m_path.c_str());
}

void CommandServer::addDescriptors(std::vector<pollfd>& descriptors) const
{
    descriptors.push_back({m_listener, POLLIN, 0});
    for (auto const& client : m_clients) {
        descriptors.push_back({client.first, POLLIN, 0});
    }
}

void CommandServer::handle(std::vector<pollfd> const& descriptors)
{
    for (pollfd const& descriptor : descriptors) {
        if (descriptor.revents == 0) {
            continue;
        }
        if (descriptor.fd == m_listener) {
            accept();
        } else if (m_clients.count(descriptor.fd) > 0 && !read(descriptor.fd)) {
            ::close(descriptor.fd);
            m_clients.erase(descriptor.fd);
        }
    }
}

void CommandServer::accept()
{
    int const client = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
    if (client >= 0) {
        m_clients[client];
    }
}

bool CommandServer::read(int client)
{
    char bytes[1024];
    ssize_t const size = ::recv(client, bytes, sizeof bytes, 0);
    if (size <= 0) {
        return false;
    }
    std::string& text = m_clients[client];
    text.append(bytes, static_cast<std::size_t>(size));
    for (std::size_t end = text.find('\n'); end != std::string::npos; end = text.find('\n')) {
        std::string const line = text.substr(0, end);
        text.erase(0, end + 1);
        if (!sendText(client, m_interpreter.execute(line) + "\n")) {
            return false;
        }
    }
    return true;
}

std::string sendCommand(std::string const& path, std::string const& line)
{
    sockaddr_un const address = makeAddress(path);
    int const socket = makeSocket();
    std::string answer;
    if (::connect(socket, reinterpret_cast<sockaddr const*>(&address), sizeof address) == 0 &&
        sendText(socket, line + "\n")) {
        char byte = 0;
        while (::recv(socket, &byte, 1, 0) == 1 && byte != '\n') {
            answer += byte;
        }
    }
    int const error = errno;
    ::close(socket);
    if (answer.empty()) {
        errno = error;
        fail("no answer from " + path);
    }
    return answer;
}

} // namespace UsbCamera
