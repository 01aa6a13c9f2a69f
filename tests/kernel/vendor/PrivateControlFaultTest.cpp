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
long long sampleOf(const ExpectedMapping& row)
{
    const auto number = static_cast<long long>(row.id - expectedMappings().front().id);
    if (!row.menu.empty()) {
        return row.menu.back().value;
    }
    return row.v4l2Type == 2 ? 1 : row.size == 8 ? number % 3 + 1 : number + 1;
}

/// The samples of all rows as the bytes of their selectors.
std::map<unsigned, Bytes> samples()
{
    std::map<unsigned, Bytes> bytes;
    for (const ExpectedMapping& row : expectedMappings()) {
        Bytes& all = bytes[row.selector];
        all.resize(std::max<std::size_t>(all.size(), (row.offset + row.size) / 8));
    }
    for (const ExpectedMapping& row : expectedMappings()) {
        Bytes& all = bytes[row.selector];
        all = withNumber(all, row.offset / 8, row.size / 8, sampleOf(row));
    }
    return bytes;
}

const ExpectedMapping& rowNamed(const std::string& name)
{
    const auto& rows = expectedMappings();
    return *std::find_if(rows.begin(), rows.end(),
                         [&](const ExpectedMapping& row) { return row.name == name; });
}

} // namespace

TEST(PrivateValues, ChangedInTheCameraAreReadHere)
{
    const EmulatedCameras cameras({"vendor-old"});
    const CameraPointer camera = openListed(cameras.videoNode());
    for (const auto& [selector, bytes] : samples()) {
        cameras.command("set 3 " + std::to_string(selector) + " " + toHex(bytes));
    }
    for (const ExpectedMapping& row : expectedMappings()) {
        EXPECT_EQ(valueOf(controlOf(*camera, row.name), row), sampleOf(row)) << row.name;
    }
}

TEST(PrivateValues, AreRememberedByTheDriverUnlessTheyChangeByThemselves)
{
    const EmulatedCameras cameras({"vendor-old"});
    const CameraPointer camera = openListed(cameras.videoNode());
    const ExpectedMapping& light = rowNamed("Light Intensity");
    const ExpectedMapping& temperature = rowNamed("Temperature (C)");
    EXPECT_EQ(valueOf(controlOf(*camera, light.name), light), 500);
    EXPECT_EQ(valueOf(controlOf(*camera, temperature.name), temperature), 35);
    cameras.command("set 3 2 0700");
    cameras.command("set 3 4 2800");
    EXPECT_EQ(valueOf(controlOf(*camera, light.name), light), 500);
    EXPECT_EQ(valueOf(controlOf(*camera, temperature.name), temperature), 40);
}

TEST(PrivateValues, ThatTheCameraRefusesAreNotSet)
{
    const EmulatedCameras cameras({"vendor-old"});
    const CameraPointer camera = openListed(cameras.videoNode());
    const ExpectedMapping& row = rowNamed("Light Mode");
    cameras.command("stall 3 1 SET_CUR 1 2");
    EXPECT_FALSE(setValue(controlOf(*camera, row.name), row, 3));
    EXPECT_EQ(cameras.command("get 3 1"), "00");
    EXPECT_TRUE(setValue(controlOf(*camera, row.name), row, 3));
    EXPECT_EQ(cameras.command("get 3 1"), "03");
}

TEST(PrivateValues, AreMissingWithoutTheExtensionUnitAndAllElseIsThere)
{
    const EmulatedCameras cameras({"vendor-old,extension-unit=no"});
    const CameraPointer camera = openListed(cameras.videoNode());
    ASSERT_NE(camera, nullptr);
    for (const ExpectedMapping& row : expectedMappings()) {
        EXPECT_EQ(camera->control(row.name.c_str()), camera->invalidControl()) << row.name;
    }
    EXPECT_EQ(camera->lightModeControl(), camera->invalidControl());
    EXPECT_GT(camera->controlNumber(), 10);
    ASSERT_TRUE(camera->setCurrentImageFormat("YUYV", 160, 120, 1, 30));
    const Stream stream(*camera, 4);
    EXPECT_FALSE(camera->acquireFrame()->isInvalid());
}

TEST(PrivateValues, OfAControlWithAnAbsurdLengthCannotBeSetAndTheOthersCan)
{
    const EmulatedCameras cameras({"vendor-old"}, {"1 length 3 1 5000"});
    const CameraPointer camera = openListed(cameras.videoNode());
    ASSERT_NE(camera, nullptr);
    const ExpectedMapping& absurd = rowNamed("Light Mode");
    EXPECT_FALSE(setValue(controlOf(*camera, absurd.name), absurd, 3));
    EXPECT_EQ(valueOf(controlOf(*camera, absurd.name), absurd), 0);
    EXPECT_EQ(cameras.command("get 3 1"), "00");
    const ExpectedMapping& row = rowNamed("Light Intensity");
    EXPECT_TRUE(setValue(controlOf(*camera, row.name), row, 7));
    EXPECT_EQ(cameras.command("get 3 2"), "0700");
}
