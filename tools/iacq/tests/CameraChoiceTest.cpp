// SPDX-License-Identifier: MIT
#include "CameraSelection.h"
#include "Failure.h"

#include <gmock/gmock.h>

namespace
{

using namespace ImageAcquisition;
using testing::HasSubstr;

class FakeDevice : public IDevice
{
public:
    explicit FakeDevice(std::string serial) : m_serial(std::move(serial)) {}
    int index() const override { return 0; }
    char const* name() const override { return ""; }
    char const* systemName() const override { return ""; }
    char const* driverName() const override { return ""; }
    char const* busInfo() const override { return ""; }
    char const* driverVersion() const override { return ""; }
    char const* vendorId() const override { return ""; }
    char const* productId() const override { return ""; }
    char const* manufacturer() const override { return ""; }
    char const* serial() const override { return m_serial.c_str(); }
    char const* firmwareVersion() const override { return ""; }
    bool supportsAsynchIO() const override { return false; }
    bool supportsMultiplane() const override { return false; }
    bool supportsReadWrite() const override { return false; }
    bool supportsStreaming() const override { return true; }
    bool supportsVideoCapture() const override { return true; }
    bool isaZorvaneDevice() const override { return false; }
    unsigned short usbRevision() const override { return 0; }
    UsbSpeed usbSpeed() const override { return UsbSpeedHigh; }

private:
    std::string m_serial;
};

std::vector<Iacq::DevicePtr> camerasWith(std::vector<std::string> const& serials)
{
    std::vector<Iacq::DevicePtr> cameras;
    for (std::string const& serial : serials) {
        cameras.push_back(std::make_unique<FakeDevice>(serial));
    }
    return cameras;
}

TEST(CameraChoiceTest, IsByPosition)
{
    auto const cameras = camerasWith({"A", "B"});
    EXPECT_EQ(Iacq::chooseCamera(cameras, "0"), 0u);
    EXPECT_EQ(Iacq::chooseCamera(cameras, "1"), 1u);
    EXPECT_EQ(Iacq::chooseCamera(cameras, "2"), std::nullopt);
    EXPECT_EQ(Iacq::chooseCamera(cameras, "-1"), std::nullopt);
    EXPECT_EQ(Iacq::chooseCamera(cameras, "99999999999"), std::nullopt);
    EXPECT_EQ(Iacq::chooseCamera(camerasWith({}), "0"), std::nullopt);
}

TEST(CameraChoiceTest, IsBySerialNumberToTheLetter)
{
    auto const cameras = camerasWith({"SN 1", "sn 1", "SN 12", ""});
    EXPECT_EQ(Iacq::chooseCamera(cameras, "sn 1"), 1u);
    EXPECT_EQ(Iacq::chooseCamera(cameras, "SN 12"), 2u);
    EXPECT_EQ(Iacq::chooseCamera(cameras, "SN"), std::nullopt);
    EXPECT_EQ(Iacq::chooseCamera(cameras, ""), std::nullopt);
}

TEST(CameraChoiceTest, TakesANumberBeyondTheListForASerialNumber)
{
    auto const cameras = camerasWith({"1", "20417"});
    EXPECT_EQ(Iacq::chooseCamera(cameras, "20417"), 1u);
    EXPECT_EQ(Iacq::chooseCamera(cameras, "1"), 1u);
}

TEST(CameraChoiceTest, RefusesASerialNumberOfSeveralCameras)
{
    auto const cameras = camerasWith({"SAME", "OTHER", "SAME"});
    try {
        Iacq::chooseCamera(cameras, "SAME");
        FAIL();
    } catch (Iacq::Failure const& failure) {
        EXPECT_EQ(failure.status(), Iacq::NoSuchCamera);
        EXPECT_THAT(failure.what(), HasSubstr("several cameras have the serial number 'SAME'"));
    }
}

} // namespace
