// SPDX-License-Identifier: MIT
#pragma once

#include "LinkedCamera.h"

#include <gtest/gtest.h>

#include <vector>

/// A linked camera whose firmware has three controls of the extension unit: selector 1 of one
/// byte, 2 of two bytes and 20 of eight bytes.
class ControlledCameraTest : public testing::Test
{
protected:
    using SerialAnswer = VirtualCamera::SerialAnswer;
    using SerialBytes = VirtualCamera::SerialBytes;
    using SerialFirmware = VirtualCamera::SerialFirmware;
    using Family = ImageAcquisition::ICameraControl::Family;

    static constexpr int unit = 3;
    static constexpr Family family = ImageAcquisition::ICameraControl::Focus;
    static constexpr int oneByte = 1;
    static constexpr int twoBytes = 2;
    static constexpr int eightBytes = 20;

    void silence(std::uint8_t code, unsigned times = SerialFirmware::always)
    {
        ReplyTimeout::set(m_camera, ReplyTimeout::forBoth);
        m_firmware.answer(SerialAnswer::silence(), {code, {}, {}}, times);
    }
    /// What the camera received, as request codes.
    std::vector<int> codes() const
    {
        std::vector<int> all;
        for (auto const& packet : m_firmware.packets()) {
            all.push_back(packet.code());
        }
        return all;
    }
    SerialBytes lastPacket() const { return m_firmware.packetBytes().back(); }

    SerialFirmware m_firmware{
        {VirtualCamera::aSerialControl(unit, oneByte, 1, 0, 100, 7),
         VirtualCamera::aSerialControl(unit, twoBytes, 2, -5, 255, -2),
         VirtualCamera::aSerialControl(unit, eightBytes, 8, 0, 0x0400030002000100,
                                       0x0004000300020001)}};
    LinkedCamera m_camera{m_firmware.ttyPath()};
};
