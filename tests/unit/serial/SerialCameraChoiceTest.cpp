// SPDX-License-Identifier: MIT
#include "IBlockingCamera.h"
#include "ICameraControlNumeric.h"
#include "ICameraControlStringMenu.h"
#include "ICameraFactory.h"

#include "ProcessCensus.h"
#include "SerialMachine.h"

#include <memory>

namespace
{

using namespace ImageAcquisition;

/// The parameter is a firmware text of the serial-link camera. Without a link it asks for the
/// kernel log, fails and is reset, by which one knows it.
class SerialCameraChoiceTest : public SerialMachineTest,
                               public testing::WithParamInterface<char const*>
{
protected:
    std::unique_ptr<IBlockingCamera> create(char const* firmware, bool ofTheVendor = true)
    {
        DeviceStub record = vendorRecord(ofTheVendor);
        record.firmware = firmware;
        return std::unique_ptr<IBlockingCamera>(
            ICameraFactory::getUniqueInstance().createBlockingCamera(&record));
    }
    bool askedForTheKernelLog() const { return m_tools.exists("calls"); }

    VirtualCamera::UsbDevice m_usb = m_testbed.plug(VirtualCamera::aUsbDevice("1-2").withIds(
        IMAGEACQUISITION_VENDOR_ID, IMAGEACQUISITION_PRODUCT_ID));
};

TEST_F(SerialCameraChoiceTest, MakesNothingOfNoRecord)
{
    EXPECT_EQ(ICameraFactory::getUniqueInstance().createBlockingCamera(nullptr), nullptr);
    EXPECT_EQ(m_video.accounting().totalOpens, 0U);
    EXPECT_FALSE(askedForTheKernelLog());
}

TEST_F(SerialCameraChoiceTest, MakesAGenericCameraForOlderAndUnknownFirmware)
{
    for (char const* const firmware :
         {"TJ8-1.2.9", "TJ8-0.12.9", "", "TJ8-", "TJ8-x.y.z", "9.9.9", "tj8-9.9.9", "\xff\xfe",
          "TJ8--9.9.9", "TJ8--99999999999999999999.0.0", static_cast<char const*>(nullptr)}) {
        auto const camera = create(firmware);
        ASSERT_NE(camera, nullptr) << firmware;
        EXPECT_EQ(dynamic_cast<ZorvaneCamera*>(camera.get()), nullptr) << firmware;
    }
    EXPECT_FALSE(askedForTheKernelLog());
    EXPECT_EQ(m_usb.resetRequests(), 0);
}

TEST_F(SerialCameraChoiceTest, MakesAGenericCameraForOtherDevicesWhateverTheirFirmware)
{
    auto const camera = create("TJ8-9.9.9", false);
    ASSERT_NE(camera, nullptr);
    EXPECT_EQ(dynamic_cast<ZorvaneCamera*>(camera.get()), nullptr);
    EXPECT_FALSE(askedForTheKernelLog());
}

TEST_P(SerialCameraChoiceTest, MakesASerialLinkCameraAndResetsItWithoutALink)
{
    m_tools.write("log", "");
    EXPECT_EQ(create(GetParam()), nullptr);
    EXPECT_EQ(m_tools.read("calls"), "dmesg \n");
    EXPECT_EQ(m_usb.resetRequests(), 1);
    EXPECT_TRUE(m_video.accounting().nothingHeld());
    EXPECT_EQ(childrenOfThisProcess(), 0);
}

INSTANTIATE_TEST_SUITE_P(Texts, SerialCameraChoiceTest,
                         testing::Values("TJ8-1.3.0", "TJ8-0.13.0", "TJ8-1.2.10", "TJ8-2",
                                         "TJ8-99999999999999999999.0.0",
                                         "TJ8-2147483647.2147483647.2147483647"));

TEST_F(SerialCameraChoiceTest, ResetsACameraWhoseTtyIsBusy)
{
    m_tools.inWorkingDirectory("fuser", "echo 4711");
    EXPECT_EQ(create("TJ8-1.3.0"), nullptr);
    EXPECT_EQ(m_usb.resetRequests(), 1);
    EXPECT_TRUE(m_firmware.packets().empty());
}

TEST_F(SerialCameraChoiceTest, ResetsACameraOfWhichOneControlFails)
{
    silence({VirtualCamera::GetInfo, 3, 9});
    EXPECT_EQ(create("TJ8-1.3.0"), nullptr);
    EXPECT_EQ(m_usb.resetRequests(), 1);
}

TEST_F(SerialCameraChoiceTest, OpensASerialLinkCameraThroughThePublicInterface)
{
    auto const camera = create("TJ8-1.3.0");
    ASSERT_NE(camera, nullptr);
    EXPECT_NE(dynamic_cast<ZorvaneCamera*>(camera.get()), nullptr);
    EXPECT_EQ(camera->controlNumber(), 39);
    EXPECT_EQ(m_usb.resetRequests(), 0);
    EXPECT_EQ(camera->formatNumber(), 1);
    // Nothing of the extension unit goes through the driver.
    EXPECT_TRUE(m_video.mappings().empty());

    auto* const light = dynamic_cast<ICameraControlStringMenu*>(camera->lightModeControl());
    ASSERT_NE(light, nullptr);
    EXPECT_STREQ(light->currentString(), "Continuous");
    EXPECT_TRUE(light->setCurrentIndex(0));
    EXPECT_EQ(m_firmware.data(3, 1), (VirtualCamera::SerialBytes{0}));
    auto* const corner = dynamic_cast<ICameraControlNumeric<int>*>(camera->focusWindowX2Control());
    ASSERT_NE(corner, nullptr);
    EXPECT_EQ(corner->maximum(), 2047);
    EXPECT_TRUE(corner->setValue(1234));
    EXPECT_EQ(m_firmware.data(3, 20),
              (VirtualCamera::SerialBytes{100, 0, 0xd2, 0x04, 110, 0, 210, 0}));
}

} // namespace
