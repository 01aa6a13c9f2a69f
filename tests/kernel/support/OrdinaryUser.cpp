// SPDX-License-Identifier: MIT
#include "OrdinaryUser.h"

#include "Tool.h"

#include <grp.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace KernelTest
{

namespace
{

using Json = nlohmann::json;

[[noreturn]] void workAs(unsigned user, std::function<Json()> const& work, int end)
{
    int status = 1;
    try {
        if (::setgroups(0, nullptr) == 0 && ::setgid(nobody) == 0 && ::setuid(user) == 0) {
            std::string const text = work().dump();
            status =
                ::write(end, text.data(), text.size()) == static_cast<ssize_t>(text.size()) ? 0 : 1;
        }
    } catch (std::exception const&) {
        // The parent misses the result.
    }
    ::_exit(status);
}

} // namespace

nlohmann::json asUser(unsigned user, std::function<nlohmann::json()> const& work)
{
    int ends[2];
    if (::pipe(ends) != 0) {
        throw std::runtime_error("no pipe");
    }
    pid_t const child = ::fork();
    if (child == 0) {
        workAs(user, work, ends[1]);
    }
    ::close(ends[1]);
    std::string text;
    char buffer[4096];
    for (ssize_t size; (size = ::read(ends[0], buffer, sizeof buffer)) > 0;) {
        text.append(buffer, static_cast<std::size_t>(size));
    }
    ::close(ends[0]);
    ::waitpid(child, nullptr, 0);
    return Json::parse(text);
}

CommandResult runToolAsUser(unsigned user, std::string const& arguments)
{
    // The build tree may lie where only its owner may look.
    std::string const folder = "/tmp/tool-for-everybody";
    std::string const library = "$(ldd " + toolPath() + " | awk '/libimageacq/ { print $3 }')";
    CommandResult const copied = runShell("mkdir -p " + folder + " && cp -L " + toolPath() + " " +
                                          library + " " + folder + " && chmod 755 " + folder);
    if (copied.status != 0) {
        throw std::runtime_error("cannot copy the tool: " + copied.output);
    }
    return runShell(
        "cd / && LD_LIBRARY_PATH=" + folder + " setpriv --reuid=" + std::to_string(user) +
        " --regid=" + std::to_string(nobody) + " --clear-groups " + folder + "/iacq " + arguments);
}

std::string usbNode(EmulatedCameras const& cameras, unsigned camera)
{
    std::string const folder = cameras.usbFolder(camera);
    auto const padded = [&folder](std::string const& name) {
        std::string const digits = readFile(folder + "/" + name);
        return std::string(3 - digits.size(), '0') + digits;
    };
    return "/dev/bus/usb/" + padded("busnum") + "/" + padded("devnum");
}

void openToAll(std::string const& node)
{
    std::filesystem::permissions(node, std::filesystem::perms(0666));
}

ReadableLog::ReadableLog(bool isReadable)
{
    std::ofstream(m_file) << (isReadable ? "0" : "1");
    if (readFile(m_file) != (isReadable ? "0" : "1")) {
        throw std::runtime_error("the rights on the kernel's log stay");
    }
}

ReadableLog::~ReadableLog()
{
    std::ofstream(m_file) << m_before;
}

} // namespace KernelTest
