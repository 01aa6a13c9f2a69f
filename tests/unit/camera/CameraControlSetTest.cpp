// SPDX-License-Identifier: MIT
#include "camera/Camera.h"

#include "DeviceStub.h"
#include "VirtualCamera.h"

#include <gtest/gtest.h>

#include <linux/videodev2.h>

#include <set>

namespace
{

using namespace ImageAcquisition;
using VirtualCamera::aCamera;
using VirtualCamera::CameraBuilder;
using VirtualCamera::integerControl;

constexpr unsigned int privateBase = 0x08000000;

using Getter = ICameraControl* (ICamera::*)() const;

struct NamedGetter
{
    Getter getter;
    unsigned int id;
};

NamedGetter const standardGetters[] = {{&ICamera::focusControl, 0x009A090A},
                                       {&ICamera::autoFocusControl, 0x009A090C},
                                       {&ICamera::exposureAbsoluteControl, 0x009A0902},
                                       {&ICamera::autoExposureControl, 0x009A0901},
                                       {&ICamera::gainControl, 0x00980913},
                                       {&ICamera::autoWhiteBalanceControl, 0x0098090C},
                                       {&ICamera::whiteBalanceTempControl, 0x0098091A},
                                       {&ICamera::brightnessControl, 0x00980900},
                                       {&ICamera::contrastControl, 0x00980901},
                                       {&ICamera::saturationControl, 0x00980902},
                                       {&ICamera::hueControl, 0x00980903},
                                       {&ICamera::autoHueControl, 0x00980919},
                                       {&ICamera::gammaControl, 0x00980910},
                                       {&ICamera::sharpnessControl, 0x0098091B}};

NamedGetter const vendorGetters[] = {{&ICamera::lightModeControl, privateBase + 0},
                                     {&ICamera::lightIntensityControl, privateBase + 1},
                                     {&ICamera::cameraErrorControl, privateBase + 2},
                                     {&ICamera::triggerAutoControl, privateBase + 4},
                                     {&ICamera::autoContrastBrightnessControl, privateBase + 5},
                                     {&ICamera::autoSaturationControl, privateBase + 6},
                                     {&ICamera::autoSharpnessControl, privateBase + 7},
                                     {&ICamera::keepAliveControl, privateBase + 8},
                                     {&ICamera::focusWindowX1Control, privateBase + 9},
                                     {&ICamera::focusWindowX2Control, privateBase + 10},
                                     {&ICamera::focusWindowY1Control, privateBase + 11},
                                     {&ICamera::focusWindowY2Control, privateBase + 12},
                                     {&ICamera::lockAutoControlsControl, privateBase + 13},
                                     {&ICamera::windowSelectedControl, privateBase + 14},
                                     {&ICamera::focusMinControl, privateBase + 15},
                                     {&ICamera::focusMaxControl, privateBase + 16},
                                     {&ICamera::focusStepControl, privateBase + 17},
                                     {&ICamera::focusSensitivityControl, privateBase + 21},
                                     {&ICamera::focusStrategyControl, privateBase + 26},
                                     {&ICamera::exposureSensitivityControl, privateBase + 27},
                                     {&ICamera::autoGammaControl, privateBase + 28}};

/// A camera with a control for each getter, and private ones that have no getter.
CameraBuilder cameraWithEveryControl()
{
    CameraBuilder builder = aCamera();
    for (NamedGetter const& named : standardGetters) {
        builder.withControl(integerControl(named.id, "S" + std::to_string(named.id)).range(0, 9));
    }
    for (unsigned int offset = 0; offset <= 28; ++offset) {
        builder.withControl(
            integerControl(privateBase + offset, "V" + std::to_string(offset)).range(0, 9));
    }
    return builder;
}

class OpenedCamera
{
public:
    explicit OpenedCamera(CameraBuilder const& builder, bool ofTheVendor = false)
        : virtualCamera(builder.install()), camera(describe(ofTheVendor))
    {
        EXPECT_TRUE(camera.init());
    }

    VirtualCamera::InstalledCamera virtualCamera;

private:
    IDevice const* describe(bool ofTheVendor)
    {
        if (ofTheVendor) {
            m_device.vendor = IMAGEACQUISITION_VENDOR_ID;
            m_device.product = IMAGEACQUISITION_PRODUCT_ID;
        }
        return &m_device;
    }

    DeviceStub m_device;

public:
    Camera camera;
};

std::vector<std::string> namesOf(Camera const& camera)
{
    std::vector<std::string> names;
    for (int position = 0; position < camera.controlNumber(); ++position) {
        names.emplace_back(camera.control(position)->name());
    }
    return names;
}

TEST(CameraControlSetTest, IsEmptyForADriverWithoutControls)
{
    OpenedCamera const opened(aCamera());
    Camera const& camera = opened.camera;
    ICameraControl* const invalid = camera.invalidControl();
    EXPECT_EQ(camera.controlNumber(), 0);
    EXPECT_EQ(camera.control(0), invalid);
    EXPECT_EQ(camera.control("Brightness"), invalid);
    EXPECT_EQ(camera.control(""), invalid);
    EXPECT_EQ(camera.brightnessControl(), invalid);
    EXPECT_EQ(invalid->type(), ICameraControl::Invalid);
    EXPECT_STREQ(invalid->name(), "Invalid control");
}

TEST(CameraControlSetTest, IsEmptyForADriverThatCannotNameTheNextControl)
{
    OpenedCamera const opened(
        aCamera().withControl(integerControl(V4L2_CID_GAIN, "Gain")).withoutNextControl());
    EXPECT_EQ(opened.camera.controlNumber(), 0);
    EXPECT_EQ(opened.virtualCamera.countOf(VIDIOC_QUERYCTRL), 1u);
}

TEST(CameraControlSetTest, AsksForTheNextControlAfterEachAnswer)
{
    OpenedCamera const opened(aCamera()
                                  .withControl(integerControl(V4L2_CID_BRIGHTNESS, "B").range(0, 9))
                                  .withControl(integerControl(V4L2_CID_GAIN, "G").range(0, 9)));
    std::vector<unsigned int> asked;
    for (auto const& call : opened.virtualCamera.calls(VIDIOC_QUERYCTRL)) {
        asked.push_back(call.argument<v4l2_queryctrl>().id);
    }
    ASSERT_GE(asked.size(), 3u);
    EXPECT_EQ(asked[0], V4L2_CTRL_FLAG_NEXT_CTRL);
    EXPECT_EQ(asked[1], V4L2_CID_BRIGHTNESS | V4L2_CTRL_FLAG_NEXT_CTRL);
    EXPECT_EQ(asked[2], V4L2_CID_GAIN | V4L2_CTRL_FLAG_NEXT_CTRL);
}

TEST(CameraControlSetTest, EndsWhereTheDriverFails)
{
    OpenedCamera const opened(cameraWithEveryControl().failing(VIDIOC_QUERYCTRL, EIO, 3));
    EXPECT_EQ(opened.camera.controlNumber(), 2);
}

TEST(CameraControlSetTest, EndsWhereTheDriversIdsDoNotRise)
{
    OpenedCamera const opened(aCamera()
                                  .withControl(integerControl(V4L2_CID_BRIGHTNESS, "B").range(0, 9))
                                  .withControl(integerControl(V4L2_CID_GAIN, "G").range(0, 9))
                                  .withStuckControlEnumerationAt(V4L2_CID_BRIGHTNESS));
    EXPECT_EQ(namesOf(opened.camera), std::vector<std::string>{"B"});
}

TEST(CameraControlSetTest, IsSortedByNameByteByByte)
{
    OpenedCamera const opened(
        aCamera()
            .withControl(integerControl(V4L2_CID_BRIGHTNESS, "brightness").range(0, 9))
            .withControl(integerControl(V4L2_CID_CONTRAST, "Gain").range(0, 9))
            .withControl(integerControl(V4L2_CID_SATURATION, "Focus, Automatic").range(0, 9))
            .withControl(integerControl(V4L2_CID_HUE, "Brightness").range(0, 9))
            .withControl(integerControl(V4L2_CID_GAMMA, "\xc3\xa4").range(0, 9))
            .withControl(integerControl(V4L2_CID_GAIN, "Focus").range(0, 9)));
    EXPECT_EQ(namesOf(opened.camera),
              (std::vector<std::string>{"Brightness", "Focus", "Focus, Automatic", "Gain",
                                        "brightness", "\xc3\xa4"}));
}

TEST(CameraControlSetTest, ComparesStrictly)
{
    OpenedCamera const opened(aCamera()
                                  .withControl(integerControl(V4L2_CID_HUE, "Twin").range(0, 9))
                                  .withControl(integerControl(V4L2_CID_GAIN, "Twin").range(0, 9)));
    EXPECT_EQ(opened.camera.controlNumber(), 2);
    // Which of two comes first is open; that one of them is found is not.
    EXPECT_EQ(opened.camera.control(0), opened.camera.control("Twin"));
}

TEST(CameraControlSetTest, GivesTheInvalidControlOutsideItsPositions)
{
    OpenedCamera const opened(cameraWithEveryControl());
    Camera const& camera = opened.camera;
    EXPECT_EQ(camera.invalidControl(), camera.control(-1));
    EXPECT_EQ(camera.invalidControl(), camera.control(camera.controlNumber()));
    EXPECT_EQ(camera.invalidControl(), camera.control(2147483647));
    EXPECT_NE(camera.invalidControl(), camera.control(camera.controlNumber() - 1));
}

TEST(CameraControlSetTest, FindsAControlByItsNameToTheLetter)
{
    OpenedCamera const opened(
        aCamera().withControl(integerControl(V4L2_CID_GAIN, "Gain, Automatic").range(0, 9)));
    Camera const& camera = opened.camera;
    EXPECT_EQ(camera.control(0), camera.control("Gain, Automatic"));
    EXPECT_EQ(camera.invalidControl(), camera.control("gain, automatic"));
    EXPECT_EQ(camera.invalidControl(), camera.control("Gain"));
    EXPECT_EQ(camera.invalidControl(), camera.control("Gain, Automatic "));
    EXPECT_EQ(camera.invalidControl(), camera.control(static_cast<char const*>(nullptr)));
}

TEST(CameraControlSetTest, FindsAControlByItsId)
{
    OpenedCamera const opened(cameraWithEveryControl());
    EXPECT_EQ(opened.camera.controlById(privateBase + 3)->id(), privateBase + 3);
    EXPECT_EQ(opened.camera.invalidControl(), opened.camera.controlById(privateBase + 29));
}

TEST(CameraControlSetTest, HasStandardGettersOnEveryCamera)
{
    for (bool const ofTheVendor : {false, true}) {
        OpenedCamera const opened(cameraWithEveryControl(), ofTheVendor);
        for (NamedGetter const& named : standardGetters) {
            EXPECT_EQ((opened.camera.*named.getter)()->id(), named.id);
        }
    }
}

TEST(CameraControlSetTest, HasVendorGettersOnTheVendorsCameras)
{
    OpenedCamera const opened(cameraWithEveryControl(), true);
    for (NamedGetter const& named : vendorGetters) {
        EXPECT_EQ((opened.camera.*named.getter)()->id(), named.id);
    }
}

TEST(CameraControlSetTest, HasNoVendorControlsByNameOnOtherCameras)
{
    OpenedCamera const opened(cameraWithEveryControl());
    ASSERT_EQ(opened.camera.controlById(privateBase)->id(), privateBase);
    for (NamedGetter const& named : vendorGetters) {
        EXPECT_EQ(opened.camera.invalidControl(), (opened.camera.*named.getter)()) << named.id;
    }
}

TEST(CameraControlSetTest, ReachesPrivateControlsWithoutAGetterByPositionAndName)
{
    OpenedCamera const opened(cameraWithEveryControl(), true);
    std::set<unsigned int> named;
    for (NamedGetter const& one : vendorGetters) {
        named.insert(one.id);
    }
    for (unsigned int const offset : {3u, 18u, 19u, 20u, 22u, 23u, 24u, 25u}) {
        EXPECT_EQ(named.count(privateBase + offset), 0u);
        std::string const name = "V" + std::to_string(offset);
        EXPECT_EQ(opened.camera.control(name.c_str())->id(), privateBase + offset);
    }
}

TEST(CameraControlSetTest, GivesTheInvalidControlForStandardControlsThatAreMissing)
{
    OpenedCamera const opened(aCamera(), true);
    for (NamedGetter const& named : standardGetters) {
        EXPECT_EQ(opened.camera.invalidControl(), (opened.camera.*named.getter)());
    }
    for (NamedGetter const& named : vendorGetters) {
        EXPECT_EQ(opened.camera.invalidControl(), (opened.camera.*named.getter)());
    }
}

} // namespace
