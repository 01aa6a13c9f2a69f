// SPDX-License-Identifier: MIT
#include "LateReplies.h"

#include <gtest/gtest.h>

#include <tuple>

namespace
{

using namespace ImageAcquisition;
using std::chrono::milliseconds;
using VirtualCamera::GetCur;

/// The parameters are milliseconds and how often a reply takes them.
class LateRepliesTest : public LateReplies, public testing::WithParamInterface<std::tuple<int, How>>
{
};

TEST_P(LateRepliesTest, LetsNoReplyAnswerAnotherRequest)
{
    auto const [latency, often] = GetParam();
    expectAllToHold(SerialAnswer::late(milliseconds(latency)), often);
}

INSTANTIATE_TEST_SUITE_P(, LateRepliesTest,
                         testing::Combine(testing::Values(130, 150),
                                          testing::Values(How::Often, How::EveryThird, How::Once)));

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

} // namespace
