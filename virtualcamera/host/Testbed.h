// SPDX-License-Identifier: MIT
#pragma once

#include "UsbDevice.h"

#include <map>
#include <memory>

namespace VirtualCamera
{

/// A mocked machine for the real libudev and libusb: its sysfs, its device nodes and its uevents.
/// There is one at a time in a process. The process itself sees it when it runs with umockdev's
/// preload library (`Testbed::visible`); in any case the processes that it starts with that
/// library do. Video nodes made here are plain files that exist: what they do when they are opened
/// is the virtual camera's affair.
class Testbed
{
public:
    Testbed();
    ~Testbed();
    Testbed(Testbed const&) = delete;
    Testbed& operator=(Testbed const&) = delete;

    /// True when this process sees testbeds.
    static bool visible();
    /// The folder that holds the mocked `sys` and `dev`.
    std::string const& rootDirectory() const { return m_rootDirectory; }

    /// Adds a device, its first interface and its "add" events.
    UsbDevice plug(UsbDeviceScript const& script);
    /// Removes a device, with "remove" events, and the video nodes below it first.
    void unplug(UsbDevice const& device);

    /// Adds a video4linux device and its node below a USB device, or without any.
    void addVideoNode(std::string const& name);
    void addVideoNode(std::string const& name, UsbDevice const& parent);
    void removeVideoNode(std::string const& name);
    /// Adds a device of another subsystem, with a node when `node` is not empty.
    void addOtherDevice(std::string const& subsystem, std::string const& name,
                        std::string const& node = {});
    /// Sends a uevent ("change", "move", ...) for a device added by name.
    void sendEvent(std::string const& name, std::string const& action);
    /// A file below the testbed's root that programs see under its path, such as "/dev/ttyACM0".
    void addNodeFile(std::string const& path);
    void removeNodeFile(std::string const& path);

private:
    struct State;

    std::string addVideo(std::string const& name, char const* parent);
    std::string syspathOf(std::string const& name) const;

    std::unique_ptr<State> m_state;
    std::string m_rootDirectory;
    std::map<std::string, std::string> m_syspaths; ///< By the name that a device was added with.
};

} // namespace VirtualCamera
