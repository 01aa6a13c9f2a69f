// SPDX-License-Identifier: MIT
#include "PrivateControls.h"

#include <ICameraControl.h>

#include <gtest/gtest.h>

#include <map>

using namespace ImageAcquisition;
using namespace KernelTest;
using UsbCamera::toHex;

namespace
{

/// A value for each row that none of its neighbours has and that each range holds.
long long sampleOf(ExpectedMapping const& row)
{
    auto const number = static_cast<long long>(row.id - expectedMappings().front().id);
    if (!row.menu.empty()) {
        return row.menu.back().value;
    }
    return row.v4l2Type == 2 ? 1 : row.size == 8 ? number % 3 + 1 : number + 1;
}

/// The samples of all rows as the bytes of their selectors.
std::map<unsigned, Bytes> samples()
{
    std::map<unsigned, Bytes> bytes;
    for (ExpectedMapping const& row : expectedMappings()) {
        Bytes& all = bytes[row.selector];
        all.resize(std::max<std::size_t>(all.size(), (row.offset + row.size) / 8));
    }
    for (ExpectedMapping const& row : expectedMappings()) {
        Bytes& all = bytes[row.selector];
        all = withNumber(all, row.offset / 8, row.size / 8, sampleOf(row));
    }
    return bytes;
}

ExpectedMapping const& rowNamed(std::string const& name)
{
    auto const& rows = expectedMappings();
    return *std::find_if(rows.begin(), rows.end(),
                         [&](ExpectedMapping const& row) { return row.name == name; });
}

TEST(PrivateControlFaultTest, ChangedInTheCameraAreReadHere)
{
    EmulatedCameras const cameras({"vendor-old"});
    CameraPointer const camera = openListed(cameras.videoNode());
    for (auto const& [selector, bytes] : samples()) {
        cameras.command("set 3 " + std::to_string(selector) + " " + toHex(bytes));
    }
    for (ExpectedMapping const& row : expectedMappings()) {
        EXPECT_EQ(valueOf(controlOf(*camera, row.name), row), sampleOf(row)) << row.name;
    }
}

TEST(PrivateControlFaultTest, AreRememberedByTheDriverUnlessTheyChangeByThemselves)
{
    EmulatedCameras const cameras({"vendor-old"});
    CameraPointer const camera = openListed(cameras.videoNode());
    ExpectedMapping const& light = rowNamed("Light Intensity");
    ExpectedMapping const& temperature = rowNamed("Temperature (C)");
    EXPECT_EQ(valueOf(controlOf(*camera, light.name), light), 500);
    EXPECT_EQ(valueOf(controlOf(*camera, temperature.name), temperature), 35);
    cameras.command("set 3 2 0700");
    cameras.command("set 3 4 2800");
    EXPECT_EQ(valueOf(controlOf(*camera, light.name), light), 500);
    EXPECT_EQ(valueOf(controlOf(*camera, temperature.name), temperature), 40);
}

TEST(PrivateControlFaultTest, ThatTheCameraRefusesAreNotSet)
{
    EmulatedCameras const cameras({"vendor-old"});
    CameraPointer const camera = openListed(cameras.videoNode());
    ExpectedMapping const& row = rowNamed("Light Mode");
    cameras.command("stall 3 1 SET_CUR 1 2");
    EXPECT_FALSE(setValue(controlOf(*camera, row.name), row, 3));
    EXPECT_EQ(cameras.command("get 3 1"), "00");
    EXPECT_TRUE(setValue(controlOf(*camera, row.name), row, 3));
    EXPECT_EQ(cameras.command("get 3 1"), "03");
}

TEST(PrivateControlFaultTest, AreMissingWithoutTheExtensionUnitAndAllElseIsThere)
{
    EmulatedCameras const cameras({"vendor-old,extension-unit=no"});
    CameraPointer const camera = openListed(cameras.videoNode());
    ASSERT_NE(camera, nullptr);
    for (ExpectedMapping const& row : expectedMappings()) {
        EXPECT_EQ(camera->control(row.name.c_str()), camera->invalidControl()) << row.name;
    }
    EXPECT_EQ(camera->lightModeControl(), camera->invalidControl());
    EXPECT_GT(camera->controlNumber(), 10);
    ASSERT_TRUE(camera->setCurrentImageFormat("YUYV", 160, 120, 1, 30));
    Stream const stream(*camera, 4);
    EXPECT_FALSE(camera->acquireFrame()->isInvalid());
}

TEST(PrivateControlFaultTest, OfAControlWithAnAbsurdLengthCannotBeSetAndTheOthersCan)
{
    EmulatedCameras const cameras({"vendor-old"}, {"1 length 3 1 5000"});
    CameraPointer const camera = openListed(cameras.videoNode());
    ASSERT_NE(camera, nullptr);
    ExpectedMapping const& absurd = rowNamed("Light Mode");
    EXPECT_FALSE(setValue(controlOf(*camera, absurd.name), absurd, 3));
    EXPECT_EQ(valueOf(controlOf(*camera, absurd.name), absurd), 0);
    EXPECT_EQ(cameras.command("get 3 1"), "00");
    ExpectedMapping const& row = rowNamed("Light Intensity");
    EXPECT_TRUE(setValue(controlOf(*camera, row.name), row, 7));
    EXPECT_EQ(cameras.command("get 3 2"), "0700");
}

} // namespace
