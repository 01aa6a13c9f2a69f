// SPDX-License-Identifier: MIT
#include "Testbed.h"

#include "UsbDescriptors.h"
#include "UsbdevfsNode.h"

#include <link.h>
#include <umockdev.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

#ifdef __SANITIZE_THREAD__
extern "C" char const* __tsan_default_suppressions();
// umockdev serves its clients from a thread of its own, and GLib's locks are built on futexes,
// which the sanitizer cannot see. libudev keeps one random hash key for all its threads, which the
// first of them draw at the same time. umockdev's preload writes each path that it turns aside into
// a buffer of all threads. Qt's handler for ended children runs on whichever thread the signal
// reaches, and writes to a pipe that another one made before the fork.
extern "C" char const* __tsan_default_suppressions()
{
    return "called_from_lib:libumockdev.so.0\n"
           "race:libumockdev-preload.so.0\n"
           "called_from_lib:libglib-2.0.so.0\n"
           "called_from_lib:libgobject-2.0.so.0\n"
           "called_from_lib:libgio-2.0.so.0\n"
           "called_from_lib:libQt5Core.so.5\n"
           "race_top:getrandom\n";
}
#endif

namespace VirtualCamera
{

namespace
{

std::string takeText(gchar* text)
{
    std::string copy = text != nullptr ? text : "";
    g_free(text);
    return copy;
}

/// Attributes or properties in the form that umockdev takes them.
class TextList
{
public:
    using Entry = std::pair<char const*, std::optional<std::string>>;

    /// Leaves out what has no value.
    TextList(std::initializer_list<Entry> entries)
    {
        for (auto const& [name, value] : entries) {
            if (value) {
                m_texts.insert(m_texts.end(), {name, *value});
            }
        }
    }
    gchar** pointers()
    {
        m_pointers.clear();
        for (std::string& text : m_texts) {
            m_pointers.push_back(text.data());
        }
        m_pointers.push_back(nullptr);
        return m_pointers.data();
    }

private:
    std::vector<std::string> m_texts;
    std::vector<gchar*> m_pointers;
};

} // namespace

struct Testbed::State
{
    struct PluggedDevice
    {
        std::string interfacePath;
        std::string node;
        std::unique_ptr<UsbdevfsNode> served;
        std::vector<std::string> videoNodes;
    };

    UMockdevTestbed* testbed = umockdev_testbed_new();
    std::map<std::string, PluggedDevice> devices; ///< By syspath.
    int nextDeviceNumber = 2;
    int nextMinor = 0;
};

Testbed::Testbed() : m_state(std::make_unique<State>())
{
    m_rootDirectory = takeText(umockdev_testbed_get_root_dir(m_state->testbed));
}

Testbed::~Testbed()
{
    m_state->devices.clear();
    g_object_unref(m_state->testbed);
    std::error_code ignored;
    std::filesystem::remove_all(m_rootDirectory, ignored);
}

bool Testbed::visible()
{
    auto const isPreload = [](dl_phdr_info* library, std::size_t, void*) {
        return std::strstr(library->dlpi_name, "libumockdev-preload.so") != nullptr ? 1 : 0;
    };
    return dl_iterate_phdr(isPreload, nullptr) != 0;
}

void Testbed::addNodeFile(std::string const& path)
{
    std::filesystem::path const file = m_rootDirectory + path;
    std::filesystem::create_directories(file.parent_path());
    if (!std::ofstream(file)) {
        throw std::runtime_error("cannot make " + file.string());
    }
}

void Testbed::removeNodeFile(std::string const& path)
{
    std::error_code ignored;
    std::filesystem::remove(m_rootDirectory + path, ignored);
}

namespace
{

/// A USB revision as sysfs prints it: 0x0200 is " 2.00".
std::string versionText(std::uint16_t revision)
{
    char text[16];
    std::snprintf(text, sizeof text, "%2x.%02x", revision >> 8, revision & 0xffu);
    return text;
}

} // namespace

UsbDevice Testbed::plug(UsbDeviceScript const& script)
{
    int const bus = std::atoi(script.port.c_str());
    int const number = m_state->nextDeviceNumber++;
    char node[64];
    std::snprintf(node, sizeof node, "/dev/bus/usb/%03d/%03d", bus, number);
    TextList attributes{{"idVendor", script.vendorId},
                        {"idProduct", script.productId},
                        {"manufacturer", script.manufacturer},
                        {"product", script.product},
                        {"serial", script.serial},
                        {"speed", script.speed},
                        {"version", versionText(script.usbRevision)},
                        {"busnum", std::to_string(bus)},
                        {"devnum", std::to_string(number)},
                        {"bConfigurationValue", "1"},
                        {"dev", "189:" + std::to_string((bus - 1) * 128 + number - 1)}};
    TextList properties{{"DEVTYPE", "usb_device"}, {"DEVNAME", node}};
    if (!script.openRefused) {
        addNodeFile(node);
    }
    std::string const syspath =
        takeText(umockdev_testbed_add_devicev(m_state->testbed, "usb", script.port.c_str(), nullptr,
                                              attributes.pointers(), properties.pointers()));
    std::vector<std::uint8_t> descriptors = usbDescriptors(script);
    umockdev_testbed_set_attribute_binary(m_state->testbed, syspath.c_str(), "descriptors",
                                          descriptors.data(),
                                          static_cast<gint>(descriptors.size()));

    TextList noAttributes{};
    TextList interfaceProperties{{"DEVTYPE", "usb_interface"}};
    State::PluggedDevice& plugged = m_state->devices[syspath];
    plugged.interfacePath = takeText(umockdev_testbed_add_devicev(
        m_state->testbed, "usb", (script.port + ":1.0").c_str(), syspath.c_str(),
        noAttributes.pointers(), interfaceProperties.pointers()));
    plugged.node = node;
    auto endpoint = std::make_shared<UsbEndpointZero>(script);
    plugged.served = std::make_unique<UsbdevfsNode>(m_state->testbed, node, endpoint);
    m_syspaths[script.port] = syspath;
    return UsbDevice(syspath, std::move(endpoint));
}

void Testbed::unplug(UsbDevice const& device)
{
    auto const found = m_state->devices.find(device.syspath());
    if (found == m_state->devices.end()) {
        throw std::invalid_argument("the device isn't plugged in");
    }
    std::vector<std::string> const videoNodes = found->second.videoNodes;
    for (std::string const& name : videoNodes) {
        if (m_syspaths.count(name) != 0) {
            removeVideoNode(name);
        }
    }
    for (std::string const& path : {found->second.interfacePath, found->first}) {
        umockdev_testbed_uevent(m_state->testbed, path.c_str(), "remove");
        umockdev_testbed_remove_device(m_state->testbed, path.c_str());
    }
    removeNodeFile(found->second.node);
    m_state->devices.erase(found);
}

void Testbed::addVideoNode(std::string const& name)
{
    addVideo(name, nullptr);
}

void Testbed::addVideoNode(std::string const& name, UsbDevice const& parent)
{
    auto const found = m_state->devices.find(parent.syspath());
    if (found == m_state->devices.end()) {
        throw std::invalid_argument("the parent isn't plugged in");
    }
    addVideo(name, found->second.interfacePath.c_str());
    found->second.videoNodes.push_back(name);
}

std::string Testbed::addVideo(std::string const& name, char const* parent)
{
    // First the node, so that whoever hears of the device finds it.
    addNodeFile("/dev/" + name);
    TextList attributes{{"dev", "81:" + std::to_string(m_state->nextMinor++)}, {"index", "0"}};
    TextList properties{{"DEVNAME", "/dev/" + name}};
    std::string syspath =
        takeText(umockdev_testbed_add_devicev(m_state->testbed, "video4linux", name.c_str(), parent,
                                              attributes.pointers(), properties.pointers()));
    m_syspaths[name] = syspath;
    return syspath;
}

void Testbed::removeVideoNode(std::string const& name)
{
    std::string const syspath = syspathOf(name);
    removeNodeFile("/dev/" + name);
    umockdev_testbed_uevent(m_state->testbed, syspath.c_str(), "remove");
    umockdev_testbed_remove_device(m_state->testbed, syspath.c_str());
    m_syspaths.erase(name);
}

void Testbed::addOtherDevice(std::string const& subsystem, std::string const& name,
                             std::string const& node)
{
    std::optional<std::string> nodeName;
    if (!node.empty()) {
        addNodeFile(node);
        nodeName = node;
    }
    TextList attributes{};
    TextList properties{{"DEVNAME", nodeName}};
    m_syspaths[name] = takeText(
        umockdev_testbed_add_devicev(m_state->testbed, subsystem.c_str(), name.c_str(), nullptr,
                                     attributes.pointers(), properties.pointers()));
}

void Testbed::sendEvent(std::string const& name, std::string const& action)
{
    umockdev_testbed_uevent(m_state->testbed, syspathOf(name).c_str(), action.c_str());
}

std::string Testbed::syspathOf(std::string const& name) const
{
    auto const found = m_syspaths.find(name);
    if (found == m_syspaths.end()) {
        throw std::out_of_range("the testbed has no device named " + name);
    }
    return found->second;
}

} // namespace VirtualCamera
