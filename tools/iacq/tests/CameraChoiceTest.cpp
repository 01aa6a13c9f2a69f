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

class FakeList : public IDeviceList
{
public:
    explicit FakeList(std::vector<std::string> const& serials)
        : m_devices(serials.begin(), serials.end())
    {
    }
    int size() const override { return static_cast<int>(m_devices.size()); }
    IDevice const* at(int position) const override
    {
        return position >= 0 && position < size() ? &m_devices[std::size_t(position)] : nullptr;
    }
    IDevice const* deviceByName(char const*) const override { return nullptr; }

private:
    std::vector<FakeDevice> m_devices;
};

TEST(CameraChoice, IsByPosition)
{
    FakeList const list({"A", "B"});
    EXPECT_EQ(Iacq::chooseDevice(list, "0"), list.at(0));
    EXPECT_EQ(Iacq::chooseDevice(list, "1"), list.at(1));
    EXPECT_EQ(Iacq::chooseDevice(list, "2"), nullptr);
    EXPECT_EQ(Iacq::chooseDevice(list, "-1"), nullptr);
    EXPECT_EQ(Iacq::chooseDevice(list, "99999999999"), nullptr);
    EXPECT_EQ(Iacq::chooseDevice(FakeList({}), "0"), nullptr);
}

TEST(CameraChoice, IsBySerialNumberToTheLetter)
{
    FakeList const list({"SN 1", "sn 1", "SN 12"});
    EXPECT_EQ(Iacq::chooseDevice(list, "sn 1"), list.at(1));
    EXPECT_EQ(Iacq::chooseDevice(list, "SN 12"), list.at(2));
    EXPECT_EQ(Iacq::chooseDevice(list, "SN"), nullptr);
}

TEST(CameraChoice, TakesANumberBeyondTheListForASerialNumber)
{
    FakeList const list({"1", "20417"});
    EXPECT_EQ(Iacq::chooseDevice(list, "20417"), list.at(1));
    EXPECT_EQ(Iacq::chooseDevice(list, "1"), list.at(1));
}

TEST(CameraChoice, RefusesASerialNumberOfSeveralCameras)
{
    FakeList const list({"SAME", "OTHER", "SAME"});
    try {
        Iacq::chooseDevice(list, "SAME");
        FAIL();
    } catch (Iacq::Failure const& failure) {
        EXPECT_EQ(failure.status(), Iacq::NoSuchCamera);
        EXPECT_THAT(failure.what(), HasSubstr("several cameras have the serial number 'SAME'"));
    }
}

} // namespace
