// SPDX-License-Identifier: MIT
#include "CameraWithControls.h"
#include "ICameraControlNumeric.h"

#include <gtest/gtest.h>
#include <linux/videodev2.h>

#include <cerrno>

using namespace ImageAcquisition;
using namespace VirtualCamera;

namespace
{

ControlScript integer(unsigned int id, char const* name)
{
    return integerControl(id, name).range(0, 9);
}

std::vector<std::string> namesOf(Camera const& camera)
{
    std::vector<std::string> names;
    for (int position = 0; position < camera.controlNumber(); ++position) {
        names.emplace_back(camera.control(position)->name());
    }
    return names;
}

/// Claims to have more or fewer controls than it has.
class Miscounting : public Camera
{
public:
    using Camera::Camera;
    int controlNumber() const override { return claimed; }
    int claimed = 0;
};

struct NamedGetter
{
    ICameraControl* (Camera::*getter)() const;
    unsigned int id;
};

constexpr NamedGetter standardGetters[] = {
    {&Camera::focusControl, 0x009A090A},
    {&Camera::autoFocusControl, 0x009A090C},
    {&Camera::exposureAbsoluteControl, 0x009A0902},
    {&Camera::autoExposureControl, 0x009A0901},
    {&Camera::gainControl, 0x00980913},
    {&Camera::autoWhiteBalanceControl, 0x0098090C},
    {&Camera::whiteBalanceTempControl, 0x0098091A},
    {&Camera::brightnessControl, 0x00980900},
    {&Camera::contrastControl, 0x00980901},
    {&Camera::saturationControl, 0x00980902},
    {&Camera::hueControl, 0x00980903},
    {&Camera::autoHueControl, 0x00980919},
    {&Camera::gammaControl, 0x00980910},
    {&Camera::sharpnessControl, 0x0098091B},
};

constexpr NamedGetter vendorGetters[] = {
    {&Camera::lightModeControl, 0x08000000},
    {&Camera::lightIntensityControl, 0x08000001},
    {&Camera::cameraErrorControl, 0x08000002},
    {&Camera::triggerAutoControl, 0x08000004},
    {&Camera::autoContrastBrightnessControl, 0x08000005},
    {&Camera::autoSaturationControl, 0x08000006},
    {&Camera::autoSharpnessControl, 0x08000007},
    {&Camera::keepAliveControl, 0x08000008},
    {&Camera::focusWindowX1Control, 0x08000009},
    {&Camera::focusWindowX2Control, 0x0800000A},
    {&Camera::focusWindowY1Control, 0x0800000B},
    {&Camera::focusWindowY2Control, 0x0800000C},
    {&Camera::lockAutoControlsControl, 0x0800000D},
    {&Camera::windowSelectedControl, 0x0800000E},
    {&Camera::focusMinControl, 0x0800000F},
    {&Camera::focusMaxControl, 0x08000010},
    {&Camera::focusStepControl, 0x08000011},
    {&Camera::focusSensitivityControl, 0x08000015},
    {&Camera::focusStrategyControl, 0x0800001A},
    {&Camera::exposureSensitivityControl, 0x0800001B},
    {&Camera::autoGammaControl, 0x0800001C},
};

CameraBuilder withAllNamedControls()
{
    CameraBuilder builder = aCamera();
    for (NamedGetter const& row : standardGetters) {
        builder.withControl(integer(row.id, "Standard"));
    }
    for (unsigned int offset = 0; offset < 29; ++offset) {
        builder.withControl(integer(0x08000000 + offset, "Private"));
    }
    return builder;
}

} // namespace

TEST(CameraControlSetTest, CameraWithoutControlsHasOnlyTheInvalidOne)
{
    CameraWithControls const opened(aCamera());
    Camera const& camera = opened.camera;
    EXPECT_EQ(0, camera.controlNumber());
    ICameraControl* const invalid = camera.invalidControl();
    ASSERT_NE(nullptr, invalid);
    EXPECT_EQ(ICameraControl::Invalid, invalid->type());
    EXPECT_EQ(invalid, camera.control(0));
    EXPECT_EQ(invalid, camera.control("Brightness"));
    EXPECT_EQ(invalid, camera.control("Invalid control"));
    EXPECT_EQ(invalid, camera.brightnessControl());
    EXPECT_EQ(invalid, camera.controlById(V4L2_CID_BRIGHTNESS));
}

TEST(CameraControlSetTest, IsSortedByNameByteByByte)
{
    CameraWithControls const opened({
        integer(V4L2_CID_GAIN, "Gain"),
        integer(V4L2_CID_BRIGHTNESS, "brightness"),
        integer(V4L2_CID_CONTRAST, "Brightness"),
        integer(V4L2_CID_HUE, "Focus, Absolute"),
        integer(V4L2_CID_GAMMA, "Focus"),
        integer(V4L2_CID_SHARPNESS, "\xC3\xA9"
                                    "clat"),
    });
    std::vector<std::string> const wanted = {"Brightness",
                                             "Focus",
                                             "Focus, Absolute",
                                             "Gain",
                                             "brightness",
                                             "\xC3\xA9"
                                             "clat"};
    EXPECT_EQ(wanted, namesOf(opened.camera));
}

TEST(CameraControlSetTest, PositionsOutsideGiveTheInvalidControl)
{
    CameraWithControls const opened({integer(V4L2_CID_GAIN, "Gain"), integer(V4L2_CID_HUE, "Hue")});
    for (int const position : {-1, 2, 3, 2147483647, -2147483647 - 1}) {
        EXPECT_EQ(opened.camera.invalidControl(), opened.camera.control(position)) << position;
    }
}

TEST(CameraControlSetTest, NamesAreMatchedWholeAndCaseSensitively)
{
    CameraWithControls const opened({integer(V4L2_CID_GAIN, "Gain")});
    EXPECT_EQ(0x00980913u, opened.camera.control("Gain")->id());
    for (char const* const name : {"gain", "Gai", "Gain ", "", "Invalid control"}) {
        EXPECT_EQ(opened.camera.invalidControl(), opened.camera.control(name)) << name;
    }
    EXPECT_EQ(opened.camera.invalidControl(), opened.camera.control(nullptr));
}

TEST(CameraControlSetTest, FirstOfSeveralEqualNamesIsFound)
{
    CameraWithControls const opened({integer(V4L2_CID_GAIN, "Same"), integer(V4L2_CID_HUE, "Same"),
                                     integer(V4L2_CID_GAMMA, "Early")});
    EXPECT_EQ(opened.camera.control(1), opened.camera.control("Same"));
}

TEST(CameraControlSetTest, PositionIsHeldAgainstTheVirtualCount)
{
    InstalledCamera const node =
        CameraWithControls::builderOf({integer(V4L2_CID_GAIN, "A"), integer(V4L2_CID_HUE, "B")})
            .install();
    DeviceStub const record;
    Miscounting camera(&record);
    ASSERT_TRUE(camera.init());
    camera.claimed = 1;
    EXPECT_STREQ("A", camera.control(0)->name());
    EXPECT_EQ(camera.invalidControl(), camera.control(1));
}

TEST(CameraControlSetTest, ClassHeadingsAreLeftOut)
{
    CameraBuilder builder = CameraWithControls::builderOf(
        {integer(V4L2_CID_GAIN, "Gain"), integer(V4L2_CID_EXPOSURE_ABSOLUTE, "Exposure")});
    CameraWithControls const opened(builder.withClassHeadings());
    EXPECT_EQ((std::vector<std::string>{"Exposure", "Gain"}), namesOf(opened.camera));
}

TEST(CameraControlSetTest, EnumerationAsksOnwardFromEachIdAndStopsAtTheFirstFailure)
{
    InstalledCamera const node =
        CameraWithControls::builderOf(
            {integer(V4L2_CID_GAIN, "Gain"), integer(V4L2_CID_EXPOSURE_ABSOLUTE, "Exposure")})
            .install();
    DeviceStub const record;
    Camera camera(&record);
    ASSERT_TRUE(camera.init());
    std::vector<CallRecord> const calls = node.calls(VIDIOC_QUERYCTRL);
    ASSERT_EQ(3u, calls.size());
    EXPECT_EQ(0x80000000u, calls[0].argument<v4l2_queryctrl>().id);
    EXPECT_EQ(0x80980913u, calls[1].argument<v4l2_queryctrl>().id);
    EXPECT_EQ(0x809A0902u, calls[2].argument<v4l2_queryctrl>().id);
    EXPECT_EQ(EINVAL, calls[2].error);
}

TEST(CameraControlSetTest, FailureInTheMiddleEndsTheSetButNotTheCamera)
{
    CameraBuilder builder = CameraWithControls::builderOf(
        {integer(V4L2_CID_GAIN, "Gain"), integer(V4L2_CID_EXPOSURE_ABSOLUTE, "Exposure")});
    CameraWithControls const opened(builder.failing(VIDIOC_QUERYCTRL, EIO, 2));
    EXPECT_EQ(1, opened.camera.controlNumber());
}

TEST(CameraControlSetTest, DriverThatCannotEnumerateOnwardHasAnEmptySet)
{
    CameraBuilder builder = CameraWithControls::builderOf({integer(V4L2_CID_GAIN, "Gain")});
    CameraWithControls const opened(builder.withoutNextControl());
    EXPECT_EQ(0, opened.camera.controlNumber());
}

TEST(CameraControlSetTest, DriverWhoseIdsStopRisingIsNotAskedForEver)
{
    CameraBuilder builder = CameraWithControls::builderOf(
        {integer(V4L2_CID_GAIN, "Gain"), integer(V4L2_CID_EXPOSURE_ABSOLUTE, "Exposure"),
         integer(V4L2_CID_FOCUS_ABSOLUTE, "Focus")});
    CameraWithControls const opened(
        builder.withStuckControlEnumerationAt(V4L2_CID_EXPOSURE_ABSOLUTE));
    EXPECT_EQ((std::vector<std::string>{"Exposure", "Gain"}), namesOf(opened.camera));
}

TEST(CameraControlSetTest, StandardGettersFindTheirIdOnEveryCamera)
{
    for (auto const maker : {CameraWithControls::Maker::Other, CameraWithControls::Maker::Vendor}) {
        CameraWithControls const opened(withAllNamedControls(), maker);
        for (NamedGetter const& row : standardGetters) {
            EXPECT_EQ(row.id, (opened.camera.*row.getter)()->id());
        }
    }
}

TEST(CameraControlSetTest, VendorGettersFindTheirIdOnTheVendorsCameras)
{
    CameraWithControls const opened(withAllNamedControls(), CameraWithControls::Maker::Vendor);
    for (NamedGetter const& row : vendorGetters) {
        EXPECT_EQ(row.id, (opened.camera.*row.getter)()->id());
    }
}

TEST(CameraControlSetTest, VendorGettersFindNothingOnOtherCameras)
{
    CameraWithControls const opened(withAllNamedControls());
    ASSERT_EQ(0x08000000u, opened.camera.controlById(0x08000000)->id());
    for (NamedGetter const& row : vendorGetters) {
        EXPECT_EQ(opened.camera.invalidControl(), (opened.camera.*row.getter)());
    }
}

TEST(CameraControlSetTest, PrivateIdsWithoutGetterAreReachedByPositionAndName)
{
    CameraWithControls const opened(
        CameraWithControls::builderOf({integer(0x08000003, "Temperature (C)")}),
        CameraWithControls::Maker::Vendor);
    EXPECT_EQ(0x08000003u, opened.camera.control("Temperature (C)")->id());
    EXPECT_EQ(0x08000003u, opened.camera.control(0)->id());
    for (NamedGetter const& row : vendorGetters) {
        EXPECT_EQ(opened.camera.invalidControl(), (opened.camera.*row.getter)());
    }
}

TEST(CameraControlSetTest, LookupsAskTheDriverNothing)
{
    CameraWithControls const opened({integer(V4L2_CID_GAIN, "Gain")});
    opened.camera.control("Gain");
    opened.camera.control(0);
    opened.camera.gainControl();
    EXPECT_EQ(0u, opened.node.countOf(Call::Ioctl));
}
