// SPDX-License-Identifier: MIT
#pragma once

#include "LinkedCamera.h"
#include "ReplyTimeout.h"
#include "SerialFirmware.h"
#include "serial/ZorvaneCameraControlNumeric.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <ostream>

/// How often an answer is what is scripted: each one, every third one, or one alone.
enum class How { Often, EveryThird, Once };

inline void PrintTo(How how, std::ostream* stream)
{
    std::array<char const*, 3> const words = {"Often", "EveryThird", "Once"};
    *stream << words.at(static_cast<std::size_t>(how));
}

/// A camera that answers in order, in its usual time, and controls of it whose values all differ.
class LateReplies : public testing::Test
{
protected:
    using Number = ImageAcquisition::ZorvaneCameraControlNumeric<int>;
    using Control = ImageAcquisition::ICameraControl;
    using SerialAnswer = VirtualCamera::SerialAnswer;
    using SerialBytes = VirtualCamera::SerialBytes;
    using SerialFirmware = VirtualCamera::SerialFirmware;

    struct Reading
    {
        Number control;
        int value;
    };

    LateReplies()
    {
        m_firmware.answerInOrder(std::chrono::milliseconds(5));
        for (auto& [control, value] : m_numbers) {
            m_firmware.setData(2, static_cast<std::uint8_t>(control.id()),
                               VirtualCamera::littleEndian(value, 2));
            EXPECT_TRUE(control.init());
        }
        m_firmware.setData(3, 20, m_windowData);
        m_windowX2.setShared(2, 2);
        EXPECT_TRUE(m_windowX2.init());
    }

    void script(SerialAnswer const& how, How often)
    {
        if (often == How::Often) {
            m_firmware.answer(how, {}, SerialFirmware::always);
            return;
        }
        for (int i = 0; i < (often == How::Once ? 1 : 30); ++i) {
            m_firmware.answer(how);
            m_firmware.answer(SerialAnswer::prompt(), {}, 2);
        }
    }

    /// How many of the controls were read; what is read is the camera's.
    int readAll()
    {
        int read = 0;
        for (auto const& [control, value] : m_numbers) {
            long long is = 0;
            if (control.getControlValue(is)) {
                EXPECT_EQ(is, value) << control.name();
                ++read;
            }
        }
        long long is = 0;
        if (m_windowX2.getSharedControlValue(is, 2, 2)) {
            EXPECT_EQ(is, m_windowData[2] + 256 * m_windowData[3]);
            ++read;
        }
        return read;
    }

    /// Whether the field was written; no other one changes.
    bool writeField(std::uint8_t value)
    {
        bool const written = m_windowX2.setSharedControlValue(value, 2, 2);
        SerialBytes const is = m_firmware.data(3, 20);
        SerialBytes changed = m_windowData;
        changed[2] = value;
        changed[3] = 0;
        EXPECT_TRUE(is == changed || (is == m_windowData && !written))
            << "the other fields read " << testing::PrintToString(is);
        m_windowData = is;
        return written;
    }

    void expectAllToHold(SerialAnswer const& how, How often)
    {
        script(how, often);
        EXPECT_EQ(readAll(), 5);
        EXPECT_TRUE(writeField(77));
        EXPECT_EQ(readAll(), 5);
        EXPECT_TRUE(m_windowX2.setValue(78));
        m_windowData[2] = 78;
        EXPECT_EQ(m_firmware.data(3, 20), m_windowData);
    }

    SerialFirmware m_firmware;
    LinkedCamera m_camera{m_firmware.ttyPath()};
    ReplyTimeout m_timeout{m_camera, ReplyTimeout::usual};
    std::array<Reading, 4> m_numbers = {{
        {{&m_camera, "Gain", 4, 2, Control::ImageQuality}, 1101},
        {{&m_camera, "Contrast", 3, 2, Control::Advanced}, 2202},
        {{&m_camera, "Saturation", 7, 2, Control::ImageQuality}, 3303},
        {{&m_camera, "Gamma", 9, 2, Control::Advanced}, 4404},
    }};
    Number m_windowX2{&m_camera, "Focus Window X2", 20, 3, Control::Focus};
    SerialBytes m_windowData = {1, 0, 2, 0, 3, 0, 4, 0};
};
