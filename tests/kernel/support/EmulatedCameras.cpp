// SPDX-License-Identifier: MIT
#include "EmulatedCameras.h"

#include "CommandServer.h"
#include "Shell.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace KernelTest
{

namespace
{

namespace fs = std::filesystem;

char const devices[] = "/sys/bus/usb/devices";

std::vector<fs::path> entries(fs::path const& folder)
{
    std::vector<fs::path> paths;
    std::error_code error;
    for (auto const& entry : fs::directory_iterator(folder, error)) {
        paths.push_back(entry.path());
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

/// The number of the hub that has the ports of a controller for a speed.
std::string findBus(unsigned controller, bool isSuper)
{
    fs::path const folder = "/sys/devices/platform/vhci_hcd." + std::to_string(controller);
    for (fs::path const& entry : entries(folder)) {
        std::string const name = entry.filename();
        if (name.compare(0, 3, "usb") == 0 &&
            (std::stoul("0" + readFile(entry / "speed")) >= 5000) == isSuper) {
            return name.substr(3);
        }
    }
    return "";
}

std::string nodeBelow(fs::path const& folder, bool isVideo)
{
    for (fs::path const& entry : entries(folder)) {
        // A camera's second video node, the one with another index, delivers no pictures.
        if (!isVideo || readFile(entry / "index") == "0") {
            fs::path const node = "/dev" / entry.filename();
            return fs::exists(node) ? node.string() : "";
        }
    }
    return "";
}

bool answers(std::string const& socket)
{
    try {
        UsbCamera::sendCommand(socket, "1 status");
        return true;
    } catch (std::system_error const&) {
        return false;
    }
}

[[noreturn]] void execute(std::string const& folder, std::vector<std::string> const& models,
                          std::vector<std::string> const& commands)
{
    std::vector<std::string> words{USBCAMERA_PROGRAM, "--socket", folder + "/socket", "--log",
                                   folder + "/requests.jsonl"};
    for (std::string const& model : models) {
        words.insert(words.end(), {"--camera", model});
    }
    for (std::string const& command : commands) {
        words.insert(words.end(), {"--do", command});
    }
    std::vector<char*> arguments;
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    ::execv(arguments[0], arguments.data());
    std::abort();
}

} // namespace

EmulatedCameras::EmulatedCameras(Texts const& models, Texts const& commands)
{
    char folder[] = "/tmp/usbcamera.XXXXXX";
    if (::mkdtemp(folder) == nullptr) {
        throw std::runtime_error("cannot make a folder");
    }
    m_folder = folder;
    start(models, commands);
    for (unsigned camera = 1; camera <= models.size(); ++camera) {
        m_first.push_back(status(camera));
    }
    for (unsigned camera = 1; camera <= models.size(); ++camera) {
        if (!waitUntilReady(camera)) {
            stop();
            throw std::runtime_error("the kernel doesn't take the camera " + models[camera - 1]);
        }
    }
}

EmulatedCameras::~EmulatedCameras()
{
    stop();
}

void EmulatedCameras::start(Texts const& models, Texts const& commands)
{
    m_process = ::fork();
    if (m_process == 0) {
        execute(m_folder, models, commands);
    }
    bool const isListening = waitFor([this] {
        if (m_process > 0 && ::waitpid(m_process, nullptr, WNOHANG) != 0) {
            m_process = -1;
        }
        return m_process < 0 || answers(m_folder + "/socket");
    });
    if (!isListening || m_process < 0) {
        stop();
        throw std::runtime_error("usbcamera does not start");
    }
}

void EmulatedCameras::stop()
{
    if (m_process > 0) {
        ::kill(m_process, SIGTERM);
        ::waitpid(m_process, nullptr, 0);
    }
    for (unsigned camera = 1; camera <= m_first.size(); ++camera) {
        waitUntilGone(camera);
    }
    std::error_code error;
    fs::remove_all(m_folder, error);
}

std::string EmulatedCameras::command(std::string const& words, unsigned camera) const
{
    std::string const answer =
        UsbCamera::sendCommand(m_folder + "/socket", std::to_string(camera) + " " + words);
    if (answer.compare(0, 2, "ok") != 0) {
        throw std::runtime_error(words + ": " + answer);
    }
    return answer.size() > 3 ? answer.substr(3) : "";
}

EmulatedCameras::Json EmulatedCameras::status(unsigned camera) const
{
    return Json::parse(command("status", camera));
}

void EmulatedCameras::plug(unsigned camera) const
{
    command("plug", camera);
    if (!waitUntilReady(camera)) {
        throw std::runtime_error("the camera does not come back");
    }
}

bool EmulatedCameras::waitUntilGone(unsigned camera) const
{
    return waitFor([this, camera] { return usbFolder(camera).empty(); });
}

bool EmulatedCameras::waitUntilReady(unsigned camera) const
{
    bool const wantsSerial = m_first[camera - 1]["serialPort"];
    bool const isThere = waitFor([this, camera, wantsSerial] {
        return !videoNode(camera).empty() && (!wantsSerial || !serialNode(camera).empty());
    });
    return isThere && runShell("udevadm settle --timeout=60").status == 0;
}

std::string EmulatedCameras::usbFolder(unsigned camera) const
{
    Json const& first = m_first[camera - 1];
    std::string const bus = findBus(first["controller"], first["speed"] == "super");
    std::string const folder =
        std::string(devices) + "/" + bus + "-" + std::to_string(first["port"].get<unsigned>());
    return fs::exists(folder) ? folder : "";
}

std::string EmulatedCameras::videoNode(unsigned camera) const
{
    fs::path const folder = usbFolder(camera);
    std::string const interface = folder.filename().string() + ":1.0";
    return folder.empty() ? "" : nodeBelow(folder / interface / "video4linux", true);
}

std::string EmulatedCameras::serialNode(unsigned camera) const
{
    fs::path const folder = usbFolder(camera);
    std::string const interface = folder.filename().string() + ":1.5";
    return folder.empty() ? "" : nodeBelow(folder / interface / "tty", false);
}

std::vector<EmulatedCameras::Json> EmulatedCameras::requests() const
{
    std::vector<Json> lines;
    for (std::string const& line : splitLines(readFile(m_folder + "/requests.jsonl"))) {
        lines.push_back(Json::parse(line));
    }
    return lines;
}

std::vector<EmulatedCameras::Json> EmulatedCameras::requests(std::string const& name) const
{
    std::vector<Json> found;
    for (Json const& line : requests()) {
        std::string const kind = line["kind"];
        if (kind == "event" && line["event"] == "mark") {
            found.clear();
        } else if ((kind == "unit" || kind == "serial") && line["request"] == name) {
            found.push_back(line);
        }
    }
    return found;
}

double EmulatedCameras::unplugSeconds() const
{
    double seconds = 0;
    for (Json const& line : requests()) {
        if (line["kind"] == "event" && line["event"] == "unplug") {
            seconds = line["time"];
        }
    }
    return seconds;
}

void EmulatedCameras::mark(unsigned camera) const
{
    command("mark here", camera);
}

} // namespace KernelTest
