// SPDX-License-Identifier: MIT
#include "SerialPorts.h"

#include "Testbed.h"

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>

namespace VirtualCamera
{

namespace files = std::filesystem;

SerialPorts::SerialPorts(Testbed& testbed) : m_testbed(testbed)
{
    files::create_directories(toolFolder());
    std::string const tool = toolFolder() + "/dmesg";
    std::ofstream(tool) << "#!/bin/sh\nexec cat '" << logFile() << "'\n";
    files::permissions(tool, files::perms::owner_all);
    announce("Linux version 6.1.0-virtual");
}

std::string SerialPorts::toolFolder() const
{
    return m_testbed.rootDirectory() + "/tools";
}

std::string SerialPorts::logFile() const
{
    return m_testbed.rootDirectory() + "/kernel.log";
}

void SerialPorts::announce(std::string const& line) const
{
    std::chrono::duration<double> const uptime =
        std::chrono::steady_clock::now().time_since_epoch();
    char time[32];
    std::snprintf(time, sizeof time, "[%12.6f] ", uptime.count());
    std::ofstream(logFile(), std::ios::app) << time << line << '\n';
}

std::string SerialPorts::plug(std::string const& usbPort)
{
    Port port;
    std::string const name = port.name.text();
    std::string node = "/dev/" + name;
    files::create_symlink(port.firmware->ttyPath(), m_testbed.rootDirectory() + node);
    m_ports.emplace(node, std::move(port));
    // Interface 5 of configuration 1 carries the port.
    announce("cdc_acm " + usbPort + ":1.5: " + name + ": USB ACM device");
    return node;
}

void SerialPorts::unplug(std::string const& node)
{
    m_testbed.removeNodeFile(node);
    m_ports.at(node).firmware->unplug();
    m_ports.erase(node);
}

} // namespace VirtualCamera
