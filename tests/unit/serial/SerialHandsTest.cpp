// SPDX-License-Identifier: MIT
// A camera with a serial link in several hands. Its port is an object of Qt's, which belong to the
// thread that makes them.
#include "CoreApplication.h"
#include "IFrame.h"
#include "QtMessages.h"
#include "SerialMachine.h"
#include "serial/ZorvaneCameraControlNumeric.h"

#include <atomic>
#include <memory>
#include <thread>

namespace
{

using namespace ImageAcquisition;
using Number = ZorvaneCameraControlNumeric<int>;

/// A machine whose camera's port is open, and two numbers of its processing unit.
class SerialHandsTest : public SerialMachineTest
{
protected:
    /// Opens the port and makes the first exchanges, as the opening of a camera does.
    void open()
    {
        ASSERT_TRUE(m_camera.initCommunication());
        ASSERT_TRUE(m_gain.init());
        ASSERT_TRUE(m_hue.init());
    }

    /// How many of so many writes and readings of a control went wrong.
    static int faultsOf(Number& control, int count)
    {
        int faults = 0;
        for (int i = 0; i < count; ++i) {
            int const value = i % 50;
            faults += control.setValue(value) && control.value() == value ? 0 : 1;
        }
        return faults;
    }

    static bool warned(QtMessages const& messages) { return messages.hold(QtWarningMsg, ""); }

    OpenedCamera m_camera;
    Number m_gain{&m_camera, "Gain", 4, 2, ICameraControl::ImageQuality};
    Number m_hue{&m_camera, "Hue", 6, 2, ICameraControl::Advanced};
};

TEST_F(SerialHandsTest, UseItsControlsOnAnotherThreadThanTheOpeners)
{
    CoreApplication const application;
    QtMessages const messages;
    open();
    int faults = -1;
    std::thread([&] { faults = faultsOf(m_gain, 20); }).join();
    EXPECT_EQ(faults, 0);
    EXPECT_EQ(faultsOf(m_gain, 20), 0) << "and then on the opener's again";
    EXPECT_FALSE(warned(messages));
}

TEST_F(SerialHandsTest, UseItsControlsAfterTheOpenersThreadHasEnded)
{
    CoreApplication const application;
    std::unique_ptr<OpenedCamera> camera;
    std::unique_ptr<Number> gain;
    std::thread([&] {
        camera = std::make_unique<OpenedCamera>();
        ASSERT_TRUE(camera->initCommunication());
        gain = std::make_unique<Number>(camera.get(), "Gain", 4, 2, ICameraControl::ImageQuality);
        ASSERT_TRUE(gain->init());
    }).join();
    ASSERT_NE(gain, nullptr);
    QtMessages const messages;
    EXPECT_EQ(faultsOf(*gain, 20), 0);
    EXPECT_FALSE(warned(messages));
}

// An event loop reads from a port as soon as something has come.
TEST_F(SerialHandsTest, LoseNoReplyToAnEventLoopOfTheOpenersThread)
{
    CoreApplication const application;
    QtMessages const messages;
    open();
    int readByTheLoop = 0;
    QObject::connect(&m_camera.serialPort(), &QSerialPort::readyRead, &m_camera.serialPort(),
                     [&, loop = std::this_thread::get_id()] {
                         readByTheLoop += std::this_thread::get_id() == loop ? 1 : 0;
                     });
    std::atomic<bool> ended{false};
    int faults = -1;
    std::thread setting([&] {
        faults = faultsOf(m_gain, 200);
        ended = true;
    });
    while (!ended) {
        QCoreApplication::processEvents();
    }
    setting.join();
    EXPECT_EQ(faults, 0);
    EXPECT_EQ(readByTheLoop, 0);
    EXPECT_FALSE(warned(messages));
}

TEST_F(SerialHandsTest, WaitForEachOthersExchanges)
{
    open();
    int faults[] = {-1, -1};
    std::thread one([&] { faults[0] = faultsOf(m_gain, 200); });
    std::thread other([&] { faults[1] = faultsOf(m_hue, 200); });
    one.join();
    other.join();
    EXPECT_EQ(faults[0], 0);
    EXPECT_EQ(faults[1], 0);
}

TEST_F(SerialHandsTest, WriteTwoPartsOfOneControlWithoutLosingAny)
{
    open();
    Number minimum(&m_camera, "Focus Min", 9, 3, ICameraControl::Focus);
    Number maximum(&m_camera, "Focus Max", 9, 3, ICameraControl::Focus);
    minimum.setShared(0, 2);
    maximum.setShared(2, 2);
    ASSERT_TRUE(minimum.init());
    ASSERT_TRUE(maximum.init());
    int faults[] = {-1, -1};
    std::thread one([&] { faults[0] = faultsOf(minimum, 10); });
    std::thread other([&] { faults[1] = faultsOf(maximum, 10); });
    one.join();
    other.join();
    EXPECT_EQ(faults[0], 0);
    EXPECT_EQ(faults[1], 0);
}

/// One thread opens the camera, three use it, and the last deletes it.
TEST_F(SerialHandsTest, CaptureGiveBackAndSetAtOnce)
{
    std::unique_ptr<OpenedCamera> camera;
    std::thread([&] {
        camera = std::make_unique<OpenedCamera>();
        ASSERT_TRUE(camera->init());
    }).join();
    ASSERT_NE(camera, nullptr);
    ASSERT_EQ(camera->setup(4), 0);
    ASSERT_EQ(camera->startCapture(), 0);
    std::atomic<IFrame*> handedOver{nullptr};
    std::atomic<bool> ending{false};
    int frames = 0;
    int refused = 0;
    int faults = -1;
    std::thread taking([&] {
        while (!ending) {
            IFrame* const frame = camera->acquireFrame();
            for (IFrame* none = nullptr;
                 !frame->isInvalid() && !ending && !handedOver.compare_exchange_weak(none, frame);
                 none = nullptr) {
                std::this_thread::yield();
            }
        }
    });
    std::thread givingBack([&] {
        while (!ending) {
            if (IFrame* const frame = handedOver.exchange(nullptr)) {
                ++frames;
                refused += camera->releaseFrame(frame) == 0 ? 0 : 1;
            }
            std::this_thread::yield();
        }
    });
    std::thread setting([&] {
        faults = faultsOf(dynamic_cast<Number&>(*camera->gainControl()), 300);
        ending = true;
    });
    setting.join();
    EXPECT_EQ(camera->stopCapture(), 0);
    taking.join();
    givingBack.join();
    EXPECT_EQ(camera->cleanup(), 0);
    std::thread([&] { camera.reset(); }).join();
    EXPECT_EQ(faults, 0);
    EXPECT_EQ(refused, 0);
    EXPECT_GT(frames, 0);
    EXPECT_TRUE(m_video.accounting().nothingHeld());
}

} // namespace
