// SPDX-License-Identifier: MIT
#include "OrdinaryUser.h"

#include "LibraryCamera.h"
#include "Tool.h"

#include <ICameraControl.h>

#include <grp.h>
#include <linux/videodev2.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>

using namespace ImageAcquisition;

namespace KernelTest
{

namespace
{

using Json = nlohmann::json;

[[noreturn]] void workAs(unsigned user, const std::function<Json()>& work, int end)
{
    int status = 1;
    try {
        if (::setgroups(0, nullptr) == 0 && ::setgid(nobody) == 0 && ::setuid(user) == 0) {
            const std::string text = work().dump();
            status =
                ::write(end, text.data(), text.size()) == static_cast<ssize_t>(text.size()) ? 0 : 1;
        }
    } catch (const std::exception&) {
        // The parent misses the result.
    }
    ::_exit(status);
}

/// The controls that the extension unit was mapped to.
int countPrivateControls(const IBlockingCamera& camera)
{
    int count = 0;
    for (int i = 0; i < camera.controlNumber(); ++i) {
        const unsigned id = camera.control(i)->id();
        count += id >= V4L2_CID_PRIVATE_BASE && id < V4L2_CID_PRIVATE_BASE + 29 ? 1 : 0;
    }
    return count;
}

} // namespace

nlohmann::json asUser(unsigned user, const std::function<nlohmann::json()>& work)
{
    int ends[2];
    if (::pipe(ends) != 0) {
        throw std::runtime_error("no pipe");
    }
    const pid_t child = ::fork();
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

nlohmann::json describeCamera(const std::string& node)
{
    const ListPointer list = listDevices();
    const IDevice* const record = recordOf(*list, node);
    if (record == nullptr) {
        return {{"listed", list->size()}};
    }
    const CameraPointer camera = openListed(node);
    if (camera == nullptr) {
        return {{"listed", list->size()}, {"opened", false}};
    }
    const std::filesystem::path device = std::filesystem::canonical(
        "/sys/class/video4linux/" + node.substr(node.rfind('/') + 1) + "/device/..");
    Json seen{{"listed", list->size()},
              {"opened", true},
              {"firmware", record->firmwareVersion()},
              {"vendorsOwn", record->isaZorvaneDevice()},
              {"serial", record->serial()},
              {"controls", camera->controlNumber()},
              {"privateControls", countPrivateControls(*camera)},
              {"formats", camera->formatNumber()},
              {"reset", camera->softwareReset()}};
    if (seen["reset"]) {
        // The camera must not be closed while the driver gives the device up.
        waitFor([&device] { return !std::filesystem::exists(device); });
    }
    return seen;
}

CommandResult runToolAsUser(unsigned user, const std::string& arguments)
{
    // The build tree may lie where only its owner may look.
    const std::string folder = "/tmp/tool-for-everybody";
    const std::string library = "$(ldd " + toolPath() + " | awk '/libimageacq/ { print $3 }')";
    const CommandResult copied = runShell("mkdir -p " + folder + " && cp -L " + toolPath() + " " +
                                          library + " " + folder + " && chmod 755 " + folder);
    if (copied.status != 0) {
        throw std::runtime_error("cannot copy the tool: " + copied.output);
    }
    return runShell(
        "cd / && LD_LIBRARY_PATH=" + folder + " setpriv --reuid=" + std::to_string(user) +
        " --regid=" + std::to_string(nobody) + " --clear-groups " + folder + "/iacq " + arguments);
}

std::string usbNode(const EmulatedCameras& cameras, unsigned camera)
{
    const std::string folder = cameras.usbFolder(camera);
    const auto padded = [&folder](const std::string& name) {
        const std::string digits = readFile(folder + "/" + name);
        return std::string(3 - digits.size(), '0') + digits;
    };
    return "/dev/bus/usb/" + padded("busnum") + "/" + padded("devnum");
}

void openToAll(const std::string& node)
{
    std::filesystem::permissions(node, std::filesystem::perms(0666));
}

ReadableLog::ReadableLog(bool isReadable)
{
    std::ofstream(_file) << (isReadable ? "0" : "1");
    if (readFile(_file) != (isReadable ? "0" : "1")) {
        throw std::runtime_error("the rights on the kernel's log stay");
    }
}

ReadableLog::~ReadableLog()
{
    std::ofstream(_file) << _before;
}

} // namespace KernelTest
