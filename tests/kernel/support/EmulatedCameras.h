// SPDX-License-Identifier: MIT
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <sys/types.h>
#include <vector>

namespace KernelTest
{

/// Emulated USB cameras for the time of a test: starts the program usbcamera, waits until the
/// kernel has taken the cameras in, and unplugs them at the end. Cameras count from 1.
class EmulatedCameras
{
public:
    using Json = nlohmann::json;
    using Texts = std::vector<std::string>;

    /// `models` as usbcamera's --camera takes them, `commands` as its --do.
    explicit EmulatedCameras(Texts const& models, Texts const& commands = {});
    ~EmulatedCameras();
    EmulatedCameras(EmulatedCameras const&) = delete;
    EmulatedCameras& operator=(EmulatedCameras const&) = delete;

    /// Gives a command and returns its result; throws std::runtime_error when it is refused.
    std::string command(std::string const& words, unsigned camera = 1) const;
    Json status(unsigned camera = 1) const;

    /// Plugs a camera in and waits until its nodes are there again.
    void plug(unsigned camera = 1) const;
    /// Waits until the kernel has given the camera up.
    bool waitUntilGone(unsigned camera = 1) const;
    bool waitUntilReady(unsigned camera = 1) const;

    /// The camera's folder in sysfs, such as /sys/bus/usb/devices/1-1; empty while it isn't there.
    std::string usbFolder(unsigned camera = 1) const;
    /// The capture node, such as /dev/video0, and the terminal; empty while there is none.
    std::string videoNode(unsigned camera = 1) const;
    std::string serialNode(unsigned camera = 1) const;

    /// What the cameras have logged so far.
    std::vector<Json> requests() const;
    /// The unit and serial requests with this name since the last mark, from any way.
    std::vector<Json> requests(std::string const& name) const;
    void mark(unsigned camera = 1) const;
    /// When a camera left the bus last, by monotonicSeconds(); 0 while none has.
    double unplugSeconds() const;

private:
    void start(Texts const& models, Texts const& commands);
    void stop();

    std::string m_folder;
    pid_t m_process = -1;
    std::vector<Json> m_first; ///< the cameras' status after the start
};

} // namespace KernelTest
