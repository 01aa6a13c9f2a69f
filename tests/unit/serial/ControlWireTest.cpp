// SPDX-License-Identifier: MIT
#include "LinkedCamera.h"

#include "serial/ZorvaneCameraControlBoolean.h"
#include "serial/ZorvaneCameraControlNumeric.h"

#include <gtest/gtest.h>

#include <array>

namespace
{

using namespace ImageAcquisition;
using namespace VirtualCamera;

/// Where a row of the control table lives in the camera, how many bytes its control has, and for a
/// write of @p value what must be the control's data afterwards.
struct Wire
{
    char const* name;
    std::uint8_t unit;
    std::uint8_t selector;
    std::uint8_t size;
    char kind; ///< 'n' number, 'b' Boolean, 'm' menu (the value is an index then).
    int value;
    SerialBytes data;
};

// clang-format off
std::array<Wire, 39> const wires = {{
    {"Focus", 1, 6, 2, 'n', 513, {0x01, 0x02}},
    {"Auto Focus", 1, 8, 1, 'b', 1, {1}},
    {"Focus Min", 3, 9, 6, 'n', 0x0102, {0x02, 0x01, 0xb2, 0xb3, 0xb4, 0xb5}},
    {"Focus Max", 3, 9, 6, 'n', 0x0304, {0xb0, 0xb1, 0x04, 0x03, 0xb4, 0xb5}},
    {"Focus Step", 3, 9, 6, 'n', 5, {0xb0, 0xb1, 0xb2, 0xb3, 0x05, 0x00}},
    {"Focus Sensitivity", 3, 11, 1, 'n', 77, {77}},
    {"Focus Strategy", 3, 15, 1, 'm', 2, {2}},
    {"Lighting Mode", 3, 1, 1, 'm', 1, {3}},
    {"Lighting Value", 3, 2, 2, 'n', 100, {100, 0}},
    {"Temperature (C)", 3, 4, 2, 'n', -2, {0xfe, 0xff}},
    {"Auto Exposure", 1, 2, 1, 'm', 0, {2}},
    {"Exposure Sensitivity", 3, 24, 1, 'n', -7, {0xf9}},
    {"Exposure", 1, 4, 4, 'n', 0x01020304, {4, 3, 2, 1}},
    {"Gain", 2, 4, 2, 'n', 200, {200, 0}},
    {"Disable Contrast/Brightness", 3, 16, 1, 'b', 1, {1}},
    {"Brightness", 2, 2, 2, 'n', -64, {0xc0, 0xff}},
    {"Contrast", 2, 3, 2, 'n', 20, {20, 0}},
    {"Disable Hue", 2, 16, 1, 'b', 0, {0}},
    {"Hue", 2, 6, 2, 'n', -180, {0x4c, 0xff}},
    {"Disable Saturation", 3, 17, 1, 'b', 1, {1}},
    {"Saturation", 2, 7, 2, 'n', 21, {21, 0}},
    {"Disable sharpness", 3, 18, 1, 'b', 1, {1}},
    {"Sharpness", 2, 8, 2, 'n', 22, {22, 0}},
    {"Gamma", 2, 9, 2, 'n', 300, {0x2c, 0x01}},
    {"Disable Gamma", 3, 25, 1, 'b', 1, {1}},
    {"Trigger Auto Controls", 3, 5, 4, 'n', 7, {7, 0, 0, 0}},
    {"Error Status", 3, 3, 4, 'n', 1, {1, 0, 0, 0}},
    {"Keep Alive", 3, 6, 1, 'b', 1, {1}},
    {"Focus Window Selected", 3, 8, 1, 'n', 3, {3}},
    {"Focus Window X1", 3, 20, 8, 'n', 0x0102, {2, 1, 0xb2, 0xb3, 0xb4, 0xb5, 0xb6, 0xb7}},
    {"Focus Window X2", 3, 20, 8, 'n', 0x0304, {0xb0, 0xb1, 4, 3, 0xb4, 0xb5, 0xb6, 0xb7}},
    {"Focus Window Y1", 3, 20, 8, 'n', -1, {0xb0, 0xb1, 0xb2, 0xb3, 0xff, 0xff, 0xb6, 0xb7}},
    {"Focus Window Y2", 3, 20, 8, 'n', 0x0506, {0xb0, 0xb1, 0xb2, 0xb3, 0xb4, 0xb5, 6, 5}},
    {"Lock Auto Controls", 3, 7, 4, 'n', 6, {6, 0, 0, 0}},
    {"Auto White Balance", 2, 11, 1, 'b', 0, {0}},
    {"White Balance Temperature", 2, 10, 2, 'n', 5000, {0x88, 0x13}},
    {"White Balance, Red (custom)", 3, 10, 6, 'n', 0x0102, {0x02, 0x01, 0xb2, 0xb3, 0xb4, 0xb5}},
    {"White Balance, Green (custom)", 3, 10, 6, 'n', 0x0102, {0xb0, 0xb1, 2, 1, 0xb4, 0xb5}},
    {"White Balance, Blue (custom)", 3, 10, 6, 'n', 0x0102, {0xb0, 0xb1, 0xb2, 0xb3, 2, 1}},
}};
// clang-format on

SerialBytes request(std::uint8_t code, Wire const& wire, std::uint8_t length)
{
    return {0xa1, code, 0, wire.selector, 0, wire.unit, length, 0};
}

SerialBytes writeRequest(Wire const& wire, SerialBytes const& data)
{
    SerialBytes packet{0x21, 0x01, 0, wire.selector, 0, wire.unit, wire.size, 0};
    packet.insert(packet.end(), data.begin(), data.end());
    return packet;
}

bool isField(Wire const& wire)
{
    return wire.size == 6 || wire.size == 8;
}

/// Bytes by which one sees what a write left alone.
SerialBytes background(Wire const& wire)
{
    SerialBytes const bytes{0xb0, 0xb1, 0xb2, 0xb3, 0xb4, 0xb5, 0xb6, 0xb7};
    return {bytes.begin(), bytes.begin() + wire.size};
}

bool setValue(ICameraControl& control, Wire const& wire)
{
    switch (wire.kind) {
    case 'b':
        return dynamic_cast<ICameraControlBoolean&>(control).setValue(wire.value != 0);
    case 'm':
        return dynamic_cast<ICameraControlStringMenu&>(control).setCurrentIndex(wire.value);
    default:
        return dynamic_cast<ICameraControlNumeric<int>&>(control).setValue(wire.value);
    }
}

int value(ICameraControl& control, Wire const& wire)
{
    switch (wire.kind) {
    case 'b':
        return dynamic_cast<ICameraControlBoolean&>(control).value() ? 1 : 0;
    case 'm':
        return dynamic_cast<ICameraControlStringMenu&>(control).currentIndex();
    default:
        return dynamic_cast<ICameraControlNumeric<int>&>(control).value();
    }
}

class ControlWireTest : public testing::Test
{
protected:
    /// The control of a row, with its data length known and nothing in the log.
    std::unique_ptr<ZorvaneCameraControl> controlOf(std::size_t row)
    {
        Wire const& wire = wires[row];
        m_firmware.setInfo(wire.unit, wire.selector, 0x03);
        auto control = m_camera.createControl(ZorvaneCamera::_controlMap[row]);
        EXPECT_TRUE(control->initControlLength());
        EXPECT_EQ(control->dataLength(), wire.size);
        m_firmware.clearPackets();
        return control;
    }

    SerialFirmware m_firmware;
    LinkedCamera m_camera{m_firmware.ttyPath()};
};

TEST_F(ControlWireTest, AsksLengthInfoAndLimitsOfEachRowInTableOrder)
{
    std::vector<SerialBytes> expected;
    for (Wire const& wire : wires) {
        expected.push_back(request(0x85, wire, 2));
        expected.push_back(request(0x86, wire, 1));
        if (wire.kind == 'n') {
            expected.push_back(request(0x83, wire, wire.size));
            expected.push_back(request(0x82, wire, wire.size));
        }
    }
    EXPECT_TRUE(m_camera.buildMainControlSet());
    EXPECT_EQ(m_firmware.packetBytes(), expected);
    ASSERT_EQ(m_camera.controlNumber(), 39);
    for (int i = 0; i < 39; ++i) {
        EXPECT_STREQ(wires[static_cast<std::size_t>(i)].name, m_camera.control(i)->name());
    }
}

TEST_F(ControlWireTest, StopsAtTheFirstControlThatDoesNotAnswerAndKeepsIt)
{
    ReplyTimeout const patience(m_camera, ReplyTimeout::forBoth);
    m_firmware.answer(SerialAnswer::silence(), {}, SerialFirmware::always);
    EXPECT_FALSE(m_camera.buildMainControlSet());
    ASSERT_EQ(m_camera.controlNumber(), 1);
    EXPECT_STREQ(m_camera.control(0)->name(), "Focus");
}

TEST_F(ControlWireTest, KeepsTheRowsInFrontOfOneThatDoesNotAnswer)
{
    ReplyTimeout const patience(m_camera, ReplyTimeout::forBoth);
    m_firmware.answer(SerialAnswer::silence(), {GetInfo, 3, 11}, SerialFirmware::always);
    EXPECT_FALSE(m_camera.buildMainControlSet());
    ASSERT_EQ(m_camera.controlNumber(), 6);
    EXPECT_STREQ(m_camera.control(5)->name(), "Focus Sensitivity");
}

TEST_F(ControlWireTest, WritesEachRowToItsOwnBytesOnly)
{
    for (std::size_t row = 0; row < wires.size(); ++row) {
        Wire const& wire = wires[row];
        SCOPED_TRACE(wire.name);
        auto const control = controlOf(row);
        m_firmware.setData(wire.unit, wire.selector, background(wire));
        EXPECT_TRUE(setValue(*control, wire));
        EXPECT_EQ(m_firmware.data(wire.unit, wire.selector), wire.data);
        std::vector<SerialBytes> expected;
        if (isField(wire)) {
            expected.push_back(request(0x81, wire, wire.size));
        }
        expected.push_back(writeRequest(wire, wire.data));
        EXPECT_EQ(m_firmware.packetBytes(), expected);
    }
}

TEST_F(ControlWireTest, ReadsEachRowFromItsOwnBytes)
{
    for (std::size_t row = 0; row < wires.size(); ++row) {
        Wire const& wire = wires[row];
        SCOPED_TRACE(wire.name);
        auto const control = controlOf(row);
        m_firmware.setData(wire.unit, wire.selector, wire.data);
        EXPECT_EQ(value(*control, wire), wire.value);
        EXPECT_EQ(m_firmware.packetBytes(),
                  (std::vector<SerialBytes>{request(0x81, wire, wire.size)}));
    }
}

TEST_F(ControlWireTest, AsksForTheLimitsOfAFieldInItsOwnBytes)
{
    auto const control = m_camera.createControl(ZorvaneCamera::_controlMap[4]);
    ASSERT_STREQ(control->name(), "Focus Step");
    EXPECT_TRUE(control->init());
    auto const& number = dynamic_cast<ICameraControlNumeric<int> const&>(
        static_cast<ICameraControl const&>(*control));
    EXPECT_EQ(number.maximum(), 1023);
    EXPECT_EQ(number.minimum(), 0);
    EXPECT_EQ(number.step(), 1);
}

} // namespace
