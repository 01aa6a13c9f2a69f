// SPDX-License-Identifier: MIT
#include "SerialLinkFault.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <memory>
#include <sstream>
#include <system_error>

namespace ImageAcquisition::Session
{

namespace
{

/// The port that a line of the log announces for the device at this place; empty when none.
std::string announcedPort(std::string const& line, std::string const& busInfo)
{
    // cdc_acm 1-2.3:1.5: ttyACM0: USB ACM device
    std::string const place = busInfo.substr(busInfo.rfind('-') + 1) + ":1.5: ";
    auto const driver = line.find("cdc_acm ");
    auto const at = line.find("-" + place, driver);
    auto const name = at + 1 + place.size();
    if (driver == std::string::npos || at == std::string::npos ||
        line.compare(name, 6, "ttyACM") != 0) {
        return "";
    }
    return line.substr(name, line.find_first_not_of("0123456789", name + 6) - name);
}

struct PipeCloser
{
    void operator()(FILE* pipe) const { pclose(pipe); }
};

std::string dmesg()
{
    std::string text;
    std::unique_ptr<FILE, PipeCloser> const pipe(popen("timeout 10 dmesg 2>/dev/null", "re"));
    char buffer[4096];
    for (std::size_t size; pipe && (size = fread(buffer, 1, sizeof buffer, pipe.get())) > 0;) {
        text.append(buffer, size);
    }
    return text;
}

} // namespace

std::string serialLinkFault(std::istream& kernelLog, std::string const& busInfo,
                            std::string const& devDirectory)
{
    std::string port;
    bool empty = true;
    for (std::string line; std::getline(kernelLog, line); empty = false) {
        std::string const announced = announcedPort(line, busInfo);
        port = announced.empty() ? port : announced;
    }
    if (port.empty()) {
        return empty ? "dmesg prints nothing, and so names no serial port of it; it may need more "
                       "rights"
                     : "dmesg names no serial port of it";
    }
    std::string const path = devDirectory + "/" + port;
    // By now the reset may have taken the port away.
    if (access(path.c_str(), R_OK | W_OK) != 0 && errno != ENOENT) {
        return "its serial port " + path +
               " cannot be opened: " + std::generic_category().message(errno);
    }
    return "its serial port " + path + " is gone or in use, or the camera does not answer there";
}

std::string serialLinkFault(std::string const& busInfo)
{
    std::istringstream log(dmesg());
    return serialLinkFault(log, busInfo);
}

} // namespace ImageAcquisition::Session
