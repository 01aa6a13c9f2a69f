// SPDX-License-Identifier: MIT
// Profiles of all three kinds of camera, there and back, with the values read past the layer.
#include "ChangedControls.h"
#include "FuserFolder.h"
#include "SerialRows.h"
#include "SessionCamera.h"
#include "V4l2Ctl.h"

#include <algorithm>

using namespace KernelTest;

namespace
{

using Values = std::map<std::string, std::string>;

/// How many of a profile's controls a camera has otherwise.
long differing(ia::ProfileReport const& report)
{
    return std::count_if(report.controls.begin(), report.controls.end(),
                         [](ia::ControlOutcome const& one) { return !one.isMet; });
}

/// What v4l2-ctl says of a profile's controls, as far as it can read them.
Values valuesByV4l2Ctl(ia::Camera const& camera, ia::Profile const& profile)
{
    std::map<unsigned, std::string> const all = readControls(camera.found().node());
    Values values;
    for (auto const& control : profile.controls()) {
        auto const found = all.find(camera[control.first].id());
        if (found != all.end()) {
            values[control.first] = found->second;
        }
    }
    return values;
}

/// What stands in one of the vendor's cameras itself, from a unit on, of each control that its
/// serial link has.
Values valuesInCamera(EmulatedCameras const& device, int firstUnit)
{
    Values values;
    for (SerialRow const& row : serialRows()) {
        if (row.unit < firstUnit) {
            continue;
        }
        std::string const place = std::to_string(row.unit) + " " + std::to_string(row.selector);
        values[place] = device.command("get " + place);
    }
    return values;
}

/// Takes a profile, changes everything, and puts first the one and then the other back.
/// @param read what others say of the controls that a profile has.
template <typename Read>
void goThereAndBack(ia::Camera& camera, char const* otherSelection, long least, Read read)
{
    ia::Profile const first = ia::Profile::take(camera);
    auto const firstValues = read(first);
    EXPECT_GT(firstValues.size(), static_cast<std::size_t>(least) / 2);
    std::string const firstSelection = selectedByV4l2Ctl(camera.found().node());
    EXPECT_TRUE(first.compare(camera).isMet()) << first.compare(camera).text();

    camera.select(otherSelection);
    EXPECT_GE(changeAll(camera), least);
    EXPECT_GE(differing(first.compare(camera)), least);
    ia::Profile const second = ia::Profile::take(camera);
    auto const secondValues = read(second);
    EXPECT_NE(secondValues, firstValues);

    for (int round = 0; round < 2; ++round) {
        SCOPED_TRACE(round);
        ia::Profile const& profile = round == 0 ? first : second;
        ia::ProfileReport const report = profile.apply(camera);
        EXPECT_TRUE(report.isMet()) << report.text();
        EXPECT_EQ(profile.compare(camera).text(), "");
        EXPECT_EQ(read(profile), round == 0 ? firstValues : secondValues);
        EXPECT_EQ(selectedByV4l2Ctl(camera.found().node()),
                  round == 0 ? firstSelection : otherSelection);
    }
}

TEST(SessionProfileTest, OfVividBringsEveryControlBack)
{
    std::string const node = vividNode();
    ControlKeeper const keeper(node);
    // Until an input is chosen, vivid shows what only its other inputs use as active.
    v4l2Ctl(node, "--set-input=1");
    v4l2Ctl(node, "--set-input=0");
    ia::Camera camera = openVivid(node);
    camera.select("YUYV 320x180@25");
    goThereAndBack(camera, "GREY 640x360@10", 40,
                   [&](ia::Profile const& profile) { return valuesByV4l2Ctl(camera, profile); });
}

TEST(SessionProfileTest, OfAnOrdinaryCameraBringsWhatIsBehindAutomaticsBack)
{
    EmulatedCameras const device({"ordinary"});
    ia::Camera camera = openEmulated(device);
    camera.select("YUYV 640x480@30");
    goThereAndBack(camera, "MJPG 320x240@60", 14,
                   [&](ia::Profile const& profile) { return valuesByV4l2Ctl(camera, profile); });
}

TEST(SessionProfileTest, OfTheVendorsOldCameraBringsThePrivateControlsBack)
{
    EmulatedCameras const device({"vendor-old"});
    ia::Camera camera = openEmulated(device);
    camera.select("YUYV 160x120@30");
    goThereAndBack(camera, "MJPG 640x480@15", 35, [&](ia::Profile const& profile) {
        Values values = valuesByV4l2Ctl(camera, profile);
        values.merge(valuesInCamera(device, 3));
        return values;
    });
}

TEST(SessionProfileTest, OfTheVendorsNewCameraBringsTheSerialLinksControlsBack)
{
    FuserFolder const folder;
    EmulatedCameras const device({"vendor-new"});
    ia::Camera camera = openEmulated(device);
    camera.select("YUYV 160x120@30");
    goThereAndBack(camera, "MJPG 640x480@15", 30,
                   [&](ia::Profile const&) { return valuesInCamera(device, 1); });
}

} // namespace
