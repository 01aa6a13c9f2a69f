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

class CameraChoiceTest : public SerialMachineTest
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

TEST_F(CameraChoiceTest, MakesNothingOfNoRecord)
{
    EXPECT_EQ(nullptr, ICameraFactory::getUniqueInstance().createBlockingCamera(nullptr));
    EXPECT_EQ(0U, m_video.accounting().totalOpens);
    EXPECT_FALSE(askedForTheKernelLog());
}

TEST_F(CameraChoiceTest, MakesAGenericCameraForOlderAndUnknownFirmware)
{
    for (char const* const firmware :
         {"TJ8-1.2.9", "TJ8-0.12.9", "", "TJ8-", "TJ8-x.y.z", "9.9.9", "tj8-9.9.9", "\xff\xfe",
          "TJ8--9.9.9", "TJ8--99999999999999999999.0.0", static_cast<char const*>(nullptr)}) {
        auto const camera = create(firmware);
        ASSERT_NE(nullptr, camera) << firmware;
        EXPECT_EQ(nullptr, dynamic_cast<ZorvaneCamera*>(camera.get())) << firmware;
    }
    EXPECT_FALSE(askedForTheKernelLog());
    EXPECT_EQ(0, m_usb.resetRequests());
}

TEST_F(CameraChoiceTest, MakesAGenericCameraForOtherDevicesWhateverTheirFirmware)
{
    auto const camera = create("TJ8-9.9.9", false);
    ASSERT_NE(nullptr, camera);
    EXPECT_EQ(nullptr, dynamic_cast<ZorvaneCamera*>(camera.get()));
    EXPECT_FALSE(askedForTheKernelLog());
}

/// Firmware texts of the serial-link camera. Without a link it asks for the kernel log, fails and
/// is reset, by which one knows it.
class NewerFirmwareTest : public CameraChoiceTest, public testing::WithParamInterface<char const*>
{
};

TEST_P(NewerFirmwareTest, MakesASerialLinkCameraAndResetsItWithoutALink)
{
    m_tools.write("log", "");
    EXPECT_EQ(nullptr, create(GetParam()));
    EXPECT_EQ("dmesg \n", m_tools.read("calls"));
    EXPECT_EQ(1, m_usb.resetRequests());
    EXPECT_TRUE(m_video.accounting().nothingHeld());
    EXPECT_EQ(0, childrenOfThisProcess());
}

INSTANTIATE_TEST_SUITE_P(Texts, NewerFirmwareTest,
                         testing::Values("TJ8-1.3.0", "TJ8-0.13.0", "TJ8-1.2.10", "TJ8-2",
                                         "TJ8-99999999999999999999.0.0",
                                         "TJ8-2147483647.2147483647.2147483647"));

TEST_F(CameraChoiceTest, ResetsACameraWhoseTtyIsBusy)
{
    m_tools.inWorkingDirectory("fuser", "echo 4711");
    EXPECT_EQ(nullptr, create("TJ8-1.3.0"));
    EXPECT_EQ(1, m_usb.resetRequests());
    EXPECT_TRUE(m_firmware.packets().empty());
}

TEST_F(CameraChoiceTest, ResetsACameraOfWhichOneControlFails)
{
    silence({VirtualCamera::GetInfo, 3, 9});
    EXPECT_EQ(nullptr, create("TJ8-1.3.0"));
    EXPECT_EQ(1, m_usb.resetRequests());
}

TEST_F(CameraChoiceTest, OpensASerialLinkCameraThroughThePublicInterface)
{
    auto const camera = create("TJ8-1.3.0");
    ASSERT_NE(nullptr, camera);
    EXPECT_NE(nullptr, dynamic_cast<ZorvaneCamera*>(camera.get()));
    EXPECT_EQ(39, camera->controlNumber());
    EXPECT_EQ(0, m_usb.resetRequests());
    EXPECT_EQ(1, camera->formatNumber());
    // Nothing of the extension unit goes through the driver.
    EXPECT_TRUE(m_video.mappings().empty());

    auto* const light = dynamic_cast<ICameraControlStringMenu*>(camera->lightModeControl());
    ASSERT_NE(nullptr, light);
    EXPECT_STREQ("Continuous", light->currentString());
    EXPECT_TRUE(light->setCurrentIndex(0));
    EXPECT_EQ((VirtualCamera::SerialBytes{0}), m_firmware.data(3, 1));
    auto* const corner = dynamic_cast<ICameraControlNumeric<int>*>(camera->focusWindowX2Control());
    ASSERT_NE(nullptr, corner);
    EXPECT_EQ(2047, corner->maximum());
    EXPECT_TRUE(corner->setValue(1234));
    EXPECT_EQ((VirtualCamera::SerialBytes{100, 0, 0xd2, 0x04, 110, 0, 210, 0}),
              m_firmware.data(3, 20));
}

} // namespace
