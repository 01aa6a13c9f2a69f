// SPDX-License-Identifier: MIT
#include "SystemRecord.h"

#include "Shell.h"
#include "V4l2Ctl.h"

#include <gtest/gtest.h>
#include <linux/videodev2.h>

#include <map>
#include <regex>
#include <stdexcept>

using namespace ImageAcquisition;

namespace KernelTest
{

namespace
{

/// The first text that a pattern's only group matches; empty when nothing does.
std::string find(std::string const& text, std::string const& pattern)
{
    std::smatch match;
    return std::regex_search(text, match, std::regex(pattern)) ? match[1].str() : "";
}

/// The folder of the USB device that a node belongs to.
std::string usbFolder(std::string const& node)
{
    return "/sys/class/video4linux/" + node.substr(node.rfind('/') + 1) + "/device/..";
}

std::string attribute(std::string const& node, std::string const& name)
{
    return readFile(usbFolder(node) + "/" + name);
}

void readDriver(std::string const& node, SystemRecord& system)
{
    std::string const text = v4l2Ctl(node, "-w -D");
    system.driver = find(text, "Driver name +: (.*)");
    system.name = find(text, "Card type +: (.*)");
    system.bus = find(text, "Bus info +: (.*)");
    system.driverVersion = find(text, "Driver version +: (.*)");
    system.capabilities = static_cast<unsigned>(
        std::stoul(find(text, "\tCapabilities +: (0x[0-9a-f]+)"), nullptr, 16));
    system.nodeCapabilities =
        static_cast<unsigned>(std::stoul(find(text, "Device Caps +: (0x[0-9a-f]+)"), nullptr, 16));
}

void readUsb(std::string const& node, SystemRecord& system)
{
    std::string const device = attribute(node, "busnum") + ":" + attribute(node, "devnum");
    CommandResult const result = runShell("lsusb -v -s " + device);
    if (result.status != 0) {
        throw std::runtime_error("lsusb does not know " + device + ": " + result.output);
    }
    system.vendorId = find(result.output, "idVendor +0x([0-9a-f]+)");
    system.productId = find(result.output, "idProduct +0x([0-9a-f]+)");
    system.manufacturer = find(result.output, "iManufacturer +\\d+ (.*)");
    system.serial = find(result.output, "iSerial +\\d+ (.*)");
    system.usbRevision = find(result.output, "bcdUSB +(\\S+)");
}

UsbSpeed speedOf(std::string const& megabits)
{
    static std::map<std::string, UsbSpeed> const speeds{
        {"12", UsbSpeedFull}, {"480", UsbSpeedHigh}, {"5000", UsbSpeedSuper}};
    return speeds.at(megabits);
}

/// A binary coded decimal as lsusb writes it.
unsigned short revisionOf(std::string const& text)
{
    std::size_t const point = text.find('.');
    return static_cast<unsigned short>(
        std::stoul(text.substr(0, point) + text.substr(point + 1), nullptr, 16));
}

void expectSysfsToAgree(std::string const& node, SystemRecord const& system)
{
    EXPECT_EQ(attribute(node, "idVendor"), system.vendorId);
    EXPECT_EQ(attribute(node, "idProduct"), system.productId);
    EXPECT_EQ(attribute(node, "manufacturer"), system.manufacturer);
    EXPECT_EQ(attribute(node, "serial"), system.serial);
    EXPECT_EQ(attribute(node, "version"), " " + system.usbRevision);
}

} // namespace

SystemRecord readSystem(std::string const& node)
{
    SystemRecord system;
    readDriver(node, system);
    readUsb(node, system);
    system.megabits = attribute(node, "speed");
    return system;
}

void expectAsTheSystemSays(IDevice const& record, std::string const& node)
{
    SystemRecord const system = readSystem(node);
    expectSysfsToAgree(node, system);
    EXPECT_EQ(record.systemName(), node);
    EXPECT_EQ(record.name(), system.name);
    EXPECT_EQ(record.driverName(), system.driver);
    EXPECT_EQ(record.busInfo(), system.bus);
    EXPECT_EQ(record.driverVersion(), system.driverVersion);
    EXPECT_EQ(record.vendorId(), system.vendorId);
    EXPECT_EQ(record.productId(), system.productId);
    EXPECT_EQ(record.manufacturer(), system.manufacturer);
    EXPECT_EQ(record.serial(), system.serial);
    EXPECT_EQ(record.supportsAsynchIO(), (system.capabilities & V4L2_CAP_ASYNCIO) != 0);
    EXPECT_EQ(record.supportsReadWrite(), (system.capabilities & V4L2_CAP_READWRITE) != 0);
    EXPECT_EQ(record.supportsStreaming(), (system.capabilities & V4L2_CAP_STREAMING) != 0);
    EXPECT_EQ(record.supportsMultiplane(),
              (system.nodeCapabilities & V4L2_CAP_VIDEO_CAPTURE_MPLANE) != 0);
    EXPECT_EQ(record.supportsVideoCapture(),
              (system.nodeCapabilities & V4L2_CAP_VIDEO_CAPTURE) != 0);
    EXPECT_EQ(record.usbRevision(), revisionOf(system.usbRevision));
    EXPECT_EQ(record.usbSpeed(), speedOf(system.megabits));
}

} // namespace KernelTest
