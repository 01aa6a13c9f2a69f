// SPDX-License-Identifier: MIT
#pragma once

#include "CommandInterpreter.h"

#include <map>
#include <poll.h>

namespace UsbCamera
{

/// Takes commands over a Unix socket, a line each, and answers each with a line.
class CommandServer
{
public:
    /// Throws std::system_error when the socket can't be made at this path.
    CommandServer(std::string const& path, CommandInterpreter& interpreter);
    ~CommandServer();
    CommandServer(CommandServer const&) = delete;
    CommandServer& operator=(CommandServer const&) = delete;

    void addDescriptors(std::vector<pollfd>& descriptors) const;
    void handle(std::vector<pollfd> const& descriptors);

private:
    void accept();
    bool read(int client);

    std::string m_path;
    CommandInterpreter& m_interpreter;
    int m_listener;
    std::map<int, std::string> m_clients; ///< descriptor, and what came of a line so far
};

/// The other side: sends one line and returns the answer. Throws std::system_error.
std::string sendCommand(std::string const& path, std::string const& line);

} // namespace UsbCamera
