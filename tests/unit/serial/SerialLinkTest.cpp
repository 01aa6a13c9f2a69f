// SPDX-License-Identifier: MIT
#include "ProcessCensus.h"
#include "QtMessages.h"
#include "SerialMachine.h"
#include "SerialRows.h"
#include "Stopwatch.h"
#include "serial/ZorvaneCameraControlNumeric.h"

#include <algorithm>

namespace
{

using namespace ImageAcquisition;

/// What "./fuser" does, and whether the port is taken for free then.
struct HolderCase
{
    char const* name;
    char const* script; ///< Null: there is no tool.
    bool free;
    int msTimeout = 30000;
};

class SerialLinkTest : public SerialMachineTest, public testing::WithParamInterface<HolderCase>
{
protected:
    std::string portName() { return m_camera.serialPort().portName().toStdString(); }

    OpenedCamera m_camera;
    QtMessages m_messages;
};

TEST_F(SerialLinkTest, OpensNothingWhenItIsMade)
{
    EXPECT_FALSE(m_camera.serialPort().isOpen());
    EXPECT_FALSE(m_tools.exists("calls"));
    EXPECT_EQ(m_video.accounting().totalOpens, 0U);
}

TEST_F(SerialLinkTest, OpensTheTtyThatTheKernelLogNames)
{
    EXPECT_TRUE(m_camera.initCommunication());
    EXPECT_TRUE(m_camera.serialPort().isOpen());
    EXPECT_EQ(m_camera.serialPort().openMode(), QIODevice::ReadWrite);
    EXPECT_EQ(m_tty.name(), portName());
    EXPECT_EQ("dmesg \nfuser " + m_tty.path() + "\n", m_tools.read("calls"));
    EXPECT_TRUE(cameraAnswers(m_camera));
}

TEST_F(SerialLinkTest, LeavesThePortAtItsDefaults)
{
    QSerialPort const untouched;
    ASSERT_TRUE(m_camera.initCommunication());
    EXPECT_EQ(untouched.baudRate(), m_camera.serialPort().baudRate());
    EXPECT_EQ(untouched.dataBits(), m_camera.serialPort().dataBits());
    EXPECT_EQ(untouched.parity(), m_camera.serialPort().parity());
    EXPECT_EQ(untouched.stopBits(), m_camera.serialPort().stopBits());
    EXPECT_EQ(untouched.flowControl(), m_camera.serialPort().flowControl());
}

TEST_F(SerialLinkTest, LogsTheNodeAndThePortAndPausesOnceItIsOpen)
{
    Stopwatch const watch;
    ASSERT_TRUE(m_camera.initCommunication());
    EXPECT_GE(watch.seconds(), 0.05);
    std::vector<std::string> const information = m_messages.information();
    ASSERT_EQ(information.size(), 2U);
    EXPECT_EQ(information[0], "/dev/video0");
    EXPECT_NE(information[1].find("TriggerThread::connectPort()"), std::string::npos);
    EXPECT_NE(information[1].find(m_tty.name()), std::string::npos);
}

TEST_F(SerialLinkTest, UsesTheLastAnnouncementAfterAReplug)
{
    m_tools.write("log", announcement(m_tty.otherName()) +
                             "[ 20.0] usb 1-2.3: USB disconnect, device number 7\n" +
                             announcement(m_tty.name()));
    EXPECT_TRUE(m_camera.initCommunication());
    EXPECT_EQ(m_tty.name(), portName());
}

TEST_F(SerialLinkTest, PassesOverOtherPortsAndInterfaces)
{
    m_tools.write("log", announcement(m_tty.name()) + announcement(m_tty.otherName(), "1-2.4:1.5") +
                             announcement(m_tty.otherName(), "1-2.3:1.4"));
    EXPECT_TRUE(m_camera.initCommunication());
    EXPECT_EQ(m_tty.name(), portName());
}

TEST_F(SerialLinkTest, TakesTheFirstDigitOfALongNumber)
{
    m_tools.write("log", announcement(m_tty.name() + "2"));
    EXPECT_TRUE(m_camera.initCommunication());
    EXPECT_EQ(m_tty.name(), portName());
}

TEST_F(SerialLinkTest, ReadsMegabytesOfLogWithAllSortsOfBytes)
{
    std::string log;
    while (log.size() < 4 * 1024 * 1024) {
        log += "[    1.000000] usb 1-4: Product: Stra\xdf"
               "enkamera \xff\xfe und mehr\n";
    }
    m_tools.write("log", log + '\0' + announcement(m_tty.name()) + log);
    EXPECT_TRUE(m_camera.initCommunication());
    EXPECT_EQ(m_tty.name(), portName());
}

TEST_F(SerialLinkTest, LeavesThePortWhenNoLineMatches)
{
    m_tools.write("log", announcement(m_tty.name(), "1-2.4:1.5"));
    EXPECT_FALSE(m_camera.initCommunication());
    EXPECT_FALSE(m_camera.serialPort().isOpen());
    EXPECT_EQ(m_tools.read("calls"), "dmesg \n");
    EXPECT_EQ(m_messages.information(),
              (std::vector<std::string>{"/dev/video0", "No match in dmesg"}));
}

TEST_F(SerialLinkTest, FindsNothingWhenDmesgMayNotReadTheLog)
{
    m_tools.onPath("dmesg", "echo 'dmesg: read kernel buffer failed' >&2; exit 1");
    EXPECT_FALSE(m_camera.initCommunication());
    EXPECT_TRUE(m_messages.hold(QtInfoMsg, "No match in dmesg"));
}

TEST_F(SerialLinkTest, UsesWhatAFailingDmesgPrinted)
{
    m_tools.onPath("dmesg", "cat \"$WORK/log\"; exit 1");
    EXPECT_TRUE(m_camera.initCommunication());
}

TEST_F(SerialLinkTest, FindsNothingWhenDmesgNeverEnds)
{
    m_tools.onPath("dmesg", "echo $$ >\"$WORK/pids\"; cat \"$WORK/log\"; sleep 600 & "
                            "echo $! >>\"$WORK/pids\"; wait");
    // As long as the tool needs to get so far, on a busy machine too.
    for (int const milliseconds : {1000, 4000, 16000}) {
        m_camera.limitTools(milliseconds);
        EXPECT_FALSE(m_camera.initCommunication());
        if (wordsIn(m_tools.read("pids")) == 2) {
            break;
        }
    }
    EXPECT_TRUE(m_messages.hold(QtInfoMsg, "No match in dmesg"));
    EXPECT_EQ(wordsIn(m_tools.read("pids")), 2);
    EXPECT_TRUE(allEnd(m_tools.read("pids")));
}

TEST_P(SerialLinkTest, OpensThePortUnlessFuserPrintsAProcess)
{
    std::filesystem::remove("fuser");
    if (GetParam().script != nullptr) {
        m_tools.inWorkingDirectory("fuser", GetParam().script);
    }
    m_camera.limitTools(GetParam().msTimeout);
    EXPECT_EQ(GetParam().free, m_camera.initCommunication());
    EXPECT_EQ(GetParam().free, m_camera.serialPort().isOpen());
    // A busy tty is passed over without a word.
    EXPECT_EQ(GetParam().free ? 2U : 1U, m_messages.information().size());
    EXPECT_FALSE(m_messages.hold(QtCriticalMsg, "Error"));
}

INSTANTIATE_TEST_SUITE_P(
    Fuser, SerialLinkTest,
    testing::Values(HolderCase{"PrintsNothing", "exit 1", true},
                    HolderCase{"PrintsAProcess", "echo ' 4711'", false},
                    HolderCase{"PrintsASpace", "printf ' '", false},
                    HolderCase{"PrintsAnEmptyLine", "echo", false},
                    HolderCase{"PrintsAProcessAndFails", "echo 4711; exit 1", false},
                    HolderCase{"PrintsAZeroByteFirst", "head -c 1 /dev/zero; echo 4711", true},
                    HolderCase{"PrintsToStandardErrorOnly", "echo '/dev/ttyACM0:' >&2", true},
                    HolderCase{"NeverEnds", "echo 4711; exec sleep 600", true, 5000},
                    HolderCase{"IsMissing", nullptr, true}),
    [](auto const& test) { return std::string(test.param.name); });

TEST_F(SerialLinkTest, LooksForFuserInTheWorkingDirectoryOnly)
{
    std::filesystem::remove("fuser");
    m_tools.onPath("fuser", "echo 4711");
    EXPECT_TRUE(m_camera.initCommunication());
}

TEST_F(SerialLinkTest, FindsAHolderWithTheRealFuser)
{
    ASSERT_TRUE(std::filesystem::exists("/usr/bin/fuser")) << "psmisc is missing";
    // Sees the pseudo-terminal itself: the simulated name is not for other programs.
    m_tools.inWorkingDirectory("fuser", "exec /usr/bin/fuser " + m_firmware.ttyPath());
    {
        LinkedCamera holder(m_firmware.ttyPath());
        ASSERT_TRUE(holder.serialPort().isOpen());
        EXPECT_FALSE(m_camera.initCommunication());
    }
    EXPECT_TRUE(m_camera.initCommunication());
}

TEST_F(SerialLinkTest, ReportsAPortThatCannotBeOpened)
{
    m_testbed.removeNodeFile(m_tty.path());
    EXPECT_FALSE(m_camera.initCommunication());
    EXPECT_FALSE(m_camera.serialPort().isOpen());
    EXPECT_TRUE(m_messages.hold(QtCriticalMsg, "Error : TriggerThread::connectPort"));
    std::vector<std::string> const information = m_messages.information();
    ASSERT_EQ(information.size(), 2U);
    EXPECT_EQ(information[1], "error code:  QSerialPort::DeviceNotFoundError");
}

TEST_F(SerialLinkTest, ReportsAPortThatAnotherPortHolds)
{
    OpenedCamera holder;
    ASSERT_TRUE(holder.initCommunication());
    EXPECT_FALSE(m_camera.initCommunication());
    EXPECT_TRUE(m_messages.hold(QtInfoMsg, "QSerialPort::PermissionError"));
}

TEST_F(SerialLinkTest, ClosesThePortAndOpensItAgain)
{
    m_camera.endCommunication();
    ASSERT_TRUE(m_camera.initCommunication());
    m_camera.endCommunication();
    EXPECT_FALSE(m_camera.serialPort().isOpen());
    m_camera.endCommunication();
    EXPECT_TRUE(m_camera.initCommunication());
    EXPECT_TRUE(cameraAnswers(m_camera));
}

TEST_F(SerialLinkTest, NeverOpensThePortAgainByItself)
{
    ASSERT_TRUE(m_camera.initCommunication());
    m_firmware.unplug();
    EXPECT_FALSE(cameraAnswers(m_camera));
    m_camera.endCommunication();
    EXPECT_FALSE(cameraAnswers(m_camera));
    EXPECT_FALSE(m_camera.serialPort().isOpen());
}

TEST_F(SerialLinkTest, GivesVideoWithoutALinkButSaysThatSomethingIsWrong)
{
    m_tools.write("log", "");
    EXPECT_FALSE(m_camera.init());
    EXPECT_EQ(m_camera.controlNumber(), 1);
    ASSERT_EQ(m_camera.formatNumber(), 1);
    ASSERT_TRUE(m_camera.setCurrentImageFormat(0, 0, 0));
    ASSERT_EQ(m_camera.setup(2), 0);
    ASSERT_EQ(m_camera.startCapture(), 0);
    IFrame* const frame = m_camera.acquireFrame();
    EXPECT_FALSE(frame->isInvalid());
    EXPECT_EQ(m_camera.releaseFrame(frame), 0);
    EXPECT_EQ(m_camera.stopCapture(), 0);
    EXPECT_EQ(m_camera.cleanup(), 0);
}

TEST_F(SerialLinkTest, FailsToInitialiseWhenOneControlDoesNotAnswer)
{
    silence({VirtualCamera::GetInfo, 1, 8});
    ReplyTimeout const patience(m_camera, ReplyTimeout::forBoth);
    EXPECT_FALSE(m_camera.init());
    EXPECT_TRUE(m_camera.serialPort().isOpen());
    EXPECT_EQ(m_camera.controlNumber(), 2);
    EXPECT_EQ(m_camera.formatNumber(), 1);
}

TEST_F(SerialLinkTest, OpensTheLinkBeforeTheNodeAndNeedsNoNodeForIt)
{
    m_video.unplug();
    EXPECT_TRUE(m_camera.init());
    EXPECT_TRUE(m_camera.serialPort().isOpen());
    EXPECT_EQ(m_camera.controlNumber(), 0);
}

/// What the camera says of this control's range, as the wire carries it.
VirtualCamera::SerialBytes maximum(int unit, int selector)
{
    auto const all = VirtualCamera::vendorSerialControls();
    auto const found = std::find_if(all.begin(), all.end(), [&](auto const& control) {
        return control.unit == unit && control.selector == selector;
    });
    return found->maximum;
}

TEST_F(SerialLinkTest, OpensWhenTheCameraPausesOnce)
{
    m_firmware.answerInOrder(std::chrono::milliseconds(5));
    m_firmware.answer(VirtualCamera::SerialAnswer::late(std::chrono::milliseconds(130)),
                      {VirtualCamera::GetMax, 2, 2});
    OpenedCamera camera(vendorRecord(), ReplyTimeout::usual);
    ASSERT_TRUE(camera.init());
    for (SerialRow const& row : serialRows()) {
        auto const* number = dynamic_cast<ICameraControlNumeric<int>*>(camera.control(row.name));
        if (number != nullptr && row.offset < 0) {
            VirtualCamera::SerialBytes const expected = maximum(row.unit, row.selector);
            EXPECT_EQ(VirtualCamera::littleEndian(number->maximum(), expected.size()), expected)
                << row.name;
        }
    }
}

} // namespace
