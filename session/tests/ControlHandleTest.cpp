// SPDX-License-Identifier: MIT
// A camera's controls by name, with values of any form.
#include "ErrorOf.h"
#include "OpenedCamera.h"

#include <ICameraControlBoolean.h>
#include <ICameraControlNumeric.h>
#include <gmock/gmock.h>
#include <linux/videodev2.h>

#include <algorithm>
#include <cerrno>
#include <thread>

namespace
{

using namespace ImageAcquisition::Session;
using testing::ElementsAre;
using testing::HasSubstr;
using VirtualCamera::aCamera;

constexpr unsigned int integer64Id = V4L2_CID_USER_BASE + 0x1001;
constexpr unsigned int textId = V4L2_CID_USER_BASE + 0x1002;
constexpr unsigned int maskId = V4L2_CID_USER_BASE + 0x1003;
constexpr unsigned int buttonId = V4L2_CID_USER_BASE + 0x1004;
constexpr unsigned int numbersId = V4L2_CID_USER_BASE + 0x1005;

VirtualCamera::CameraBuilder cameraWithControls()
{
    using namespace VirtualCamera;
    return aCamera()
        .withControl(integerControl(V4L2_CID_GAIN, "Gain").range(0, 100, 2).byDefault(10))
        .withControl(booleanControl(V4L2_CID_FOCUS_AUTO, "Focus, Automatic Continuous"))
        .withControl(menuControl(V4L2_CID_EXPOSURE_AUTO, "Auto Exposure")
                         .withItem(1, "Manual Mode")
                         .withItem(3, "Aperture Priority Mode")
                         .byDefault(3))
        .withControl(integerControl(V4L2_CID_EXPOSURE_ABSOLUTE, "Exposure Time, Absolute")
                         .range(1, 5000)
                         .byDefault(200)
                         .activeOnlyWhen(V4L2_CID_EXPOSURE_AUTO, 1))
        .withControl(integerControl(V4L2_CID_SHARPNESS, "Sharpness").range(0, 9).readOnly())
        .withControl(integer64Control(integer64Id, "Wide"))
        .withControl(stringControl(textId, "Label").range(2, 4).currently("abc"))
        .withControl(bitMaskControl(maskId, "Bits").range(0, 0xff).byDefault(5))
        .withControl(buttonControl(buttonId, "Reset All"))
        .withControl(integerMenuControl(numbersId, "Link Frequency")
                         .withItem(0, std::int64_t{1000})
                         .withItem(1, std::int64_t{2000}));
}

class ControlHandleTest : public testing::Test
{
protected:
    template <typename Action>
    static std::string refusal(Action const& action)
    {
        auto const error = errorOf(action);
        return error ? std::string(toText(error->kind())) + ": " + error->reason() : "none";
    }
    std::string refusalOf(std::string const& name, ControlValue const& value) const
    {
        return refusal([&] { m_camera[name] = value; });
    }

    OpenedCamera m_opened{cameraWithControls()};
    VirtualCamera::InstalledCamera& m_video = m_opened.video;
    Camera& m_camera = m_opened.camera;
};

TEST_F(ControlHandleTest, IsFoundByTheDriversNameTheShortNameAndThePurpose)
{
    for (char const* const name :
         {"Exposure Time, Absolute", "exposure_time_absolute", "exposure"}) {
        EXPECT_EQ(m_camera[name].name(), "Exposure Time, Absolute") << name;
    }
    EXPECT_EQ(m_camera["auto_focus"].name(), "Focus, Automatic Continuous");
    EXPECT_EQ(m_camera["gain"].shortName(), "gain");
    EXPECT_EQ(m_camera["gain"].id(), static_cast<unsigned int>(V4L2_CID_GAIN));
}

TEST_F(ControlHandleTest, IsSuggestedByNearbyNames)
{
    auto const error = errorOf([&] { m_camera["exposure_tme"]; });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->kind(), ErrorKind::NotFound);
    EXPECT_THAT(error->hint(), HasSubstr("nearest: "));
    EXPECT_THAT(error->hint(), HasSubstr("auto_exposure"));
    EXPECT_THAT(errorOf([&] { m_camera["gian"]; })->hint(), HasSubstr("nearest: gain"));
    EXPECT_THAT(errorOf([&] { m_camera["absolute"]; })->hint(),
                HasSubstr("nearest: exposure_time_absolute"));
    EXPECT_EQ(errorOf([&] { m_camera["hue"]; })->kind(), ErrorKind::NotFound)
        << "a purpose that the camera has no control for";
}

TEST_F(ControlHandleTest, ListsAllOfThem)
{
    std::vector<std::string> names;
    for (Control const& control : m_camera.controls()) {
        names.push_back(control.shortName());
    }
    EXPECT_EQ(names.size(), 10u);
    EXPECT_THAT(names, testing::IsSupersetOf({"gain", "auto_exposure", "reset_all"}));
}

TEST_F(ControlHandleTest, TakesNumbersBooleansTextsAndLabels)
{
    m_camera["gain"] = 42;
    EXPECT_EQ(m_video.controlValue(V4L2_CID_GAIN), 42);
    m_camera["gain"] = "0x10";
    EXPECT_EQ(m_video.controlValue(V4L2_CID_GAIN), 16);
    m_camera["auto_focus"] = true;
    EXPECT_EQ(m_video.controlValue(V4L2_CID_FOCUS_AUTO), 1);
    m_camera["auto_focus"] = "off";
    EXPECT_EQ(m_video.controlValue(V4L2_CID_FOCUS_AUTO), 0);
    m_camera["auto_exposure"] = "manual mode";
    EXPECT_EQ(m_video.controlValue(V4L2_CID_EXPOSURE_AUTO), 1);
    m_camera["auto_exposure"] = 1;
    EXPECT_EQ(m_video.controlValue(V4L2_CID_EXPOSURE_AUTO), 3) << "the item at position 1";
    m_camera["label"] = "wxyz";
    EXPECT_EQ(m_video.controlText(textId), "wxyz");
    m_camera["bits"] = 0x81u;
    EXPECT_EQ(m_video.controlValue(maskId), 0x81);
    m_camera["link_frequency"] = 1;
    EXPECT_EQ(m_video.controlValue(numbersId), 1);
}

TEST_F(ControlHandleTest, TellsTheValueInTheFormOfTheControl)
{
    EXPECT_EQ(m_camera["gain"].value(), ControlValue(10));
    EXPECT_EQ(m_camera["auto_focus"].value(), ControlValue(false));
    EXPECT_EQ(m_camera["auto_exposure"].value(), ControlValue("Aperture Priority Mode"));
    EXPECT_EQ(m_camera["auto_exposure"].number(), 1);
    EXPECT_EQ(m_camera["label"].value(), ControlValue("abc"));
    EXPECT_EQ(m_camera["bits"].value(), ControlValue(5));
    EXPECT_EQ(m_camera["gain"].value().text(), "10");
}

TEST_F(ControlHandleTest, TellsTypeRangeAndItems)
{
    EXPECT_EQ(m_camera["gain"].type(), ControlType::Number);
    EXPECT_EQ(m_camera["gain"].minimum(), 0);
    EXPECT_EQ(m_camera["gain"].maximum(), 100);
    EXPECT_EQ(m_camera["gain"].step(), 2);
    EXPECT_EQ(m_camera["label"].type(), ControlType::Text);
    EXPECT_EQ(m_camera["label"].maximum(), 4);
    EXPECT_EQ(m_camera["auto_focus"].type(), ControlType::Switch);
    EXPECT_EQ(m_camera["bits"].type(), ControlType::BitMask);
    EXPECT_EQ(m_camera["reset_all"].type(), ControlType::Button);
    EXPECT_THAT(m_camera["auto_exposure"].items(),
                ElementsAre("Manual Mode", "Aperture Priority Mode"));
    EXPECT_EQ(m_camera["link_frequency"].type(), ControlType::Menu);
    EXPECT_THAT(m_camera["link_frequency"].items(), testing::IsEmpty());
    EXPECT_THAT(m_camera["gain"].items(), testing::IsEmpty());
}

TEST_F(ControlHandleTest, RefusesValuesWithTheirReason)
{
    EXPECT_EQ(refusalOf("gain", 101), "refused: 101 is outside 0..100");
    EXPECT_EQ(refusalOf("gain", "much"), "bad request: 'much' is no number");
    EXPECT_EQ(refusalOf("gain", true), "bad request: 'on' is no number");
    EXPECT_EQ(refusalOf("auto_focus", 2), "bad request: '2' is neither on nor off");
    EXPECT_EQ(refusalOf("auto_exposure", "Auto"), "bad request: no such item: 'Auto'");
    EXPECT_EQ(errorOf([&] { m_camera["auto_exposure"] = 2; })->hint(),
              "it has 'Manual Mode', 'Aperture Priority Mode'");
    EXPECT_EQ(refusalOf("label", "abcde"), "refused: its length 5 is outside 2..4");
    EXPECT_EQ(refusalOf("sharpness", 3), "refused: read-only");
    EXPECT_EQ(refusalOf("reset_all", 1), "bad request: it is a button: give its name alone");
    EXPECT_EQ(refusal([&] { m_camera["gain"].press(); }),
              "bad request: it needs a value: NAME=VALUE");
    EXPECT_EQ(m_video.controlValue(V4L2_CID_GAIN), 10);
}

TEST_F(ControlHandleTest, AsksForTheStateBeforeItSets)
{
    EXPECT_EQ(refusalOf("exposure", 300), "refused: inactive");
    EXPECT_EQ(m_camera["exposure"].refusal(300), "inactive");
    EXPECT_TRUE(m_camera["exposure"].state().inactive);
    Control const exposure = m_camera["exposure"];
    m_camera["auto_exposure"] = "Manual Mode";
    EXPECT_EQ(exposure.refusal(300), "");
    EXPECT_FALSE(exposure.state().inactive);
    exposure = 300;
    EXPECT_EQ(m_video.controlValue(V4L2_CID_EXPOSURE_ABSOLUTE), 300);
}

TEST_F(ControlHandleTest, PressesButtons)
{
    m_camera["reset_all"].press();
    EXPECT_EQ(m_video.controlWrites(buttonId), 1u);
    EXPECT_EQ(refusal([&] { m_camera["reset_all"].value(); }), "refused: it is a button");
}

TEST_F(ControlHandleTest, TellsWhatTheDriverRefused)
{
    m_video.fail(VIDIOC_S_CTRL, EIO);
    auto const error = errorOf([&] { m_camera["gain"] = 20; });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->kind(), ErrorKind::Refused);
    EXPECT_EQ(error->operation(), "set Gain to '20'");
    EXPECT_EQ(error->reason(), "refused by the driver");
    EXPECT_EQ(error->systemError(), EIO);
    EXPECT_EQ(error->node(), "/dev/video0");
}

TEST_F(ControlHandleTest, TellsAFailedReadingFromAZero)
{
    m_camera["gain"] = 0;
    EXPECT_EQ(m_camera["gain"].value(), ControlValue(0));
    m_video.failFrom(VIDIOC_G_CTRL, EIO);
    EXPECT_EQ(refusal([&] { m_camera["gain"].value(); }), "refused: the camera did not answer");
}

TEST_F(ControlHandleTest, TellsThatTheCameraIsGone)
{
    Control const gain = m_camera["gain"];
    m_video.unplug();
    EXPECT_EQ(errorOf([&] { gain.set(3); })->kind(), ErrorKind::Unplugged);
    EXPECT_EQ(errorOf([&] { gain.set(3); })->reason(), "the camera is gone");
    EXPECT_EQ(errorOf([&] { gain.value(); })->kind(), ErrorKind::Unplugged);
}

TEST_F(ControlHandleTest, KeepsTheCameraOpen)
{
    Control const gain = [] {
        static VirtualCamera::InstalledCamera const other =
            VirtualCamera::CameraBuilder("/dev/video1")
                .withControl(VirtualCamera::integerControl(V4L2_CID_GAIN, "Gain").range(0, 9))
                .install();
        DeviceStub record;
        record.node = "/dev/video1";
        return Camera::open(Found(record))["gain"];
    }();
    gain.set(7);
    EXPECT_EQ(gain.number(), 7);
}

TEST_F(ControlHandleTest, MayBeUsedByManyThreads)
{
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([this, number] {
            for (int round = 0; round < 50; ++round) {
                m_camera["gain"] = number;
                EXPECT_LE(m_camera["gain"].number(), 4);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

TEST_F(ControlHandleTest, IsVisitedByItsTypedInterface)
{
    auto const describe = [](auto* control) -> std::string {
        using Interface = std::remove_pointer_t<decltype(control)>;
        if constexpr (std::is_same_v<Interface, ImageAcquisition::ICameraControlNumeric<int>>) {
            return "number up to " + std::to_string(control->maximum());
        } else if constexpr (std::is_same_v<Interface, ImageAcquisition::ICameraControlBoolean>) {
            return "switch";
        } else {
            return "something else";
        }
    };
    EXPECT_EQ(std::visit(describe, m_camera["gain"].typed()), "number up to 100");
    EXPECT_EQ(std::visit(describe, m_camera["auto_focus"].typed()), "switch");
    EXPECT_EQ(std::visit(describe, m_camera["label"].typed()), "something else");
}

TEST_F(ControlHandleTest, IsTheFirstOfThoseWithOneName)
{
    OpenedCamera const opened(
        aCamera()
            .withControl(VirtualCamera::integerControl(V4L2_CID_PAN_ABSOLUTE, "Pan").range(0, 9))
            .withControl(VirtualCamera::integerControl(V4L2_CID_PAN_SPEED, "Pan").range(0, 9)));
    std::vector<unsigned int> ids;
    for (Control const& control : opened.camera.controls()) {
        ids.push_back(control.name() == "Pan" ? control.id() : 0);
    }
    ids.erase(std::remove(ids.begin(), ids.end(), 0u), ids.end());
    ASSERT_EQ(ids.size(), 2u);
    EXPECT_EQ(opened.camera["Pan"].id(), ids.front());
    EXPECT_EQ(opened.camera["pan"].id(), ids.front());
}

TEST_F(ControlHandleTest, IsAmbiguousWhereAShortFormFitsSeveral)
{
    OpenedCamera const opened(
        aCamera()
            .withControl(VirtualCamera::integerControl(V4L2_CID_GAIN, "Gain, Red").range(0, 9))
            .withControl(
                VirtualCamera::integerControl(V4L2_CID_BRIGHTNESS, "Gain (Red)").range(0, 9)));
    auto const error = errorOf([&] { opened.camera["gain_red"]; });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->kind(), ErrorKind::Ambiguous);
    EXPECT_EQ(opened.camera["Gain, Red"].name(), "Gain, Red");
}

} // namespace
