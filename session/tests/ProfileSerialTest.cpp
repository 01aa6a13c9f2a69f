// SPDX-License-Identifier: MIT
// Profiles of the vendor's camera whose controls go over the serial port.
#include "ChangedControls.h"
#include "DeviceStub.h"
#include "SerialFirmware.h"
#include "Testbed.h"
#include "ToolFolder.h"
#include "TtyNode.h"
#include "VirtualCamera.h"

#include "session/Profile.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace
{

using namespace ImageAcquisition::Session;
using Result = ControlOutcome::Result;

/// A machine with such a camera on port 2.3: its video node, its tty, and the kernel's log that
/// tells of both.
class ProfileSerialTest : public testing::Test
{
protected:
    ProfileSerialTest()
    {
        m_tools.onPath("dmesg", "echo '[ 12.345678] cdc_acm 1-2.3:1.5: " + m_tty.name() +
                                    ": USB ACM device'");
        m_tools.inWorkingDirectory("fuser", "true");
    }

    void SetUp() override
    {
        ASSERT_TRUE(VirtualCamera::Testbed::visible()) << "umockdev's preload is missing";
    }

    static Camera open()
    {
        DeviceStub record;
        record.bus = "usb-0000:00:14.0-2.3";
        record.firmware = "TJ8-1.3.0";
        record.vendor = IMAGEACQUISITION_VENDOR_ID;
        record.product = IMAGEACQUISITION_PRODUCT_ID;
        record.ofTheVendor = true;
        return Camera::open(Found(record));
    }

    VirtualCamera::Testbed m_testbed;
    VirtualCamera::SerialFirmware m_firmware;
    TtyNode m_tty{m_testbed, m_firmware.ttyPath()};
    ToolFolder m_tools;
    VirtualCamera::InstalledCamera m_video = VirtualCamera::aCamera("/dev/video0")
                                                 .withFormat("YUYV")
                                                 .withSize(64, 48)
                                                 .withInterval(1, 30)
                                                 .install();
};

TEST_F(ProfileSerialTest, ComesBack)
{
    Camera camera = open();
    ASSERT_EQ(camera.controls().size(), 39U);
    Profile const before = Profile::take(camera);
    // All but the error status and the temperature, which can only be read.
    ASSERT_EQ(before.controls().size(), 37U) << before.json();
    EXPECT_GE(changeAll(camera), 30);
    ProfileReport const report = before.apply(camera);
    EXPECT_TRUE(report.isMet()) << report.text();
    EXPECT_TRUE(std::none_of(
        report.controls.begin(), report.controls.end(),
        [](ControlOutcome const& outcome) { return outcome.result == Result::Skipped; }))
        << report.text();
    EXPECT_EQ(Profile::take(camera).json(), before.json());
}

TEST_F(ProfileSerialTest, SetsAutomaticsFirstWhateverTheirNames)
{
    Camera camera = open();
    long long const hue = camera["Hue"].number() == 0 ? 1 : 0;
    bool const off = camera["Disable Hue"].number() == 0;
    ProfileReport const report =
        Profile::fromJson(R"({"version": 1, "controls": {"Hue": )" + std::to_string(hue) +
                          R"(, "Disable Hue": )" + (off ? "true" : "false") + "}}")
            .apply(camera);
    EXPECT_TRUE(report.isMet()) << report.text();
    ASSERT_EQ(report.controls.size(), 2U);
    EXPECT_EQ(report.controls[0].name, "Disable Hue");
    EXPECT_EQ(report.controls[0].result, Result::Set);
    EXPECT_EQ(report.controls[1].result, Result::Set);
}

} // namespace
