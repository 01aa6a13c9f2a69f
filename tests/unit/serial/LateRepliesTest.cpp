// SPDX-License-Identifier: MIT
#include "SerialMachine.h"
#include "SerialRows.h"
#include "serial/ZorvaneCameraControlNumeric.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace
{

using namespace ImageAcquisition;
using std::chrono::milliseconds;
using VirtualCamera::GetCur;
using VirtualCamera::GetMax;
using VirtualCamera::SerialAnswer;
using VirtualCamera::SerialBytes;
using VirtualCamera::SerialFirmware;

/// How often an answer is what is scripted: each one, every third one, or one alone.
enum class How { Often, EveryThird, Once };

void PrintTo(How how, std::ostream* stream)
{
    std::array<char const*, 3> const words = {"Often", "EveryThird", "Once"};
    *stream << words.at(static_cast<std::size_t>(how));
}

/// A camera that answers in order, in its usual time, and controls of it whose values all differ.
class LateRepliesTest : public testing::Test
{
protected:
    using Number = ZorvaneCameraControlNumeric<int>;

    struct Reading
    {
        Number control;
        int value;
    };

    LateRepliesTest()
    {
        m_firmware.answerInOrder(milliseconds(5));
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
        {{&m_camera, "Gain", 4, 2, ICameraControl::ImageQuality}, 1101},
        {{&m_camera, "Contrast", 3, 2, ICameraControl::Advanced}, 2202},
        {{&m_camera, "Saturation", 7, 2, ICameraControl::ImageQuality}, 3303},
        {{&m_camera, "Gamma", 9, 2, ICameraControl::Advanced}, 4404},
    }};
    Number m_windowX2{&m_camera, "Focus Window X2", 20, 3, ICameraControl::Focus};
    SerialBytes m_windowData = {1, 0, 2, 0, 3, 0, 4, 0};
};

class LatencyTest : public LateRepliesTest, public testing::WithParamInterface<std::tuple<int, How>>
{
};

TEST_P(LatencyTest, LetsNoReplyAnswerAnotherRequest)
{
    auto const [latency, often] = GetParam();
    expectAllToHold(SerialAnswer::late(milliseconds(latency)), often);
}

INSTANTIATE_TEST_SUITE_P(, LatencyTest,
                         testing::Combine(testing::Values(130, 150),
                                          testing::Values(How::Often, How::EveryThird, How::Once)));

class SplitReplyTest : public LateRepliesTest, public testing::WithParamInterface<int>
{
};

TEST_P(SplitReplyTest, IsTakenWholeOrNotAtAll)
{
    milliseconds const delay(GetParam());
    for (std::size_t place = 1; place < 16; ++place) {
        m_firmware.answerAllPromptly();
        script(SerialAnswer::split(place, delay), How::EveryThird);
        EXPECT_TRUE(writeField(static_cast<std::uint8_t>(100 + place))) << "cut at " << place;
        readAll();
    }
}

TEST_P(SplitReplyTest, HarmsNoOtherWhenEveryOneIsSplit)
{
    milliseconds const delay(GetParam());
    for (std::size_t place = 1; place < 16; place += 3) {
        m_firmware.answerAllPromptly();
        script(SerialAnswer::split(place, delay), How::Often);
        readAll();
        writeField(static_cast<std::uint8_t>(100 + place));
    }
}

INSTANTIATE_TEST_SUITE_P(, SplitReplyTest, testing::Values(20, 60, 100, 140, 180));

TEST_F(LateRepliesTest, TellTheRestOfOneFromTheAnswerToTheSecondAttempt)
{
    m_firmware.answer(SerialAnswer::split(6, milliseconds(140)));
    m_firmware.answer(SerialAnswer::late(milliseconds(70)));
    EXPECT_EQ(readAll(), 5);
    m_firmware.answer(SerialAnswer::split(6, milliseconds(140)), {GetCur, 3, 20});
    m_firmware.answer(SerialAnswer::late(milliseconds(70)), {GetCur, 3, 20});
    EXPECT_TRUE(writeField(55));
}

TEST_F(LateRepliesTest, MayBeTheVeryFirstOne)
{
    LinkedCamera other{m_firmware.ttyPath()};
    ReplyTimeout const usual(other, ReplyTimeout::usual);
    m_camera.endCommunication();
    ASSERT_TRUE(other.serialPort().open(QIODevice::ReadWrite));
    m_firmware.answer(SerialAnswer::split(6, milliseconds(140)));
    m_firmware.answer(SerialAnswer::late(milliseconds(70)));
    Number gain(&other, "Gain", 4, 2, ICameraControl::ImageQuality);
    ASSERT_TRUE(gain.init());
    EXPECT_EQ(gain.value(), 1101);
}

TEST_F(LateRepliesTest, MayComeTwice)
{
    expectAllToHold(SerialAnswer::prompt().doubled(), How::Often);
}

TEST_F(LateRepliesTest, MayComeLateAndTwice)
{
    expectAllToHold(SerialAnswer::late(milliseconds(130)).doubled(), How::EveryThird);
}

TEST_F(LateRepliesTest, MayComeBehindOtherBytes)
{
    // Among them the beginning of a header, a whole one of another control, and more than a reply.
    SerialBytes const beginning = {0x55, 0xa1, 0x81, 0, 4, 0};
    SerialBytes const header = {0xa1, 0x81, 0, 3, 0, 2, 2, 0};
    for (SerialBytes const& garbage : {beginning, header, SerialBytes(40, 0x55)}) {
        m_firmware.answerAllPromptly();
        expectAllToHold(SerialAnswer::prompt().behind(garbage), How::Often);
        m_firmware.answerAllPromptly();
        expectAllToHold(SerialAnswer::late(milliseconds(130)).behind(garbage), How::EveryThird);
    }
}

TEST_F(LateRepliesTest, MayHoldTheHeaderOfTheNextRequestInTheirData)
{
    // What a request for the gain begins with.
    m_windowData = {0xa1, 0x81, 0, 4, 0, 2, 2, 0};
    m_firmware.setData(3, 20, m_windowData);
    long long is = 0;
    for (SerialAnswer const& how :
         {SerialAnswer::late(milliseconds(130)), SerialAnswer::split(8, milliseconds(130))}) {
        m_firmware.answer(how, {GetCur, 3, 20}, 2);
        EXPECT_TRUE(m_windowX2.getControlValue(is));
        EXPECT_EQ(is, 0x00020200040081a1);
        EXPECT_EQ(readAll(), 5);
    }
}

TEST_F(LateRepliesTest, NeedNoHeaderOfACameraThatNeverSendsItBack)
{
    m_firmware.answer(SerialAnswer::prompt().withoutHeader(), {}, SerialFirmware::always);
    LinkedCamera other{m_firmware.ttyPath()};
    ReplyTimeout const usual(other, ReplyTimeout::usual);
    m_camera.endCommunication();
    ASSERT_TRUE(other.serialPort().open(QIODevice::ReadWrite));
    for (auto const& [control, value] : m_numbers) {
        Number same(&other, control.name(), control.id(), 2, control.family());
        ASSERT_TRUE(same.init());
        EXPECT_EQ(same.value(), value);
    }
    Number window(&other, "Focus Window X2", 20, 3, ICameraControl::Focus);
    window.setShared(2, 2);
    ASSERT_TRUE(window.init());
    EXPECT_TRUE(window.setValue(9));
    EXPECT_EQ(m_firmware.data(3, 20), (SerialBytes{1, 0, 9, 0, 3, 0, 4, 0}));
}

class OpeningTest : public SerialMachineTest
{
protected:
    /// What the camera says of this control's range, as the wire carries it.
    static SerialBytes maximum(int unit, int selector)
    {
        auto const all = VirtualCamera::vendorSerialControls();
        auto const found = std::find_if(all.begin(), all.end(), [&](auto const& control) {
            return control.unit == unit && control.selector == selector;
        });
        return found->maximum;
    }
};

TEST_F(OpeningTest, SucceedsWhenTheCameraPausesOnce)
{
    m_firmware.answerInOrder(milliseconds(5));
    m_firmware.answer(SerialAnswer::late(milliseconds(130)), {GetMax, 2, 2});
    OpenedCamera camera(vendorRecord(), ReplyTimeout::usual);
    ASSERT_TRUE(camera.init());
    for (SerialRow const& row : serialRows()) {
        auto const* number = dynamic_cast<ICameraControlNumeric<int>*>(camera.control(row.name));
        if (number != nullptr && row.offset < 0) {
            SerialBytes const expected = maximum(row.unit, row.selector);
            EXPECT_EQ(VirtualCamera::littleEndian(number->maximum(), expected.size()), expected)
                << row.name;
        }
    }
}

} // namespace
