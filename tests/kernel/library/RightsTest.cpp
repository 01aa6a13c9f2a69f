// SPDX-License-Identifier: MIT
#include "EmulatedCameras.h"
#include "FuserFolder.h"
#include "LibraryCamera.h"
#include "Shell.h"

#include <ICameraControl.h>

#include <gtest/gtest.h>

#include <grp.h>
#include <linux/videodev2.h>
#include <nlohmann/json.hpp>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>

using namespace ImageAcquisition;
using namespace KernelTest;
using Json = nlohmann::json;

namespace
{

constexpr unsigned nobody = 65534;

/// What the work returns when an ordinary user does it, in a process of its own.
Json asOrdinaryUser(const std::function<Json()>& work)
{
    int ends[2];
    if (::pipe(ends) != 0) {
        throw std::runtime_error("no pipe");
    }
    const pid_t child = ::fork();
    if (child == 0) {
        if (::setgroups(0, nullptr) != 0 || ::setgid(nobody) != 0 || ::setuid(nobody) != 0) {
            ::_exit(1);
        }
        const std::string text = work().dump();
        ::_exit(::write(ends[1], text.data(), text.size()) == static_cast<ssize_t>(text.size())
                    ? 0
                    : 1);
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

Json describeCamera(const std::string& node)
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
    return {{"listed", list->size()},
            {"opened", true},
            {"firmware", record->firmwareVersion()},
            {"vendorsOwn", record->isaZorvaneDevice()},
            {"serial", record->serial()},
            {"lightControl", camera->lightModeControl()->id()},
            {"formats", camera->formatNumber()},
            {"reset", camera->softwareReset()}};
}

std::string usbNode(const EmulatedCameras& cameras, unsigned camera = 1)
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

/// Whether everybody may read the kernel's log; Debian reserves it for root.
class ReadableLog
{
public:
    explicit ReadableLog(bool isReadable)
    {
        std::ofstream(_file) << (isReadable ? "0" : "1");
        EXPECT_EQ(readFile(_file), isReadable ? "0" : "1");
    }
    ~ReadableLog() { std::ofstream(_file) << _before; }
    ReadableLog(const ReadableLog&) = delete;
    ReadableLog& operator=(const ReadableLog&) = delete;

private:
    std::string _file = "/proc/sys/kernel/dmesg_restrict";
    std::string _before = readFile(_file);
};

class Rights : public testing::Test
{
protected:
    void openToAllNodes() const
    {
        for (const std::string& one : {node, usbNode(cameras), cameras.serialNode()}) {
            openToAll(one);
        }
    }

    const FuserFolder folder;
    const EmulatedCameras cameras{{"vendor-new"}};
    const std::string node = cameras.videoNode();
};

/// The project's rules where udev looks, until the test ends.
class InstalledRules
{
public:
    InstalledRules()
    {
        const std::string build = std::getenv("KERNEL_TEST_BUILD");
        std::filesystem::create_directories(_place.parent_path());
        std::filesystem::copy_file(build + "/udev/70-imageacquisition.rules", _place);
        reload();
    }
    ~InstalledRules()
    {
        std::filesystem::remove(_place);
        reload();
    }
    InstalledRules(const InstalledRules&) = delete;
    InstalledRules& operator=(const InstalledRules&) = delete;

private:
    static void reload() { EXPECT_EQ(runShell("udevadm control --reload").status, 0); }

    std::filesystem::path _place = "/run/udev/rules.d/70-imageacquisition.rules";
};

std::string udevRecord(const std::string& node)
{
    return runShell("udevadm info --name=" + node).output;
}

} // namespace

TEST_F(Rights, OnTheVideoNodeAloneGiveAGenericCameraWithoutFirmwareText)
{
    openToAll(node);
    const Json seen = asOrdinaryUser([this] { return describeCamera(node); });
    EXPECT_EQ(seen.at("listed"), 1);
    EXPECT_EQ(seen.at("opened"), true);
    EXPECT_EQ(seen.at("vendorsOwn"), true);
    EXPECT_EQ(seen.at("firmware"), "");
    EXPECT_EQ(seen.at("lightControl"), V4L2_CID_PRIVATE_BASE);
    EXPECT_GT(seen.at("formats"), 0);
    EXPECT_EQ(seen.at("reset"), false);
    EXPECT_EQ(cameras.status()["plugs"], 1);
    EXPECT_EQ(cameras.status()["serialPackets"], 0);
}

TEST_F(Rights, OnNoNodeGiveAnEmptyList)
{
    std::filesystem::permissions(node, std::filesystem::perms(0600));
    EXPECT_EQ(asOrdinaryUser([this] { return describeCamera(node); }), Json({{"listed", 0}}));
}

TEST_F(Rights, OnAllNodesAndTheKernelsLogGiveTheSerialLink)
{
    openToAllNodes();
    const ReadableLog log(true);
    const Json seen = asOrdinaryUser([this] { return describeCamera(node); });
    ASSERT_EQ(seen.at("opened"), true);
    EXPECT_EQ(seen.at("firmware"), "TJ8-1.3.0");
    // The selector, as the serial link's controls have it.
    EXPECT_EQ(seen.at("lightControl"), 1);
    EXPECT_EQ(seen.at("reset"), true);
}

TEST_F(Rights, OnAllNodesButNotTheKernelsLogGiveNoCameraAndResetIt)
{
    openToAllNodes();
    const ReadableLog log(false);
    const Json seen = asOrdinaryUser([this] { return describeCamera(node); });
    EXPECT_EQ(seen, Json({{"listed", 1}, {"opened", false}}));
    EXPECT_TRUE(waitFor([this] { return cameras.status()["plugs"] == 2; }));
    EXPECT_TRUE(cameras.waitUntilReady());
}

TEST(UdevRules, MarkTheVendorsNodesForTheUserAtTheSeatAndNoOthers)
{
    const InstalledRules rules;
    const EmulatedCameras cameras({"vendor-new", "ordinary,serial-port=yes"});
    for (const std::string& node : {usbNode(cameras, 1), cameras.serialNode(1)}) {
        const std::string record = udevRecord(node);
        EXPECT_NE(record.find("uaccess"), std::string::npos) << record;
        EXPECT_NE(record.find("ID_MM_DEVICE_IGNORE=1"), std::string::npos) << record;
    }
    for (const std::string& node : {usbNode(cameras, 2), cameras.serialNode(2)}) {
        const std::string record = udevRecord(node);
        EXPECT_EQ(record.find("uaccess"), std::string::npos) << record;
        EXPECT_EQ(record.find("ID_MM_DEVICE_IGNORE"), std::string::npos) << record;
    }
}
