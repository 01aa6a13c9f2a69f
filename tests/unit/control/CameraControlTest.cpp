// SPDX-License-Identifier: MIT
#include "control/CameraControl.h"
#include "CameraWithControls.h"

#include <gtest/gtest.h>
#include <linux/videodev2.h>

#include <cerrno>
#include <cstring>

using namespace ImageAcquisition;
using namespace VirtualCamera;

namespace
{

using Accessor = bool (ICameraControl::*)() const;

struct FlagAndAccessor
{
    unsigned int flag;
    Accessor accessor;
};

constexpr FlagAndAccessor allFlags[] = {
    {0x0001, &ICameraControl::isDisabled},  {0x0002, &ICameraControl::isGrabbed},
    {0x0004, &ICameraControl::isReadOnly},  {0x0008, &ICameraControl::needsClassUpdate},
    {0x0010, &ICameraControl::isInactive},  {0x0020, &ICameraControl::bestAsSlider},
    {0x0040, &ICameraControl::isWriteOnly}, {0x0080, &ICameraControl::isVolatile},
    {0x0100, &ICameraControl::hasPayload},  {0x0200, &ICameraControl::executesOnWrite},
};

/// The raw transfers of a control that need no type.
class CameraControlTest : public testing::Test
{
protected:
    CameraControl& raw(unsigned int id) const
    {
        return dynamic_cast<CameraControl&>(m_opened.control(id));
    }

    void initWithFlags(CameraControl& control, unsigned int flags) const
    {
        v4l2_queryctrl record{};
        record.id = control.id();
        record.flags = flags;
        control.init(record);
    }

    /// The only call was an extended one, of this class, for the gain alone.
    void expectExtendedCall(unsigned long request, unsigned int controlClass, long long value) const
    {
        CallRecord const call = m_opened.onlyCall();
        EXPECT_EQ(CallId(request), call.call);
        EXPECT_EQ(call.controlClass, controlClass);
        ASSERT_EQ(call.controls.size(), 1u);
        EXPECT_EQ(call.controls[0].id, V4L2_CID_GAIN);
        EXPECT_EQ(call.controls[0].size, 0u);
        EXPECT_EQ(call.controls[0].value, value);
    }

    CameraWithControls m_opened{{
        integerControl(V4L2_CID_BRIGHTNESS, "Brightness").range(-100, 100).byDefault(7),
        integerControl(V4L2_CID_CONTRAST, "Contrast").refusingReads(EIO).refusingWrites(EBUSY),
        integer64Control(V4L2_CID_GAIN, "Gain").range(-0x7000000000LL, 0x7000000000LL).byDefault(5),
    }};
};

/// Says something else than it was built with, to show who is asked.
class Disguised : public CameraControl
{
public:
    using CameraControl::CameraControl;
    Type type() const override { return String; }
    Family family() const override { return AutoControl; }
};

TEST_F(CameraControlTest, KeepsWhatItWasBuiltWith)
{
    std::string name = "Sharpness, or so";
    CameraControl const control(ICameraControl::Boolean, m_opened.camera, 0x0098091B, name.c_str());
    name.clear();
    EXPECT_EQ(control.id(), 0x0098091Bu);
    EXPECT_EQ(control.type(), ICameraControl::Boolean);
    EXPECT_STREQ(control.name(), "Sharpness, or so");
    EXPECT_STREQ(control.typeString(), "Boolean");
}

TEST_F(CameraControlTest, HasNeitherFlagsNorFamilyBeforeItIsInitialised)
{
    CameraControl const control(ICameraControl::Int32, m_opened.camera, V4L2_CID_BRIGHTNESS, "B");
    for (FlagAndAccessor const& row : allFlags) {
        EXPECT_FALSE((control.*row.accessor)()) << row.flag;
    }
    EXPECT_EQ(control.family(), 0x80000000u);
    EXPECT_STREQ(control.familyString(), "Unknown");
}

TEST_F(CameraControlTest, EachFlagSpeaksThroughItsOwnAccessorOnly)
{
    for (FlagAndAccessor const& set : allFlags) {
        CameraControl control(ICameraControl::Int32, m_opened.camera, V4L2_CID_BRIGHTNESS, "B");
        initWithFlags(control, set.flag);
        for (FlagAndAccessor const& asked : allFlags) {
            EXPECT_EQ((control.*asked.accessor)(), asked.flag == set.flag)
                << set.flag << " set, " << asked.flag << " asked";
        }
    }
}

TEST_F(CameraControlTest, FlagsOfAReadOnlySliderAreReadOnlyAndSlider)
{
    CameraControl control(ICameraControl::Int32, m_opened.camera, V4L2_CID_BRIGHTNESS, "B");
    initWithFlags(control, 0x0024);
    for (FlagAndAccessor const& row : allFlags) {
        bool const wanted = row.flag == 0x0004 || row.flag == 0x0020;
        EXPECT_EQ((control.*row.accessor)(), wanted) << row.flag;
    }
}

TEST_F(CameraControlTest, BrightnessIsOfImageQualityWithTheTextAtItsNumber)
{
    EXPECT_EQ(m_opened.control(V4L2_CID_BRIGHTNESS).family(), ICameraControl::ImageQuality);
    EXPECT_STREQ(m_opened.control(V4L2_CID_BRIGHTNESS).familyString(), "FM Rx");
}

TEST_F(CameraControlTest, WarnsOnceOfAnIdWithoutFamily)
{
    testing::internal::CaptureStderr();
    CameraWithControls const zooming({integerControl(V4L2_CID_ZOOM_ABSOLUTE, "Zoom")});
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "WARNING: Control with id 0x009a090d as no family\n");
    EXPECT_EQ(zooming.control(0x009A090D).family(), 0x80000000u);
    EXPECT_STREQ(zooming.control(0x009A090D).familyString(), "Unknown");
}

TEST_F(CameraControlTest, SaysNothingOfAnIdWithAFamily)
{
    testing::internal::CaptureStderr();
    CameraWithControls const second(
        aCamera("/dev/video1").withControl(integerControl(V4L2_CID_FOCUS_ABSOLUTE, "Focus")));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(CameraControlTest, TextsFollowTheVirtualTypeAndFamily)
{
    Disguised const control(ICameraControl::Int32, m_opened.camera, V4L2_CID_BRIGHTNESS, "B");
    EXPECT_STREQ(control.typeString(), "String");
    EXPECT_STREQ(static_cast<ICameraControl const&>(control).familyString(), "Camera");
}

TEST_F(CameraControlTest, TypeOutsideTheTableIsAnUnknownType)
{
    for (int const number : {0, 12, -1}) {
        CameraControl const control(static_cast<ICameraControl::Type>(number), m_opened.camera, 1,
                                    "");
        EXPECT_STREQ(control.typeString(), "UnknownType");
    }
}

TEST_F(CameraControlTest, UpdateStateTakesOverThePresentFlags)
{
    ICameraControl& control = m_opened.control(V4L2_CID_BRIGHTNESS);
    m_opened.node.setControlFlags(V4L2_CID_BRIGHTNESS, V4L2_CTRL_FLAG_INACTIVE);
    EXPECT_FALSE(control.isInactive());
    EXPECT_TRUE(control.updateState());
    EXPECT_TRUE(control.isInactive());

    m_opened.node.setControlFlags(V4L2_CID_BRIGHTNESS, V4L2_CTRL_FLAG_GRABBED);
    EXPECT_TRUE(control.updateState());
    EXPECT_FALSE(control.isInactive());
    EXPECT_TRUE(control.isGrabbed());
}

TEST_F(CameraControlTest, UpdateStateAsksForItsOwnIdWithAnOtherwiseEmptyRecord)
{
    m_opened.control(V4L2_CID_BRIGHTNESS).updateState();
    CallRecord const call = m_opened.onlyCall();
    EXPECT_EQ(CallId(VIDIOC_QUERYCTRL), call.call);
    v4l2_queryctrl wanted{};
    wanted.id = V4L2_CID_BRIGHTNESS;
    auto const sent = call.argument<v4l2_queryctrl>();
    EXPECT_EQ(std::memcmp(&wanted, &sent, sizeof wanted), 0);
}

TEST_F(CameraControlTest, UpdateStateKeepsTheOldFlagsWhenTheDriverDoesNotAnswer)
{
    ICameraControl& control = m_opened.control(V4L2_CID_BRIGHTNESS);
    m_opened.node.setControlFlags(V4L2_CID_BRIGHTNESS, V4L2_CTRL_FLAG_INACTIVE);
    control.updateState();
    m_opened.node.setControlFlags(V4L2_CID_BRIGHTNESS, 0);
    m_opened.node.fail(VIDIOC_QUERYCTRL, EIO);
    testing::internal::CaptureStderr();
    EXPECT_TRUE(control.updateState());
    EXPECT_TRUE(control.isInactive());
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(CameraControlTest, UpdateStateLeavesFamilyNameAndTypeAlone)
{
    ICameraControl& control = m_opened.control(V4L2_CID_BRIGHTNESS);
    control.updateState();
    EXPECT_EQ(control.family(), ICameraControl::ImageQuality);
    EXPECT_STREQ(control.name(), "Brightness");
    EXPECT_EQ(control.type(), ICameraControl::Int32);
}

TEST_F(CameraControlTest, ReadsAndWritesNeverAskForTheFlags)
{
    raw(V4L2_CID_BRIGHTNESS).setControlValue(1);
    raw(V4L2_CID_BRIGHTNESS).inquireControlValue();
    raw(V4L2_CID_GAIN).setControlValueExt(1);
    raw(V4L2_CID_GAIN).inquireControlValueExt();
    EXPECT_EQ(m_opened.node.countOf(VIDIOC_QUERYCTRL), 0u);
}

TEST_F(CameraControlTest, PlainReadSendsIdAndZero)
{
    m_opened.node.setControlValue(V4L2_CID_BRIGHTNESS, -42);
    EXPECT_EQ(raw(V4L2_CID_BRIGHTNESS).inquireControlValue(), -42);
    CallRecord const call = m_opened.onlyCall();
    EXPECT_EQ(CallId(VIDIOC_G_CTRL), call.call);
    EXPECT_EQ(call.argument<v4l2_control>().id, V4L2_CID_BRIGHTNESS);
    EXPECT_EQ(call.argument<v4l2_control>().value, 0);
    EXPECT_EQ(m_opened.camera.fileDescriptor(), call.descriptor);
}

TEST_F(CameraControlTest, PlainReadIsNeverAnsweredFromMemory)
{
    for (int const value : {3, 4, 5}) {
        m_opened.node.setControlValue(V4L2_CID_BRIGHTNESS, value);
        EXPECT_EQ(raw(V4L2_CID_BRIGHTNESS).inquireControlValue(), value);
    }
}

TEST_F(CameraControlTest, FailedPlainReadGivesZero)
{
    EXPECT_EQ(raw(V4L2_CID_CONTRAST).inquireControlValue(), 0);
    EXPECT_EQ(CallId(VIDIOC_G_CTRL), m_opened.onlyCall().call);
}

TEST_F(CameraControlTest, PlainWriteSendsIdAndValue)
{
    EXPECT_TRUE(raw(V4L2_CID_BRIGHTNESS).setControlValue(-99));
    CallRecord const call = m_opened.onlyCall();
    EXPECT_EQ(CallId(VIDIOC_S_CTRL), call.call);
    EXPECT_EQ(call.argument<v4l2_control>().id, V4L2_CID_BRIGHTNESS);
    EXPECT_EQ(call.argument<v4l2_control>().value, -99);
    EXPECT_EQ(m_opened.node.controlValue(V4L2_CID_BRIGHTNESS), -99);
}

TEST_F(CameraControlTest, RefusedPlainWriteIsFalseAndLeavesErrno)
{
    errno = 0;
    EXPECT_FALSE(raw(V4L2_CID_CONTRAST).setControlValue(1));
    EXPECT_EQ(errno, EBUSY);
    EXPECT_EQ(m_opened.node.countOf(Call::Ioctl), 1u);
}

TEST_F(CameraControlTest, InterruptedTransfersAreRepeated)
{
    m_opened.node.setControlValue(V4L2_CID_BRIGHTNESS, 12);
    m_opened.node.fail(VIDIOC_G_CTRL, EINTR);
    EXPECT_EQ(raw(V4L2_CID_BRIGHTNESS).inquireControlValue(), 12);
    EXPECT_EQ(m_opened.node.countOf(VIDIOC_G_CTRL), 2u);
    m_opened.node.fail(VIDIOC_S_EXT_CTRLS, EINTR);
    EXPECT_TRUE(raw(V4L2_CID_GAIN).setControlValueExt(13));
    EXPECT_EQ(m_opened.node.countOf(VIDIOC_S_EXT_CTRLS), 2u);
}

TEST_F(CameraControlTest, ExtendedReadNamesTheClassAndGivesSixtyFourBits)
{
    m_opened.node.setControlValue(V4L2_CID_GAIN, -0x123456789ALL);
    EXPECT_EQ(raw(V4L2_CID_GAIN).inquireControlValueExt(), -0x123456789ALL);
    expectExtendedCall(VIDIOC_G_EXT_CTRLS, 0x00980000u, 0);
}

TEST_F(CameraControlTest, ExtendedWriteNamesNoClass)
{
    EXPECT_TRUE(raw(V4L2_CID_GAIN).setControlValueExt(0x6543210FEDLL));
    expectExtendedCall(VIDIOC_S_EXT_CTRLS, 0u, 0x6543210FEDLL);
    EXPECT_EQ(m_opened.node.controlValue(V4L2_CID_GAIN), 0x6543210FEDLL);
}

TEST_F(CameraControlTest, ExtendedRecordsAreEmptyBesidesTheirOneControl)
{
    raw(V4L2_CID_GAIN).inquireControlValueExt();
    raw(V4L2_CID_GAIN).setControlValueExt(1);
    for (CallRecord const& call : m_opened.node.calls()) {
        auto const sent = call.argument<v4l2_ext_controls>();
        EXPECT_EQ(sent.count, 1u);
        EXPECT_EQ(sent.error_idx, 0u);
        EXPECT_EQ(sent.request_fd, 0);
        EXPECT_EQ(sent.reserved[0], 0u);
    }
}

TEST_F(CameraControlTest, FailedExtendedTransfersGiveZeroAndFalse)
{
    m_opened.node.setControlValue(V4L2_CID_GAIN, 77);
    m_opened.node.fail(VIDIOC_G_EXT_CTRLS, EIO);
    EXPECT_EQ(raw(V4L2_CID_GAIN).inquireControlValueExt(), 0);
    m_opened.node.fail(VIDIOC_S_EXT_CTRLS, ENOSPC);
    errno = 0;
    EXPECT_FALSE(raw(V4L2_CID_GAIN).setControlValueExt(78));
    EXPECT_EQ(errno, ENOSPC);
}

TEST_F(CameraControlTest, ExtendedTransferOfAStandardIdIsNotAskedAgainWhenInvalid)
{
    m_opened.node.fail(VIDIOC_G_EXT_CTRLS, EINVAL);
    m_opened.node.fail(VIDIOC_S_EXT_CTRLS, EINVAL);
    EXPECT_EQ(raw(V4L2_CID_GAIN).inquireControlValueExt(), 0);
    EXPECT_FALSE(raw(V4L2_CID_GAIN).setControlValueExt(1));
    EXPECT_EQ(m_opened.node.countOf(Call::Ioctl), 2u);
}

} // namespace
