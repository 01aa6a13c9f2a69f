// SPDX-License-Identifier: MIT
#include "VirtualMachine.h"

#include "CameraJson.h"

#include <fstream>
#include <stdexcept>
#include <utility>

namespace VirtualCamera
{

namespace
{

std::string nodeName(CameraScript const& node)
{
    return node.node.substr(node.node.rfind('/') + 1);
}

// umockdev makes its folder in the temporary one, and leaves it there when it aborts the process.
Testbed testbedIn(PrivateFolder const& folder)
{
    TemporaryFolderIs const meanwhile(folder.path());
    return Testbed();
}

} // namespace

VirtualMachine::VirtualMachine(std::vector<HostCamera> cameras) : m_testbed(testbedIn(m_folder))
{
    for (HostCamera& camera : cameras) {
        for (CameraScript& node : camera.nodes) {
            node.presenceFile = m_testbed.rootDirectory() + node.node;
        }
        m_cameras.push_back({std::move(camera), std::nullopt, false, std::nullopt});
        plug(m_cameras.back());
    }
    writeConfiguration();
}

std::string VirtualMachine::configurationFile() const
{
    return m_testbed.rootDirectory() + "/virtualcamera.json";
}

void VirtualMachine::plug(PlacedCamera& placed)
{
    if (placed.plugged) {
        return;
    }
    if (placed.camera.usb) {
        placed.usb = m_testbed.plug(*placed.camera.usb);
    }
    for (CameraScript const& node : placed.camera.nodes) {
        if (placed.usb) {
            m_testbed.addVideoNode(nodeName(node), *placed.usb);
        } else {
            m_testbed.addVideoNode(nodeName(node));
        }
    }
    if (placed.camera.usb && placed.camera.serialPort) {
        placed.tty = m_serialPorts.plug(placed.camera.usb->port);
    }
    placed.plugged = true;
}

void VirtualMachine::unplug(PlacedCamera& placed)
{
    if (!placed.plugged) {
        return;
    }
    if (placed.tty) {
        m_serialPorts.unplug(*placed.tty);
    }
    placed.tty.reset();
    if (placed.usb) {
        m_testbed.unplug(*placed.usb);
    } else {
        for (CameraScript const& node : placed.camera.nodes) {
            m_testbed.removeVideoNode(nodeName(node));
        }
    }
    placed.usb.reset();
    placed.plugged = false;
}

void VirtualMachine::unplugLast()
{
    if (!m_cameras.empty()) {
        unplug(m_cameras.back());
    }
}

void VirtualMachine::plugLast()
{
    if (!m_cameras.empty()) {
        plug(m_cameras.back());
    }
}

void VirtualMachine::writeConfiguration() const
{
    std::vector<CameraScript> nodes;
    for (PlacedCamera const& placed : m_cameras) {
        nodes.insert(nodes.end(), placed.camera.nodes.begin(), placed.camera.nodes.end());
    }
    std::ofstream file(configurationFile());
    file << camerasToJson(nodes) << '\n';
    file.close();
    if (!file) {
        throw std::runtime_error("cannot write " + configurationFile());
    }
}

} // namespace VirtualCamera
