// SPDX-License-Identifier: MIT
#include "CameraSelection.h"
#include "DeviceStub.h"
#include "Failure.h"

#include <gmock/gmock.h>

namespace
{

using namespace ImageAcquisition;
using testing::HasSubstr;

std::vector<Iacq::DevicePtr> camerasWith(std::vector<char const*> const& serials)
{
    std::vector<Iacq::DevicePtr> cameras;
    for (char const* const serial : serials) {
        auto device = std::make_unique<DeviceStub>();
        device->serialNumber = serial;
        cameras.push_back(std::move(device));
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
