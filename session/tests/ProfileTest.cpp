// SPDX-License-Identifier: MIT
// Profiles taken from cameras, compared and put back.
#include "ChangedControls.h"
#include "ErrorOf.h"
#include "ModelControls.h"
#include "OpenedCamera.h"
#include "ScriptedVendorCamera.h"
#include "VendorRecord.h"

#include "session/Profile.h"

#include <gmock/gmock.h>
#include <linux/videodev2.h>

#include <cerrno>

namespace
{

using namespace ImageAcquisition::Session;
using namespace VirtualCamera;
using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;
using testing::UnorderedElementsAre;
using Result = ControlOutcome::Result;

CameraBuilder withFormats(CameraBuilder camera)
{
    return camera.withFormat("YUYV")
        .withSize(640, 480)
        .withInterval(1, 30)
        .withInterval(1001, 30000)
        .withSize(320, 240)
        .withInterval(1, 30)
        .withFormat("GREY")
        .withSize(8, 8)
        .withInterval(1, 5);
}

CameraBuilder ordinaryCamera()
{
    CameraBuilder camera = withFormats(aCamera());
    addUsualControls(camera);
    return camera;
}

std::vector<std::string> namesIn(Profile const& profile)
{
    std::vector<std::string> names;
    for (auto const& control : profile.controls()) {
        names.push_back(control.first);
    }
    return names;
}

ControlOutcome const& outcomeOf(ProfileReport const& report, std::string const& name)
{
    static ControlOutcome const none{"none", Result::Refused, 0, {}, "not in the report", false};
    for (ControlOutcome const& outcome : report.controls) {
        if (outcome.name == name) {
            return outcome;
        }
    }
    ADD_FAILURE() << name << " is not in the report";
    return none;
}

Profile wishing(std::string const& controls)
{
    return Profile::fromJson(R"({"version": 1, "controls": )" + controls + "}");
}

/// Of the results in a report, how many there are.
long count(ProfileReport const& report, Result result)
{
    return std::count_if(report.controls.begin(), report.controls.end(),
                         [&](ControlOutcome const& outcome) { return outcome.result == result; });
}

/// Takes a profile, changes all of the camera, puts the profile back and takes another.
void expectToComeBack(Camera& camera, int leastChanges, std::string const& otherSelection = {})
{
    Profile const before = Profile::take(camera);
    ASSERT_TRUE(before.compare(camera).isMet());
    EXPECT_EQ(before.compare(camera).text(), "");
    EXPECT_GE(changeAll(camera), leastChanges);
    if (!otherSelection.empty()) {
        camera.select(otherSelection);
        EXPECT_EQ(before.compare(camera).selectionReason, "the format, the size, the rate differs");
    }
    EXPECT_FALSE(before.compare(camera).isMet());
    ProfileReport const report = before.apply(camera);
    EXPECT_TRUE(report.isMet()) << report.text();
    EXPECT_EQ(count(report, Result::Refused) + count(report, Result::Skipped), 0) << report.text();
    EXPECT_EQ(Profile::take(camera).json(), before.json());
    ProfileReport const again = before.apply(camera);
    EXPECT_EQ(static_cast<std::size_t>(count(again, Result::Same)), again.controls.size())
        << again.text();
}

TEST(ProfileTest, HasTheSelectionAndWhatCanBeSet)
{
    OpenedCamera const opened(ordinaryCamera());
    Profile const profile = Profile::take(opened.camera);
    EXPECT_EQ(profile.camera(), "serial:S1");
    EXPECT_EQ(profile.selection().text(), "YUYV 640x480@30");
    // The automatics are on: the values that they choose are theirs.
    std::vector<std::string> const names = namesIn(profile);
    EXPECT_THAT(std::vector(names.begin(), names.begin() + 3),
                UnorderedElementsAre("White Balance, Automatic", "Auto Exposure",
                                     "Focus, Automatic Continuous"));
    EXPECT_THAT(std::vector(names.begin() + 3, names.end()),
                UnorderedElementsAre("Brightness", "Contrast", "Saturation", "Hue", "Gamma", "Gain",
                                     "Power Line Frequency", "Sharpness"));
    EXPECT_THAT(profile.controls(),
                Contains(Pair("Auto Exposure", ControlValue("Aperture Priority Mode"))));
}

TEST(ProfileTest, OfAnOrdinaryCameraComesBack)
{
    OpenedCamera opened(ordinaryCamera());
    expectToComeBack(opened.camera, 14, "GREY");
}

TEST(ProfileTest, OfACameraWhoseAutomaticsAreOffComesBack)
{
    OpenedCamera opened(ordinaryCamera());
    opened.camera["auto_white_balance"] = false;
    opened.camera["auto_exposure"] = "Manual Mode";
    opened.camera["auto_focus"] = false;
    opened.camera["exposure"] = 300;
    opened.camera["focus"] = 77;
    EXPECT_EQ(Profile::take(opened.camera).controls().size(), 14U);
    expectToComeBack(opened.camera, 11, "GREY");
    EXPECT_EQ(opened.video.controlValue(V4L2_CID_EXPOSURE_ABSOLUTE), 300);
}

TEST(ProfileTest, OfTheVendorsPrivateControlsComesBack)
{
    CameraBuilder camera = withFormats(aVendorCamera());
    addUsualControls(camera);
    OpenedCamera opened(camera, recordWithExtensionUnit());
    ASSERT_EQ(opened.camera.controls().size(), 14U + 29U);
    EXPECT_EQ(Profile::take(opened.camera).controls().size(), 11U + 29U);
    for (Control const& control : opened.camera.controls()) {
        change(control);
    }
    expectToComeBack(opened.camera, 20, "GREY");
}

TEST(ProfileTest, OfAControlOfEveryTypeComesBack)
{
    CameraBuilder camera = withFormats(aCamera());
    addControlOfEveryType(camera);
    OpenedCamera opened(camera);
    // What is read-only, write-only, inactive, disabled, a button or grabbed is not changed.
    expectToComeBack(opened.camera, 9);
}

TEST(ProfileTest, SetsAutomaticsBeforeWhatTheyGovern)
{
    OpenedCamera opened(ordinaryCamera());
    ProfileReport const report = wishing(R"({"Exposure Time, Absolute": 300, "Focus, Absolute": 9,
                    "Auto Exposure": "Manual Mode", "Focus, Automatic Continuous": false})")
                                     .apply(opened.camera);
    EXPECT_TRUE(report.isMet()) << report.text();
    ASSERT_EQ(report.controls.size(), 4U);
    EXPECT_EQ(report.controls[0].name, "Auto Exposure");
    EXPECT_EQ(report.controls[1].name, "Focus, Automatic Continuous");
    EXPECT_EQ(count(report, Result::Set), 4);
    EXPECT_EQ(opened.video.controlValue(V4L2_CID_EXPOSURE_ABSOLUTE), 300);
    EXPECT_EQ(opened.video.controlValue(V4L2_CID_FOCUS_ABSOLUTE), 9);
    // None was tried in vain.
    EXPECT_EQ(opened.video.controlWrites(V4L2_CID_EXPOSURE_ABSOLUTE), 1U);
}

TEST(ProfileTest, KnowsAnAutomaticByTheDriversWordToo)
{
    constexpr unsigned int master = V4L2_CID_USER_BASE + 0x1001;
    constexpr unsigned int governed = V4L2_CID_USER_BASE + 0x1002;
    OpenedCamera opened(
        withFormats(aCamera())
            .withControl(integerControl(governed, "Level").range(0, 9).activeOnlyWhen(master, 1))
            .withControl(booleanControl(master, "Self-Acting").withFlags(V4L2_CTRL_FLAG_UPDATE)));
    ProfileReport const report =
        wishing(R"({"Level": 5, "Self-Acting": true})").apply(opened.camera);
    EXPECT_EQ(report.controls[0].name, "Self-Acting");
    EXPECT_TRUE(report.isMet()) << report.text();
}

TEST(ProfileTest, ReleasesWhatIsGovernedByAControlThatLooksLikeNone)
{
    constexpr unsigned int master = V4L2_CID_USER_BASE + 0x1002;
    constexpr unsigned int governed = V4L2_CID_USER_BASE + 0x1001;
    OpenedCamera opened(
        withFormats(aCamera())
            .withControl(integerControl(governed, "Level").range(0, 9).activeOnlyWhen(master, 7))
            .withControl(integerControl(master, "Mode").range(0, 9)));
    ProfileReport const report = wishing(R"({"Level": 5, "Mode": 7})").apply(opened.camera);
    EXPECT_TRUE(report.isMet()) << report.text();
    EXPECT_EQ(outcomeOf(report, "Level").result, Result::Set);
    EXPECT_EQ(opened.video.controlValue(governed), 5);
}

TEST(ProfileTest, SkipsWhatIsInactiveReadOnlyOrNotThere)
{
    CameraBuilder camera = ordinaryCamera();
    camera.withControl(integerControl(V4L2_CID_USER_BASE + 0x1001, "Heat").range(0, 9).readOnly())
        .withControl(integerControl(V4L2_CID_USER_BASE + 0x1002, "Held")
                         .range(0, 9)
                         .withFlags(V4L2_CTRL_FLAG_GRABBED));
    OpenedCamera opened(camera);
    Profile const profile = wishing(
        R"({"Exposure Time, Absolute": 300, "Heat": 5, "Held": 3, "Zoom, Absolute": 1, "Gain": 7})");
    for (ProfileReport const& report :
         {profile.compare(opened.camera), profile.apply(opened.camera)}) {
        EXPECT_EQ(outcomeOf(report, "Exposure Time, Absolute").result, Result::Skipped);
        EXPECT_EQ(outcomeOf(report, "Exposure Time, Absolute").reason, "inactive");
        EXPECT_EQ(outcomeOf(report, "Exposure Time, Absolute").actual, "157");
        EXPECT_EQ(outcomeOf(report, "Heat").result, Result::Skipped);
        EXPECT_EQ(outcomeOf(report, "Heat").reason, "read-only");
        EXPECT_EQ(outcomeOf(report, "Held").result, Result::Skipped);
        EXPECT_EQ(outcomeOf(report, "Held").reason, "grabbed by another program");
        EXPECT_EQ(outcomeOf(report, "Zoom, Absolute").result, Result::Skipped);
        EXPECT_EQ(outcomeOf(report, "Zoom, Absolute").reason, "the camera has no such control");
        EXPECT_EQ(outcomeOf(report, "Gain").result, Result::Set);
    }
    ProfileReport const again = profile.compare(opened.camera);
    EXPECT_TRUE(again.isMet()) << again.text();
    EXPECT_EQ(outcomeOf(again, "Gain").result, Result::Same);
}

TEST(ProfileTest, TellsWhatWasRefusedAndSetsTheRest)
{
    CameraBuilder camera = ordinaryCamera();
    camera.withControl(
        integerControl(V4L2_CID_USER_BASE + 0x1001, "Stubborn").range(0, 9).refusingWrites(EIO));
    OpenedCamera opened(camera);
    ProfileReport const report =
        wishing(R"({"Gain": 101, "Hue": "much", "Stubborn": 5, "Contrast": true,
                    "Auto Exposure": "Night", "Sharpness": 6})")
            .apply(opened.camera);
    EXPECT_FALSE(report.isMet());
    EXPECT_EQ(count(report, Result::Refused), 5) << report.text();
    EXPECT_EQ(outcomeOf(report, "Gain").reason, "101 is outside 0..100");
    EXPECT_EQ(outcomeOf(report, "Hue").reason, "'much' is no number");
    EXPECT_EQ(outcomeOf(report, "Stubborn").reason, "refused by the driver");
    EXPECT_EQ(outcomeOf(report, "Contrast").reason, "'on' is no number");
    EXPECT_EQ(outcomeOf(report, "Auto Exposure").reason, "no such item: 'Night'");
    EXPECT_EQ(outcomeOf(report, "Sharpness").result, Result::Set);
    EXPECT_EQ(opened.video.controlValue(V4L2_CID_SHARPNESS), 6);
    EXPECT_THAT(report.text(),
                HasSubstr("Gain: refused, wanted '101', has '0': 101 is outside 0..100\n"));
    EXPECT_THAT(report.text(), HasSubstr("Sharpness: set, wanted '6'\n"));
}

TEST(ProfileTest, TellsWhatTheCameraRounded)
{
    OpenedCamera opened(withFormats(aCamera()).withControl(
        integerControl(V4L2_CID_GAIN, "Gain").range(0, 100, 10)));
    ProfileReport const report = wishing(R"({"Gain": 41})").apply(opened.camera);
    ControlOutcome const& gain = outcomeOf(report, "Gain");
    EXPECT_EQ(gain.result, Result::Rounded);
    EXPECT_EQ(gain.actual, "40");
    EXPECT_EQ(gain.reason, "the camera made 40 of it");
    EXPECT_FALSE(report.isMet());
    EXPECT_LE(opened.video.controlWrites(V4L2_CID_GAIN), 2U);
}

TEST(ProfileTest, TakesValuesAsAPersonWritesThem)
{
    OpenedCamera opened(ordinaryCamera());
    Profile const profile =
        wishing(R"({"gain": "0x10", "auto_exposure": "manual mode", "auto_focus": 0,
                    "auto_white_balance": "off", "power_line_frequency": 2, "exposure": "300"})");
    ProfileReport const report = profile.apply(opened.camera);
    EXPECT_TRUE(report.isMet()) << report.text();
    EXPECT_EQ(count(report, Result::Set), 6) << report.text();
    EXPECT_EQ(outcomeOf(report, "Gain").actual, "16");
    EXPECT_EQ(outcomeOf(report, "Power Line Frequency").actual, "60 Hz");
    ProfileReport const again = profile.compare(opened.camera);
    EXPECT_EQ(count(again, Result::Same), 6) << again.text();
}

TEST(ProfileTest, SetsWhatCannotBeRead)
{
    constexpr unsigned int id = V4L2_CID_USER_BASE + 0x1001;
    OpenedCamera opened(withFormats(aCamera()).withControl(
        integerControl(id, "Silent").range(0, 9).withFlags(V4L2_CTRL_FLAG_WRITE_ONLY)));
    Profile const profile = wishing(R"({"Silent": 5})");
    EXPECT_EQ(outcomeOf(profile.compare(opened.camera), "Silent").reason, "it cannot be read");
    ProfileReport const report = profile.apply(opened.camera);
    EXPECT_EQ(outcomeOf(report, "Silent").result, Result::Set);
    EXPECT_EQ(outcomeOf(report, "Silent").actual, "");
    EXPECT_TRUE(report.isMet());
    EXPECT_EQ(opened.video.lastControlValueSent(id), 5);
    EXPECT_EQ(opened.video.controlWrites(id), 1U);
}

TEST(ProfileTest, TellsThatTheCameraDoesNotOfferTheSelection)
{
    OpenedCamera opened(ordinaryCamera());
    Profile const profile = Profile::fromJson(
        R"({"version": 1, "selection": {"format": "MJPG"}, "controls": {"Gain": 7}})");
    ProfileReport const report = profile.apply(opened.camera);
    EXPECT_FALSE(report.isMet());
    EXPECT_THAT(report.selectionReason, testing::Not(IsEmpty()));
    EXPECT_EQ(report.actual.text(), "YUYV 640x480@30");
    EXPECT_THAT(report.text(), HasSubstr("selection: wanted 'MJPG', has 'YUYV 640x480@30': "));
    EXPECT_EQ(outcomeOf(report, "Gain").result, Result::Set);
}

TEST(ProfileTest, KeepsARateAsTheFractionThatItIs)
{
    OpenedCamera opened(ordinaryCamera());
    opened.camera.select("@29.97");
    Profile const profile = Profile::fromJson(Profile::take(opened.camera).json());
    EXPECT_EQ(profile.selection().rate, (FrameRate{30000, 1001}));
    std::string const byHand =
        R"({"version": 1, "selection": {"format": "yuyv", "rate": "29.97"}})";
    EXPECT_EQ(Profile::fromJson(byHand).compare(opened.camera).selectionReason, "");
    opened.camera.select("@30");
    EXPECT_EQ(profile.compare(opened.camera).selectionReason, "the rate differs");
    EXPECT_TRUE(profile.apply(opened.camera).isMet());
    EXPECT_EQ(opened.camera.selection().rate, (FrameRate{30000, 1001}));
}

TEST(ProfileTest, ChangesNothingByComparing)
{
    OpenedCamera opened(ordinaryCamera());
    Profile const profile = Profile::fromJson(
        R"({"version": 1, "selection": {"format": "GREY"}, "controls": {"Gain": 7, "Hue": 1}})");
    opened.video.clearLog();
    ProfileReport const report = profile.compare(opened.camera);
    EXPECT_EQ(count(report, Result::Set), 2);
    EXPECT_FALSE(report.isMet());
    EXPECT_EQ(report.selectionReason, "the format differs");
    EXPECT_EQ(opened.video.countOf(VIDIOC_S_CTRL), 0U);
    EXPECT_EQ(opened.video.countOf(VIDIOC_S_FMT), 0U);
}

TEST(ProfileTest, EndsWhenTheCameraIsGone)
{
    OpenedCamera opened(ordinaryCamera());
    Profile const profile = Profile::take(opened.camera);
    opened.video.unplug();
    EXPECT_EQ(errorOf([&] { Profile::take(opened.camera); })->kind(), ErrorKind::Unplugged);
    EXPECT_EQ(errorOf([&] { profile.compare(opened.camera); })->kind(), ErrorKind::Unplugged);
    EXPECT_EQ(errorOf([&] { profile.apply(opened.camera); })->kind(), ErrorKind::Unplugged);
}

TEST(ProfileTest, SurvivesADriverThatFailsAtAnyCall)
{
    Profile const profile = [] {
        OpenedCamera const opened(ordinaryCamera());
        return Profile::take(opened.camera);
    }();
    for (unsigned int const call : {unsigned(VIDIOC_G_CTRL), unsigned(VIDIOC_S_CTRL),
                                    unsigned(VIDIOC_QUERYCTRL), unsigned(VIDIOC_S_FMT)}) {
        for (unsigned int use = 1; use < 12; ++use) {
            OpenedCamera opened(ordinaryCamera());
            changeAll(opened.camera);
            opened.camera.select("GREY");
            opened.video.fail(call, EIO, use);
            errorOf([&] { profile.apply(opened.camera); });
            opened.video.stopFailing();
            ProfileReport const report = profile.apply(opened.camera);
            EXPECT_TRUE(report.isMet()) << call << ", " << use << "\n" << report.text();
        }
    }
}

TEST(ProfileTest, NamesEachResult)
{
    EXPECT_STREQ(toText(Result::Same), "same");
    EXPECT_STREQ(toText(Result::Set), "set");
    EXPECT_STREQ(toText(Result::Rounded), "rounded");
    EXPECT_STREQ(toText(Result::Skipped), "skipped");
    EXPECT_STREQ(toText(Result::Refused), "refused");
    EXPECT_STREQ(toText(static_cast<Result>(99)), "unknown");
}

} // namespace
