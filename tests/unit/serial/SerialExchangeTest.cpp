// SPDX-License-Identifier: MIT
#include "serial/ZorvaneCameraControlBoolean.h"

#include "CoreApplication.h"
#include "LinkedCamera.h"
#include "Stopwatch.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <termios.h>

#include <algorithm>
#include <atomic>
#include <thread>

namespace
{

using namespace ImageAcquisition;
using std::chrono::milliseconds;
using VirtualCamera::SerialAnswer;
using VirtualCamera::SerialBytes;
using VirtualCamera::SerialFirmware;

constexpr double timeout = ZorvaneCameraControl::_msTimeout / 1000.0; ///< In seconds.

/// The exchange does not know what it carries: one control asks for what it likes.
class SerialExchangeTest : public testing::Test
{
protected:
    bool askCurrent() { return m_control.sendCommand(m_getCurrent, 1, m_reply); }
    bool askLength() { return m_control.sendCommand(m_getLength, 2, m_reply); }
    static SerialBytes bytesOf(QByteArray const& bytes) { return {bytes.begin(), bytes.end()}; }

    /// A flood that fills the tty as fast as it can be read must not keep the caller.
    void expectToComeBackFromTalk()
    {
        ReplyTimeout const usual(m_camera, ReplyTimeout::usual);
        std::atomic<bool> enough{false};
        std::thread talking([&] {
            while (!enough) {
                m_firmware.say(SerialBytes(4000, 0x33));
                std::this_thread::yield();
            }
        });
        Stopwatch const watch;
        askCurrent();
        EXPECT_LT(watch.seconds(), 20);
        enough = true;
        talking.join();
    }

    QByteArray const m_getCurrent = QByteArray::fromHex("a181000800010100");
    QByteArray const m_getLength = QByteArray::fromHex("a185000800010200");
    QByteArray const m_currentReply = m_getCurrent + '\x01';
    QByteArray const m_lengthReply = m_getLength + QByteArray::fromHex("0100");
    QByteArray const m_untouched = "untouched";
    QByteArray m_reply = m_untouched;
    SerialFirmware m_firmware;
    LinkedCamera m_camera{m_firmware.ttyPath()};
    ZorvaneCameraControlBoolean m_control{&m_camera, "Auto Focus", 8, 1, ICameraControl::Focus};
};

TEST_F(SerialExchangeTest, HasFiveAttemptsOfAHundredMilliseconds)
{
    EXPECT_EQ(int(ZorvaneCameraControl::_msTimeout), 100);
    EXPECT_EQ(int(ZorvaneCameraControl::_nbRetries), 5);
    EXPECT_EQ(int(ZorvaneCameraControl::_retryDelay), 50);
    EXPECT_EQ(int(ZorvaneCameraControl::_msDelay), 50);
    EXPECT_EQ(ZorvaneCamera(nullptr).link().limits().reply, 100);
    EXPECT_EQ(ZorvaneCamera(nullptr).link().limits().tool, 30000);
}

TEST_F(SerialExchangeTest, WritesTheRequestOnceAndTakesAPromptReply)
{
    ASSERT_TRUE(askCurrent());
    EXPECT_EQ(m_reply, m_currentReply);
    EXPECT_EQ(m_firmware.packetBytes(), (std::vector<SerialBytes>{bytesOf(m_getCurrent)}));
}

TEST_F(SerialExchangeTest, DoesNotPauseBetweenExchanges)
{
    // The quickest counts: on a busy machine any of them may take long.
    double quickest = 1;
    for (int i = 0; i < 40; ++i) {
        Stopwatch const watch;
        ASSERT_TRUE(askCurrent());
        ASSERT_TRUE(askLength());
        quickest = std::min(quickest, watch.seconds());
    }
    EXPECT_LT(quickest, 0.05);
    EXPECT_EQ(m_firmware.packets().size(), 80U);
}

TEST_F(SerialExchangeTest, FailsAtOnceWhileThePortIsClosed)
{
    m_camera.endCommunication();
    Stopwatch const watch;
    EXPECT_FALSE(askCurrent());
    EXPECT_LT(watch.seconds(), ReplyTimeout::forAnswers / 1000.0);
    EXPECT_EQ(m_reply, m_untouched);
    EXPECT_TRUE(m_firmware.packets().empty());
}

TEST_F(SerialExchangeTest, WritesFiveTimesToASilentCameraAndLeavesTheReply)
{
    ReplyTimeout const usual(m_camera, ReplyTimeout::usual);
    m_firmware.answer(SerialAnswer::silence(), {}, SerialFirmware::always);
    Stopwatch const watch;
    EXPECT_FALSE(askCurrent());
    EXPECT_GE(watch.seconds(), 5 * timeout - 0.01);
    EXPECT_EQ(m_reply, m_untouched);
    ASSERT_TRUE(m_firmware.awaitPackets(5));
    EXPECT_EQ(m_firmware.packetBytes(), std::vector<SerialBytes>(5, bytesOf(m_getCurrent)));
}

TEST_F(SerialExchangeTest, SendsNothingOfAFailedExchangeWithTheNextOne)
{
    m_firmware.answer(SerialAnswer::silence(), {}, 5);
    {
        ReplyTimeout const usual(m_camera, ReplyTimeout::usual);
        EXPECT_FALSE(askCurrent());
    }
    ASSERT_TRUE(m_firmware.awaitPackets(5));
    m_firmware.clearPackets();
    EXPECT_TRUE(askLength());
    EXPECT_EQ(m_reply, m_lengthReply);
    EXPECT_EQ(m_firmware.packetBytes(), (std::vector<SerialBytes>{bytesOf(m_getLength)}));
}

TEST_F(SerialExchangeTest, StopsAskingAfterTheAttemptThatWasAnswered)
{
    ReplyTimeout const patience(m_camera, ReplyTimeout::forBoth);
    m_firmware.answer(SerialAnswer::silence(), {}, 4);
    EXPECT_TRUE(askCurrent());
    EXPECT_EQ(m_reply, m_currentReply);
    EXPECT_EQ(m_firmware.packets().size(), 5U);
}

TEST_F(SerialExchangeTest, TakesAReplyThatIsLateButInTime)
{
    m_firmware.answer(SerialAnswer::late(milliseconds(300)));
    EXPECT_TRUE(askCurrent());
    EXPECT_EQ(m_reply, m_currentReply);
    EXPECT_EQ(m_firmware.packets().size(), 1U);
}

TEST_F(SerialExchangeTest, DiscardsAReplyThatCameAfterItsExchangeHadFailed)
{
    m_firmware.answer(SerialAnswer::silence(), {}, 4);
    m_firmware.answer(SerialAnswer::late(milliseconds(600)));
    {
        ReplyTimeout const usual(m_camera, ReplyTimeout::usual);
        EXPECT_FALSE(askCurrent());
    }
    ASSERT_TRUE(m_camera.awaitInput(m_currentReply.size()));
    EXPECT_TRUE(askLength());
    EXPECT_EQ(m_reply, m_lengthReply);
}

TEST_F(SerialExchangeTest, DiscardsWhatNobodyAskedFor)
{
    SerialBytes const stale(300, 0x55);
    m_firmware.say(stale);
    ASSERT_TRUE(m_camera.awaitInput(300));
    EXPECT_TRUE(askCurrent());
    EXPECT_EQ(m_reply, m_currentReply);
    EXPECT_EQ(m_firmware.packets().size(), 1U);
}

TEST_F(SerialExchangeTest, DiscardsWhatThePortHasTakenInAlready)
{
    m_firmware.say(SerialBytes(20, 0x55));
    ASSERT_TRUE(m_camera.awaitInput(20));
    ASSERT_TRUE(m_camera.serialPort().waitForReadyRead(1000));
    EXPECT_TRUE(askCurrent());
    EXPECT_EQ(m_reply, m_currentReply);
}

TEST_F(SerialExchangeTest, PutsAReplyTogetherWhosePiecesComeInTime)
{
    m_firmware.answer(SerialAnswer::split(4, milliseconds(300)));
    EXPECT_TRUE(askCurrent());
    EXPECT_EQ(m_reply, m_currentReply);
    EXPECT_EQ(m_firmware.packets().size(), 1U);
}

TEST_F(SerialExchangeTest, FailsAnAttemptWhoseSecondPieceComesTooLate)
{
    ReplyTimeout const patience(m_camera, 600);
    m_firmware.answer(SerialAnswer::split(4, milliseconds(900)));
    m_firmware.answer(SerialAnswer::silence());
    EXPECT_TRUE(askCurrent());
    EXPECT_EQ(m_reply, m_currentReply);
    EXPECT_EQ(m_firmware.packets().size(), 3U);
}

TEST_F(SerialExchangeTest, DiscardsASecondPieceThatCameTooLate)
{
    ReplyTimeout const patience(m_camera, 600);
    m_firmware.answer(SerialAnswer::split(4, milliseconds(1200)));
    EXPECT_TRUE(askCurrent());
    EXPECT_EQ(m_reply, m_currentReply);
    ASSERT_TRUE(m_camera.awaitInput(5));
    EXPECT_TRUE(askLength());
    EXPECT_EQ(m_reply, m_lengthReply);
    EXPECT_EQ(m_firmware.packets().size(), 3U);
}

TEST_F(SerialExchangeTest, TriesAgainAfterAReplyThatIsTooShort)
{
    ReplyTimeout const patience(m_camera, ReplyTimeout::forBoth);
    m_firmware.answer(SerialAnswer::cutTo(8));
    m_firmware.answer(SerialAnswer::cutTo(3));
    EXPECT_TRUE(askCurrent());
    EXPECT_EQ(m_reply, m_currentReply);
    EXPECT_EQ(m_firmware.packets().size(), 3U);
}

TEST_F(SerialExchangeTest, FailsAfterFiveRepliesThatAreTooShort)
{
    ReplyTimeout const usual(m_camera, ReplyTimeout::usual);
    m_firmware.answer(SerialAnswer::cutTo(8), {}, SerialFirmware::always);
    EXPECT_FALSE(askCurrent());
    EXPECT_EQ(m_reply, m_untouched);
    ASSERT_TRUE(m_firmware.awaitPackets(5));
    EXPECT_EQ(m_firmware.packets().size(), 5U);
}

TEST_F(SerialExchangeTest, ReadsNoMoreThanItExpectsOfALongerReply)
{
    m_firmware.answer(SerialAnswer::wrong(SerialBytes(30, 0x22)));
    EXPECT_TRUE(askCurrent());
    EXPECT_EQ(m_reply, QByteArray(9, '\x22'));
    EXPECT_TRUE(askLength());
    EXPECT_EQ(m_reply, m_lengthReply);
}

// Until one has begun with its header, only the size of a reply counts.
TEST_F(SerialExchangeTest, TakesAReplyOfTheRightSizeAsItIs)
{
    m_firmware.answer(SerialAnswer::wrong(SerialBytes(9, 0)));
    EXPECT_TRUE(askCurrent());
    EXPECT_EQ(m_reply, QByteArray(9, '\0'));
    EXPECT_EQ(m_firmware.packets().size(), 1U);
}

TEST_F(SerialExchangeTest, ComesBackFromACameraThatNeverStopsTalking)
{
    // Whether it sent its headers back before, or not.
    for (bool const echoes : {false, true}) {
        ASSERT_TRUE(!echoes || askCurrent());
        expectToComeBackFromTalk();
    }
}

TEST_F(SerialExchangeTest, FailsQuicklyWhenTheCameraIsUnplugged)
{
    m_firmware.unplug();
    Stopwatch const watch;
    EXPECT_FALSE(askCurrent());
    EXPECT_LT(watch.seconds(), ReplyTimeout::forAnswers / 1000.0);
    EXPECT_EQ(m_reply, m_untouched);
}

TEST_F(SerialExchangeTest, WorksWithACoreApplicationToo)
{
    CoreApplication const application;
    LinkedCamera camera{m_firmware.ttyPath()};
    ASSERT_FALSE(camera.serialPort().isOpen()) << "the fixture's camera holds the tty";
    m_camera.endCommunication();
    ASSERT_TRUE(camera.serialPort().open(QIODevice::ReadWrite));
    ZorvaneCameraControlBoolean const control(&camera, "Auto Focus", 8, 1, ICameraControl::Focus);

    m_firmware.say(SerialBytes(20, 0x55));
    ASSERT_TRUE(camera.awaitInput(20));
    QCoreApplication::processEvents();
    EXPECT_TRUE(control.sendCommand(m_getCurrent, 1, m_reply));
    EXPECT_EQ(m_reply, m_currentReply);
    ReplyTimeout const usual(m_camera, ReplyTimeout::usual);
    m_firmware.answer(SerialAnswer::silence(), {}, SerialFirmware::always);
    m_firmware.clearPackets();
    EXPECT_FALSE(control.sendCommand(m_getCurrent, 1, m_reply));
    QCoreApplication::processEvents();
    ASSERT_TRUE(m_firmware.awaitPackets(5));
    EXPECT_EQ(m_firmware.packets().size(), 5U);
}

/// A tty whose other end nobody reads.
class NeglectedTty
{
public:
    NeglectedTty() : m_master(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK))
    {
        grantpt(m_master);
        unlockpt(m_master);
    }
    ~NeglectedTty() { close(m_master); }
    std::string path() const { return ptsname(m_master); }
    std::string everything() const
    {
        std::string all;
        char buffer[4096];
        for (ssize_t count = 0; (count = read(m_master, buffer, sizeof buffer)) > 0;) {
            all.append(buffer, static_cast<std::size_t>(count));
        }
        return all;
    }

private:
    int m_master;
};

TEST_F(SerialExchangeTest, SendsNoRequestTwiceThatCouldNotLeaveAtOnce)
{
    NeglectedTty const tty;
    LinkedCamera camera(tty.path());
    int const port = camera.serialPort().handle();
    char const filling[256] = {};
    while (write(port, filling, sizeof filling) > 0) {
    }
    ZorvaneCameraControlBoolean const control(&camera, "Auto Focus", 8, 1, ICameraControl::Focus);
    QByteArray reply;
    EXPECT_FALSE(control.sendCommand("REQUEST!", 1, reply));
    EXPECT_EQ(camera.serialPort().bytesToWrite(), 0);

    std::string const sent = tty.everything();
    std::string const requests = sent.substr(sent.find_first_not_of('\0'));
    EXPECT_EQ(requests.size() % 8, 0U) << requests;
    EXPECT_LE(requests.size(), 5 * 8U);
    for (std::size_t place = 0; place < requests.size(); place += 8) {
        EXPECT_EQ(requests.substr(place, 8), "REQUEST!");
    }
}

} // namespace
