// SPDX-License-Identifier: MIT
#include "FuserFolder.h"
#include "OrdinaryUser.h"
#include "SeenCamera.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

using namespace KernelTest;
using Json = nlohmann::json;

namespace
{

/// A file of rules where udev looks, until the test ends.
class InstalledRules
{
public:
    explicit InstalledRules(std::string const& rules)
    {
        std::filesystem::create_directories(m_place.parent_path());
        std::ofstream(m_place) << rules << '\n';
        reload();
    }
    ~InstalledRules()
    {
        std::filesystem::remove(m_place);
        reload();
    }
    InstalledRules(InstalledRules const&) = delete;
    InstalledRules& operator=(InstalledRules const&) = delete;

private:
    static void reload() { EXPECT_EQ(runShell("udevadm control --reload").status, 0); }

    std::filesystem::path m_place = "/run/udev/rules.d/70-imageacquisition.rules";
};

std::string projectsRules()
{
    char const* const build = std::getenv("KERNEL_TEST_BUILD");
    std::string const rules = readFile(std::string(build) + "/udev/70-imageacquisition.rules");
    EXPECT_FALSE(rules.empty());
    return rules;
}

/// The integrator's guide's rule for a service.
std::string serviceRule()
{
    char rule[160];
    std::snprintf(rule, sizeof rule,
                  R"(SUBSYSTEM=="usb", ENV{DEVTYPE}=="usb_device", ATTR{idVendor}=="%04x", )"
                  R"(ATTR{idProduct}=="%04x", GROUP="video", MODE="0660")",
                  USBCAMERA_VENDOR_ID, USBCAMERA_PRODUCT_ID);
    return rule;
}

/// Tells udev who sits at the machine: what systemd-logind, which the virtual machine has not,
/// would write.
class Seat
{
public:
    explicit Seat(unsigned user)
    {
        std::filesystem::create_directories(m_file.parent_path());
        std::ofstream(m_file) << "IS_SEAT0=1\nACTIVE=1\nACTIVE_UID=" << user << '\n';
    }
    ~Seat() { std::filesystem::remove_all(m_file.parent_path()); }
    Seat(Seat const&) = delete;
    Seat& operator=(Seat const&) = delete;

private:
    std::filesystem::path m_file = "/run/systemd/seats/seat0";
};

std::string udevRecord(std::string const& node)
{
    return runShell("udevadm info --name=" + node).output;
}

bool mayOpen(unsigned user, std::string const& node)
{
    return runShell("setpriv --reuid=" + std::to_string(user) + " --regid=" +
                    std::to_string(nobody) + " --clear-groups sh -c ': <> " + node + "'")
               .status == 0;
}

TEST(UdevRulesTest, MarkTheVendorsNodesForTheUserAtTheSeatAndNoOthers)
{
    InstalledRules const rules(projectsRules());
    EmulatedCameras const cameras({"vendor-new", "ordinary,serial-port=yes"});
    for (std::string const& node : {usbNode(cameras, 1), cameras.serialNode(1)}) {
        std::string const record = udevRecord(node);
        EXPECT_NE(record.find("uaccess"), std::string::npos) << record;
        EXPECT_NE(record.find("ID_MM_DEVICE_IGNORE=1"), std::string::npos) << record;
    }
    std::string const terminal = udevRecord(cameras.serialNode(1));
    EXPECT_NE(terminal.find("ID_MM_PORT_IGNORE=1"), std::string::npos) << terminal;
    for (std::string const& node : {usbNode(cameras, 2), cameras.serialNode(2)}) {
        std::string const record = udevRecord(node);
        EXPECT_EQ(record.find("uaccess"), std::string::npos) << record;
        EXPECT_EQ(record.find("ID_MM_"), std::string::npos) << record;
    }
}

TEST(UdevRulesTest, GiveTheUserAtTheSeatTheSerialLinkAndOthersNothing)
{
    FuserFolder const folder;
    InstalledRules const rules(projectsRules());
    Seat const seat(nobody);
    ReadableLog const log(true);
    EmulatedCameras const cameras({"vendor-new", "ordinary"});
    std::string const node = cameras.videoNode(1);
    std::vector<std::string> const nodes{node, usbNode(cameras, 1), cameras.serialNode(1)};
    for (std::string const& one : nodes) {
        EXPECT_TRUE(mayOpen(nobody, one)) << one;
        EXPECT_FALSE(mayOpen(nobody - 1, one)) << one;
    }
    EXPECT_FALSE(mayOpen(nobody, usbNode(cameras, 2)));
    EXPECT_EQ(asUser(nobody - 1, [&node] { return describeCamera(node); }).at("listed"), 0);
    Json const seen = asUser(nobody, [&node] { return describeCamera(node); });
    EXPECT_EQ(seen.at("listed"), 2);
    ASSERT_EQ(seen.at("opened"), true);
    EXPECT_EQ(seen.at("firmware"), "TJ8-1.3.0");
    EXPECT_EQ(seen.at("controls"), 39);
    EXPECT_EQ(seen.at("reset"), true);
    EXPECT_TRUE(waitFor([&] { return cameras.status(1)["plugs"] == 2; }));
    EXPECT_TRUE(cameras.waitUntilReady(1));
}

TEST(UdevRulesTest, OfTheGuideForAServiceGiveTheGroupTheUsbNode)
{
    InstalledRules const rules(serviceRule());
    EmulatedCameras const cameras({"vendor-old", "ordinary"});
    std::string const listed =
        runShell("stat -c '%G %a' " + usbNode(cameras, 1) + " " + usbNode(cameras, 2)).output;
    EXPECT_EQ(listed, "video 660\nroot 664\n");
}

} // namespace
