// SPDX-License-Identifier: MIT
#include "factory/CameraFactory.h"

#include "DescriptorCount.h"
#include "DeviceStub.h"
#include "IBlockingCamera.h"
#include "IBlockingCameraMonitor.h"
#include "ICameraEvent.h"
#include "IContinuousCameraMonitor.h"
#include "IDeviceList.h"
#include "Machine.h"
#include "camera/Camera.h"
#include "serial/ZorvaneCamera.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <set>
#include <stdexcept>
#include <thread>
#include <vector>

namespace
{

using namespace ImageAcquisition;
using VirtualCamera::aUsbDevice;

ICameraFactory& factory()
{
    return ICameraFactory::getUniqueInstance();
}

class CameraFactoryTest : public testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(VirtualCamera::Testbed::visible()); }

    /// A record of the machine's camera, with a firmware text of the test's own.
    static DeviceStub vendorRecord(char const* firmware)
    {
        DeviceStub device;
        device.vendor = IMAGEACQUISITION_VENDOR_ID;
        device.product = IMAGEACQUISITION_PRODUCT_ID;
        device.ofTheVendor = true;
        device.firmware = firmware;
        // No tty in any kernel log belongs to it.
        device.bus = "usb-absent-9.9.9";
        return device;
    }

    static std::unique_ptr<IBlockingCamera> open(DeviceStub const& device)
    {
        return std::unique_ptr<IBlockingCamera>(factory().createBlockingCamera(&device));
    }

    static bool isGeneric(IBlockingCamera const* camera)
    {
        return dynamic_cast<Camera const*>(camera) != nullptr &&
               dynamic_cast<ZorvaneCamera const*>(camera) == nullptr;
    }

    Machine m_machine;
};

TEST_F(CameraFactoryTest, IsOneForAllThreads)
{
    std::vector<ICameraFactory*> seen(8);
    std::vector<std::thread> threads;
    for (auto& place : seen) {
        threads.emplace_back([&place] { place = &ICameraFactory::getUniqueInstance(); });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(std::set<ICameraFactory*>(seen.begin(), seen.end()).size(), 1u);
    EXPECT_EQ(&CameraFactory::getUniqueInstance(), &factory());
}

TEST_F(CameraFactoryTest, MakesAnEmptyEvent)
{
    std::unique_ptr<ICameraEvent> const first(factory().createEvent());
    std::unique_ptr<ICameraEvent> const second(factory().createEvent());
    ASSERT_NE(first, nullptr);
    EXPECT_NE(first, second);
    EXPECT_EQ(first->type(), 0);
    EXPECT_STREQ(first->deviceSystemName(), "");
    EXPECT_STREQ(first->subSystemName(), "");
}

TEST_F(CameraFactoryTest, MakesMonitorsThatAreNotStarted)
{
    std::unique_ptr<IBlockingCameraMonitor> const blocking(factory().createBlockingCameraMonitor());
    ASSERT_NE(blocking, nullptr);
    std::unique_ptr<ICameraEvent> const event(factory().createEvent());
    EXPECT_FALSE(blocking->getEvent(event.get()));
    std::unique_ptr<IContinuousCameraMonitor> const continuous(
        factory().createContinuousCameraMonitor());
    ASSERT_NE(continuous, nullptr);
    EXPECT_FALSE(continuous->stopMonitoring());
}

TEST_F(CameraFactoryTest, GivesNullForNull)
{
    auto const usb = m_machine.plug(aUsbDevice());
    auto const& camera = m_machine.add(0, usb);
    EXPECT_EQ(factory().createDevice(nullptr), nullptr);
    EXPECT_EQ(factory().createBlockingCamera(nullptr), nullptr);
    EXPECT_EQ(camera.accounting().totalOpens, 0u);
}

TEST_F(CameraFactoryTest, DescribesOneNode)
{
    m_machine.add(3, m_machine.plug(aUsbDevice()));
    std::unique_ptr<IDevice> const device(factory().createDevice("video3"));
    ASSERT_NE(device, nullptr);
    EXPECT_STREQ(device->systemName(), "/dev/video3");
    EXPECT_EQ(factory().createDevice("video0"), nullptr);
    EXPECT_EQ(factory().createDevice("/dev/video3"), nullptr) << "a path is no short name";
}

TEST_F(CameraFactoryTest, GivesAnEmptyListForAMachineWithoutCameras)
{
    std::unique_ptr<IDeviceList> const list(factory().createDeviceList());
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->size(), 0);
}

TEST_F(CameraFactoryTest, ListsOrdinaryCamerasAndTheVendors)
{
    m_machine.add(0, m_machine.plug(aUsbDevice("1-1").withIds("046d", "0825")));
    m_machine.add(1, m_machine.plug(vendorUsbDevice("1-2").withFirmware("TJ8-1.2.9")));
    std::unique_ptr<IDeviceList> const list(factory().createDeviceList());
    ASSERT_EQ(list->size(), 2);
    EXPECT_FALSE(list->at(0)->isaZorvaneDevice());
    EXPECT_TRUE(list->at(1)->isaZorvaneDevice());
    EXPECT_STREQ(list->at(1)->firmwareVersion(), "TJ8-1.2.9");
}

TEST_F(CameraFactoryTest, LetsExceptionsOfTheEnumerationThrough)
{
    auto const& camera = m_machine.addWithoutUsb(0);
    EXPECT_THROW(factory().createDevice("video0"), std::invalid_argument);
    EXPECT_THROW(factory().createDeviceList(), std::invalid_argument);
    EXPECT_EQ(camera.accounting().openDescriptors, 0);
}

int countOf(char const* target)
{
    std::vector<std::string> const targets = descriptorTargets();
    return static_cast<int>(std::count(targets.begin(), targets.end(), target));
}

TEST_F(CameraFactoryTest, LosesTwoDescriptorsWithEachListThatThrows)
{
    constexpr char timer[] = "anon_inode:[timerfd]";
    constexpr char event[] = "anon_inode:[eventfd]";
    m_machine.addWithoutUsb(0);
    int const timers = countOf(timer);
    int const events = countOf(event);
    constexpr int rounds = 5;
    for (int round = 0; round < rounds; ++round) {
        EXPECT_THROW(factory().createDeviceList(), std::invalid_argument);
    }
    EXPECT_EQ(countOf(timer), timers + rounds);
    // The simulated machine's own threads may make one too when they get to it.
    EXPECT_GE(countOf(event), events + rounds);
}

TEST_F(CameraFactoryTest, OpensACameraThatOutlivesItsList)
{
    m_machine.add(0, m_machine.plug(aUsbDevice().withSerial("S1")));
    std::unique_ptr<IDeviceList> list(factory().createDeviceList());
    ASSERT_EQ(list->size(), 1);
    std::unique_ptr<IBlockingCamera> const camera(factory().createBlockingCamera(list->at(0)));
    list.reset();
    ASSERT_NE(camera, nullptr);
    EXPECT_STREQ(camera->device()->serial(), "S1");
}

TEST_F(CameraFactoryTest, MakesAGenericCameraForOldOrUnknownFirmware)
{
    auto const usb = m_machine.plug(vendorUsbDevice().withFirmware("TJ8-1.2.9"));
    m_machine.add(0, usb);
    char const* const texts[] = {"TJ8-1.2.9", "", "TJ8-", "1.3.0", nullptr};
    for (char const* const firmware : texts) {
        auto const camera = open(vendorRecord(firmware));
        ASSERT_NE(camera, nullptr);
        EXPECT_TRUE(isGeneric(camera.get()));
    }
    EXPECT_EQ(usb.resetRequests(), 0);
}

TEST_F(CameraFactoryTest, MakesAGenericCameraForAnyOtherDevice)
{
    m_machine.add(0, m_machine.plug(aUsbDevice()));
    DeviceStub device;
    device.firmware = "TJ8-9.9.9";
    EXPECT_TRUE(isGeneric(open(device).get()));
}

// No serial port belongs to these cameras: whoever tries to reach one fails, and is reset.
TEST_F(CameraFactoryTest, TriesTheSerialLinkOfNewerFirmwareAndResetsTheCameraWithoutOne)
{
    auto const usb = m_machine.plug(vendorUsbDevice().withFirmware("TJ8-1.3.0"));
    auto const& camera = m_machine.add(0, usb);
    int resets = 0;
    for (char const* const firmware :
         {"TJ8-1.3.0", "TJ8-0.13.0", "TJ8-2.0.0", "TJ8-99999999999999999999.0.0"}) {
        EXPECT_EQ(open(vendorRecord(firmware)), nullptr) << firmware;
        EXPECT_EQ(usb.resetRequests(), ++resets) << firmware;
        EXPECT_EQ(camera.accounting().openDescriptors, 0);
    }
}

} // namespace
