// SPDX-License-Identifier: MIT
#pragma once

#include "LinkedCamera.h"
#include "Testbed.h"
#include "ToolFolder.h"
#include "TtyNode.h"
#include "VirtualCamera.h"
#include "serial/ZorvaneCameraControlBoolean.h"

#include <gtest/gtest.h>

#include <string>

/// A machine with one of the vendor's newer cameras on port 2.3: its video node, its tty, and the
/// kernel log that tells of both.
class SerialMachineTest : public testing::Test
{
protected:
    SerialMachineTest()
    {
        m_tools.onPath("dmesg", "echo \"dmesg $*\" >>\"$WORK/calls\"; cat \"$WORK/log\"");
        m_tools.inWorkingDirectory("fuser", "echo \"fuser $*\" >>\"$WORK/calls\"");
        m_tools.write("log", announcement(m_tty.name()));
    }

    void SetUp() override
    {
        ASSERT_TRUE(VirtualCamera::Testbed::visible()) << "umockdev's preload is missing";
    }

    /// The camera says nothing to these requests.
    void silence(VirtualCamera::SerialRequests const& requests)
    {
        m_firmware.answer(VirtualCamera::SerialAnswer::silence(), requests,
                          VirtualCamera::SerialFirmware::always);
    }

    /// One exchange over a camera's link.
    static bool cameraAnswers(ImageAcquisition::ZorvaneCamera& camera)
    {
        using namespace ImageAcquisition;
        return ZorvaneCameraControlBoolean(&camera, "Auto Focus", 8, 1, ICameraControl::Focus)
            .initControlLength();
    }

    /// The line by which the kernel tells of a tty.
    static std::string announcement(std::string const& tty,
                                    std::string const& interface = "1-2.3:1.5")
    {
        return "[   12.345678] cdc_acm " + interface + ": " + tty + ": USB ACM device\n";
    }

    static VirtualCamera::CameraBuilder aVendorCamera()
    {
        return VirtualCamera::aCamera("/dev/video0")
            .withBusInfo("usb-0000:00:14.0-2.3")
            .withFormat("YUYV")
            .withSize(64, 48)
            .withInterval(1, 30);
    }

    VirtualCamera::Testbed m_testbed;
    VirtualCamera::SerialFirmware m_firmware;
    TtyNode m_tty{m_testbed, m_firmware.ttyPath()};
    ToolFolder m_tools;
    VirtualCamera::InstalledCamera m_video = aVendorCamera().install();
};
