// SPDX-License-Identifier: MIT
#include "Testbed.h"

#include <gtest/gtest.h>

#include <libudev.h>
#include <libusb-1.0/libusb.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <memory>
#include <string>

namespace
{

using namespace VirtualCamera;

struct Udev
{
    udev* context = udev_new();
    ~Udev() { udev_unref(context); }
};

struct Usb
{
    libusb_context* context = nullptr;
    Usb() { libusb_init(&context); }
    ~Usb() { libusb_exit(context); }

    int speedOf(std::uint16_t vendor, std::uint16_t product, std::uint16_t* revision = nullptr)
    {
        libusb_device** list = nullptr;
        ssize_t const count = libusb_get_device_list(context, &list);
        int speed = -1;
        for (ssize_t place = 0; place < count; ++place) {
            libusb_device_descriptor descriptor{};
            if (libusb_get_device_descriptor(list[place], &descriptor) != 0 ||
                descriptor.idVendor != vendor || descriptor.idProduct != product) {
                continue;
            }
            speed = libusb_get_device_speed(list[place]);
            if (revision != nullptr) {
                *revision = descriptor.bcdUSB;
            }
        }
        libusb_free_device_list(list, 1);
        return speed;
    }
};

struct UsbHandle
{
    libusb_device_handle* handle;
    UsbHandle(Usb& usb, std::uint16_t vendor, std::uint16_t product)
        : handle(libusb_open_device_with_vid_pid(usb.context, vendor, product))
    {
    }
    ~UsbHandle()
    {
        if (handle != nullptr) {
            libusb_close(handle);
        }
    }
    int ask(std::uint8_t request, std::uint16_t length, unsigned char* reply)
    {
        return libusb_control_transfer(handle, 0xc0, request, 0, 0, reply, length, 5000);
    }
};

std::string attributeOfUsbParent(std::string const& node, char const* attribute)
{
    Udev udev;
    udev_device* const device =
        udev_device_new_from_syspath(udev.context, ("/sys/class/video4linux/" + node).c_str());
    if (device == nullptr) {
        return "no device";
    }
    udev_device* const parent =
        udev_device_get_parent_with_subsystem_devtype(device, "usb", "usb_device");
    char const* const value =
        parent == nullptr ? "no parent" : udev_device_get_sysattr_value(parent, attribute);
    std::string const text = value == nullptr ? "no attribute" : value;
    udev_device_unref(device);
    return text;
}

/// Hears video4linux uevents, as a hot-plug monitor does.
class Listener
{
public:
    Listener() : m_monitor(udev_monitor_new_from_netlink(m_udev.context, "udev"))
    {
        udev_monitor_filter_add_match_subsystem_devtype(m_monitor, "video4linux", nullptr);
        udev_monitor_enable_receiving(m_monitor);
    }
    ~Listener() { udev_monitor_unref(m_monitor); }

    /// "action node" of the next event; empty when none comes.
    std::string next(int milliseconds = 5000)
    {
        pollfd waiting{udev_monitor_get_fd(m_monitor), POLLIN, 0};
        if (poll(&waiting, 1, milliseconds) != 1) {
            return {};
        }
        udev_device* const device = udev_monitor_receive_device(m_monitor);
        if (device == nullptr) {
            return {};
        }
        char const* const node = udev_device_get_devnode(device);
        std::string text = udev_device_get_action(device);
        text += std::string(" ") + (node == nullptr ? "nowhere" : node);
        udev_device_unref(device);
        return text;
    }

private:
    Udev m_udev;
    udev_monitor* m_monitor;
};

class TestbedTest : public testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(Testbed::visible()) << "umockdev's preload is missing"; }

    Testbed m_testbed;
};

TEST_F(TestbedTest, ShowsAVideoNodeWithItsUsbParent)
{
    UsbDevice const device =
        m_testbed.plug(aUsbDevice("1-2").withIds("7a76", "ca01").withSerial("A1"));
    m_testbed.addVideoNode("video0", device);
    EXPECT_EQ(access("/dev/video0", F_OK), 0);
    EXPECT_EQ(attributeOfUsbParent("video0", "idVendor"), "7a76");
    EXPECT_EQ(attributeOfUsbParent("video0", "serial"), "A1");
    EXPECT_EQ(attributeOfUsbParent("video0", "manufacturer"), "no attribute");
}

TEST_F(TestbedTest, ShowsAVideoNodeWithoutAUsbParent)
{
    m_testbed.addVideoNode("video7");
    EXPECT_EQ(access("/dev/video7", F_OK), 0);
    EXPECT_EQ(access("/dev/video8", F_OK), -1);
    EXPECT_EQ(attributeOfUsbParent("video7", "idVendor"), "no parent");
}

TEST_F(TestbedTest, RemovesNodesWithTheirDevice)
{
    UsbDevice const device = m_testbed.plug(aUsbDevice("1-2"));
    m_testbed.addVideoNode("video0", device);
    m_testbed.unplug(device);
    EXPECT_EQ(access("/dev/video0", F_OK), -1);
    EXPECT_EQ(attributeOfUsbParent("video0", "idVendor"), "no device");
    EXPECT_EQ(Usb().speedOf(0x1d6b, 0x0102), -1);
}

TEST_F(TestbedTest, GivesLibusbEachSpeedAndTheUsbRevision)
{
    std::array<char const*, 5> const speeds{"1.5", "12", "480", "5000", "10000"};
    for (std::size_t place = 0; place < speeds.size(); ++place) {
        std::string const number = std::to_string(place + 1);
        m_testbed.plug(aUsbDevice("1-" + number)
                           .withIds("1234", "000" + number)
                           .withSpeed(speeds[place])
                           .withUsbRevision(static_cast<std::uint16_t>(0x0300 + place)));
    }
    Usb usb;
    for (int place = 0; place < 5; ++place) {
        std::uint16_t revision = 0;
        EXPECT_EQ(usb.speedOf(0x1234, static_cast<std::uint16_t>(place + 1), &revision), place + 1);
        EXPECT_EQ(revision, 0x0300 + place);
    }
}

TEST_F(TestbedTest, AnswersTheFirmwareRequestAndCountsIt)
{
    UsbDevice const device =
        m_testbed.plug(aUsbDevice().withIds("7a76", "ca01").withFirmware("TJ8-1.2.4"));
    Usb usb;
    UsbHandle open(usb, 0x7a76, 0xca01);
    ASSERT_NE(open.handle, nullptr);
    std::array<unsigned char, 32> reply{};
    EXPECT_EQ(open.ask(0xb0, 32, reply.data()), 10);
    EXPECT_STREQ(reinterpret_cast<char const*>(reply.data()), "TJ8-1.2.4");
    EXPECT_EQ(device.firmwareRequests(), 1);
    EXPECT_EQ(device.resetRequests(), 0);
    EXPECT_EQ(device.requests().front().length, 32);
}

TEST_F(TestbedTest, GivesFirmwareBytesExactlyAndNoMoreThanAskedFor)
{
    UsbDevice device =
        m_testbed.plug(aUsbDevice().withIds("7a76", "ca01").withFirmwareBytes({'T', 'J', '8'}));
    Usb usb;
    UsbHandle open(usb, 0x7a76, 0xca01);
    std::array<unsigned char, 32> reply{};
    reply.fill(0xaa);
    EXPECT_EQ(open.ask(0xb0, 32, reply.data()), 3);
    EXPECT_EQ(reply[3], 0xaa);
    device.setFirmware(std::vector<std::uint8_t>(40, 'x'));
    EXPECT_EQ(open.ask(0xb0, 32, reply.data()), 32);
}

TEST_F(TestbedTest, CountsResetsOfEachDeviceByItself)
{
    UsbDevice const first =
        m_testbed.plug(aUsbDevice("1-1").withIds("7a76", "ca01").withFirmware("TJ8-1.2.4"));
    UsbDevice const other =
        m_testbed.plug(aUsbDevice("1-2").withIds("7a76", "ca02").withFirmware("TJ8-1.2.4"));
    Usb usb;
    UsbHandle open(usb, 0x7a76, 0xca02);
    std::array<unsigned char, 16> reply{};
    EXPECT_EQ(open.ask(0xe0, 16, reply.data()), 16);
    EXPECT_EQ(first.resetRequests(), 0);
    EXPECT_EQ(other.resetRequests(), 1);
}

TEST_F(TestbedTest, StallsWithoutFirmware)
{
    UsbDevice const device = m_testbed.plug(aUsbDevice().withIds("7a76", "ca01"));
    Usb usb;
    UsbHandle open(usb, 0x7a76, 0xca01);
    std::array<unsigned char, 32> reply{};
    EXPECT_EQ(open.ask(0xb0, 32, reply.data()), LIBUSB_ERROR_PIPE);
    EXPECT_EQ(device.firmwareRequests(), 1);
}

TEST_F(TestbedTest, ListsADeviceThatRefusesToOpen)
{
    m_testbed.plug(aUsbDevice().withIds("7a76", "ca01").refusingOpen());
    Usb usb;
    EXPECT_EQ(usb.speedOf(0x7a76, 0xca01), LIBUSB_SPEED_HIGH);
    EXPECT_EQ(UsbHandle(usb, 0x7a76, 0xca01).handle, nullptr);
}

TEST_F(TestbedTest, SendsUeventsOfVideoDevicesToMonitors)
{
    Listener listener;
    UsbDevice const device = m_testbed.plug(aUsbDevice("1-2"));
    m_testbed.addVideoNode("video0", device);
    EXPECT_EQ(listener.next(), "add /dev/video0");
    m_testbed.addOtherDevice("input", "event5", "/dev/input/event5");
    m_testbed.sendEvent("video0", "change");
    EXPECT_EQ(listener.next(), "change /dev/video0");
    m_testbed.sendEvent("video0", "move");
    EXPECT_EQ(listener.next(), "move /dev/video0");
    m_testbed.unplug(device);
    EXPECT_EQ(listener.next(), "remove /dev/video0");
}

TEST_F(TestbedTest, RunsTheResetActionAfterTheReply)
{
    UsbDevice device =
        m_testbed.plug(aUsbDevice().withIds("7a76", "ca01").withFirmware("TJ8-1.2.4"));
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    device.onReset([&ends] { EXPECT_EQ(write(ends[1], "r", 1), 1); });
    Usb usb;
    UsbHandle open(usb, 0x7a76, 0xca01);
    std::array<unsigned char, 16> reply{};
    EXPECT_EQ(open.ask(0xe0, 16, reply.data()), 16);
    pollfd waiting{ends[0], POLLIN, 0};
    EXPECT_EQ(poll(&waiting, 1, 5000), 1);
    close(ends[0]);
    close(ends[1]);
}

} // namespace
