// SPDX-License-Identifier: MIT
#include "CoreApplication.h"
#include "ProcessCensus.h"
#include "QtMessages.h"
#include "SerialMachine.h"
#include "ThreadCount.h"

#include <algorithm>
#include <functional>
#include <thread>

namespace
{

using namespace ImageAcquisition;

/// What a whole life of a camera leaves behind, compared with what a life before left: Qt and the
/// simulated machine set up some things once.
class SerialRemainsTest : public SerialMachineTest
{
protected:
    SerialRemainsTest()
    {
        // The first control of the table: the set ends with it.
        silence({VirtualCamera::GetLen, 1, 6});
        EXPECT_TRUE(linkInALife());
    }

    /// Whether it had a link.
    bool linkInALife(std::function<void()> const& onceLinked = nullptr)
    {
        OpenedCamera camera(vendorRecord(), ReplyTimeout::usual);
        camera.limitTools(m_msTool);
        bool const linked = camera.initCommunication();
        if (onceLinked) {
            onceLinked();
        }
        cameraAnswers(camera);
        camera.Camera::init();
        return linked;
    }
    void expectNothingElse(std::vector<std::string> const& descriptors, int threads)
    {
        EXPECT_EQ(descriptorsButSockets(), descriptors);
        EXPECT_TRUE(awaitThreadCount(threads));
        EXPECT_EQ(childrenOfThisProcess(), 0);
        EXPECT_FALSE(std::filesystem::exists(m_tty.lockFile()));
        EXPECT_TRUE(m_video.accounting().nothingHeld());
        EXPECT_EQ(m_video.accounting().totalOpens, 2U);
    }
    void expectNoRemains(bool linked)
    {
        std::vector<std::string> const descriptors = descriptorsButSockets();
        int const threads = threadCount();
        EXPECT_EQ(linkInALife(), linked);
        expectNothingElse(descriptors, threads);
    }

    int m_msTool = SerialLink::msTool;
};

TEST_F(SerialRemainsTest, AreNoneAfterExchanges)
{
    expectNoRemains(true);
}

TEST_F(SerialRemainsTest, AreNoneWithoutDmesg)
{
    std::filesystem::remove("../bin/dmesg");
    expectNoRemains(false);
}

TEST_F(SerialRemainsTest, AreNoneAfterAHangingDmesg)
{
    m_tools.onPath("dmesg", "sleep 600");
    m_msTool = 300;
    expectNoRemains(false);
}

TEST_F(SerialRemainsTest, AreNoneAfterAPortThatCannotBeOpened)
{
    m_testbed.removeNodeFile(m_tty.path());
    expectNoRemains(false);
}

TEST_F(SerialRemainsTest, AreNoneAfterAnUnplugging)
{
    std::vector<std::string> descriptors = descriptorsButSockets();
    // The firmware goes with the camera.
    // In a container /dev/ptmx is a link to the one of its own terminals.
    auto const isMaster = [](std::string const& target) {
        return target == "/dev/ptmx" || target == "/dev/pts/ptmx";
    };
    auto const terminal = std::find_if(descriptors.begin(), descriptors.end(), isMaster);
    ASSERT_NE(descriptors.end(), terminal);
    descriptors.erase(terminal);
    int const threads = threadCount() - 1;
    EXPECT_TRUE(linkInALife([this] { m_firmware.unplug(); }));
    expectNothingElse(descriptors, threads);
}

TEST_F(SerialRemainsTest, AreNoneOfALifeInAThreadOfTheClient)
{
    std::vector<std::string> const descriptors = descriptorsButSockets();
    int const threads = threadCount();
    bool linked = false;
    std::thread([&] { linked = linkInALife(); }).join();
    EXPECT_TRUE(linked);
    expectNothingElse(descriptors, threads);
}

TEST_F(SerialRemainsTest, AreNoneWithACoreApplication)
{
    CoreApplication const application;
    QtMessages const messages;
    expectNoRemains(true);
    EXPECT_FALSE(messages.hold(QtWarningMsg, "QSocketNotifier"));
}

} // namespace
