// SPDX-License-Identifier: MIT
#include "CameraWithControls.h"
#include "ScriptedVendorCamera.h"
#include "VendorRecord.h"
#include "control/ZorvaneExtensionUnit.h"

#include <gtest/gtest.h>
#include <linux/usb/video.h>
#include <linux/uvcvideo.h>
#include <linux/videodev2.h>

#include <cerrno>
#include <cstring>

using namespace ImageAcquisition;
using namespace VirtualCamera;

namespace
{

using Unit = ZorvaneExtensionUnit;

/// A text in a field whose rest is zero, as a zeroed record has it.
template <std::size_t size>
std::string fieldText(__u8 const (&field)[size])
{
    std::string const whole(reinterpret_cast<char const*>(field), size);
    std::size_t const end = whole.find('\0');
    EXPECT_NE(end, std::string::npos) << "no zero in the field";
    EXPECT_EQ(whole.find_first_not_of('\0', end), std::string::npos) << "something after the zero";
    return whole.substr(0, end);
}

void expectMapping(ExpectedMapping const& expected, ControlMapping const& received)
{
    SCOPED_TRACE(expected.name);
    uvc_xu_control_mapping const& mapping = received.mapping;
    __u8 const guid[16] = {1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(mapping.id, expected.id);
    EXPECT_EQ(fieldText(mapping.name), expected.name);
    EXPECT_EQ(std::memcmp(guid, mapping.entity, sizeof guid), 0);
    EXPECT_EQ(mapping.selector, expected.selector);
    EXPECT_EQ(mapping.size, expected.size);
    EXPECT_EQ(mapping.offset, expected.offset);
    EXPECT_EQ(mapping.v4l2_type, expected.v4l2Type);
    EXPECT_EQ(mapping.data_type, expected.dataType);
    for (__u32 const reserved : mapping.reserved) {
        EXPECT_EQ(reserved, 0u);
    }
    EXPECT_EQ(expected.menu.size(), mapping.menu_count);
    ASSERT_EQ(expected.menu.size(), received.menu.size());
    for (std::size_t item = 0; item < expected.menu.size(); ++item) {
        EXPECT_EQ(received.menu[item].value, expected.menu[item].value);
        EXPECT_EQ(fieldText(received.menu[item].name), expected.menu[item].name);
    }
}

/// Unlike CameraWithControls it logs what the opening calls.
struct OpenedVendorCamera
{
    OpenedVendorCamera() { EXPECT_TRUE(camera.init()); }

    InstalledCamera const node = aVendorCamera().install();
    DeviceStub const record = recordWithExtensionUnit();
    Camera camera{&record};
};

TEST(ExtensionUnitTest, DriverReceivesAllMappingsInOrderFieldByField)
{
    CameraWithControls const opened(aVendorCamera(), CameraWithControls::Maker::Vendor);
    std::vector<ControlMapping> const mappings = opened.node.mappings();
    std::vector<ExpectedMapping> const& table = expectedMappings();
    ASSERT_EQ(table.size(), 29u);
    ASSERT_EQ(table.size(), mappings.size());
    for (std::size_t row = 0; row < table.size(); ++row) {
        expectMapping(table[row], mappings[row]);
        EXPECT_EQ(mappings[row].error, 0) << table[row].name;
    }
}

TEST(ExtensionUnitTest, MappingsWithoutMenuPointToNone)
{
    OpenedVendorCamera const opened;
    std::vector<CallRecord> const calls = opened.node.calls(UVCIOC_CTRL_MAP);
    ASSERT_EQ(calls.size(), 29u);
    for (CallRecord const& call : calls) {
        auto const sent = call.argument<uvc_xu_control_mapping>();
        EXPECT_EQ(sent.menu_count != 0, sent.menu_info != nullptr) << sent.name;
        EXPECT_EQ(opened.camera.fileDescriptor(), call.descriptor);
    }
}

TEST(ExtensionUnitTest, MappingsComeBeforeTheControlsAreListed)
{
    OpenedVendorCamera const opened;
    bool listed = false;
    for (CallRecord const& call : opened.node.calls(Call::Ioctl)) {
        listed = listed || call.call == CallId(VIDIOC_QUERYCTRL);
        EXPECT_FALSE(listed && call.call == CallId(UVCIOC_CTRL_MAP));
    }
    EXPECT_TRUE(listed);
}

TEST(ExtensionUnitTest, CamerasOfOtherMakersGetNoMappings)
{
    CameraWithControls const opened(aVendorCamera());
    EXPECT_TRUE(opened.node.mappings().empty());
    EXPECT_EQ(opened.camera.controlNumber(), 0);
}

TEST(ExtensionUnitTest, SecondRoundIsRefusedByTheDriverAndSaysNothing)
{
    CameraWithControls const opened(aVendorCamera(), CameraWithControls::Maker::Vendor);
    testing::internal::CaptureStderr();
    Unit const second(opened.camera.fileDescriptor());
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    std::vector<ControlMapping> const mappings = opened.node.mappings();
    ASSERT_EQ(mappings.size(), 58u);
    for (std::size_t row = 29; row < mappings.size(); ++row) {
        EXPECT_EQ(mappings[row].error, EEXIST);
        expectMapping(expectedMappings()[row - 29], mappings[row]);
    }
}

TEST(ExtensionUnitTest, CameraOpenedAgainHasItsControlsStill)
{
    CameraWithControls const first(aVendorCamera(), CameraWithControls::Maker::Vendor);
    DeviceStub const record = recordWithExtensionUnit();
    Camera second(&record);
    ASSERT_TRUE(second.init());
    EXPECT_EQ(second.controlNumber(), 29);
    EXPECT_EQ(second.lightModeControl()->id(), 0x08000000u);
}

TEST(ExtensionUnitTest, RefusedMappingsLeaveAWorkingCamera)
{
    CameraBuilder builder = aCamera().withFormat("YUYV").withSize(640, 480).withInterval(1, 30);
    builder.withControl(integerControl(V4L2_CID_BRIGHTNESS, "Brightness").range(0, 9));
    CameraWithControls const opened(builder, CameraWithControls::Maker::Vendor);
    EXPECT_EQ(opened.node.mappings().size(), 29u);
    EXPECT_EQ(opened.camera.controlNumber(), 1);
    EXPECT_EQ(opened.camera.formatNumber(), 1);
    EXPECT_EQ(opened.camera.invalidControl(), opened.camera.lightModeControl());
}

TEST(ExtensionUnitTest, OneRefusedMappingDoesNotStopTheOthers)
{
    CameraBuilder builder = aVendorCamera();
    builder.failing(UVCIOC_CTRL_MAP, EIO, 1).failing(UVCIOC_CTRL_MAP, ENOENT, 12);
    CameraWithControls const opened(builder, CameraWithControls::Maker::Vendor);
    EXPECT_EQ(opened.camera.controlNumber(), 27);
    EXPECT_EQ(opened.camera.lightModeControl()->id(), 0xFFFFFFFFu);
    EXPECT_EQ(opened.camera.focusWindowY1Control()->id(), 0xFFFFFFFFu);
    EXPECT_EQ(opened.camera.autoGammaControl()->id(), 0x0800001Cu);
}

TEST(ExtensionUnitTest, InterruptedMappingIsRepeated)
{
    CameraBuilder builder = aVendorCamera();
    builder.failing(UVCIOC_CTRL_MAP, EINTR, 5);
    CameraWithControls const opened(builder, CameraWithControls::Maker::Vendor);
    EXPECT_EQ(opened.camera.controlNumber(), 29);
}

TEST(ExtensionUnitTest, AddedControlGivesTheDriversAnswer)
{
    CameraWithControls opened(aVendorCamera(), CameraWithControls::Maker::Vendor);
    Unit unit(opened.camera.fileDescriptor());
    uvc_xu_control_mapping mapping{};
    mapping.id = 0x08000100;
    mapping.entity[0] = 1;
    mapping.selector = 1;
    mapping.size = 8;
    mapping.v4l2_type = V4L2_CTRL_TYPE_INTEGER;
    mapping.data_type = UVC_CTRL_DATA_TYPE_UNSIGNED;
    EXPECT_EQ(unit.addControl(mapping), 0);
    EXPECT_EQ(unit.addControl(mapping), -1);
}

TEST(ExtensionUnitTest, DescriptorStaysOpenWhenTheUnitIsGone)
{
    CameraWithControls const opened(aVendorCamera(), CameraWithControls::Maker::Vendor);
    {
        Unit unit(opened.camera.fileDescriptor());
        unit.cleanup();
        EXPECT_STREQ(unit.name(), "ZorvaneExtensionUnit");
    }
    EXPECT_EQ(opened.node.accounting().openDescriptors, 1);
    EXPECT_EQ(opened.node.countOf(Call::Close), 0u);
}

TEST(ExtensionUnitTest, EachIdOfTheTableHasItsSelector)
{
    for (ExpectedMapping const& row : expectedMappings()) {
        Unit::ExtensionUnitSelector selector{};
        EXPECT_TRUE(Unit::idToSelector(static_cast<Unit::ExtensionUnitId>(row.id), selector));
        EXPECT_EQ(row.selector, selector) << row.name;
    }
}

TEST(ExtensionUnitTest, OtherIdsHaveNoSelector)
{
    for (unsigned int const id : {0x0800001Du, 0x07FFFFFFu, 0u, 0xFFFFFFFFu}) {
        auto selector = Unit::AutoGammaSelector;
        EXPECT_FALSE(Unit::idToSelector(static_cast<Unit::ExtensionUnitId>(id), selector)) << id;
        EXPECT_EQ(selector, Unit::AutoGammaSelector);
    }
}

TEST(ExtensionUnitTest, IdsRunFromThePrivateBaseInTheirOrder)
{
    Unit::ExtensionUnitId const order[] = {Unit::LightMode,
                                           Unit::LightIntensity,
                                           Unit::ErrorStatus,
                                           Unit::Temperature,
                                           Unit::TriggerAutoControls,
                                           Unit::AutoContrastAndBrightness,
                                           Unit::AutoSaturation,
                                           Unit::AutoSharpness,
                                           Unit::KeepAlive,
                                           Unit::FocusWindow1X1,
                                           Unit::FocusWindow1X2,
                                           Unit::FocusWindow1Y1,
                                           Unit::FocusWindow1Y2,
                                           Unit::LockAutoControls,
                                           Unit::FocusWindowSelect,
                                           Unit::FocusRangeMin,
                                           Unit::FocusRangeMax,
                                           Unit::FocusRangeStep,
                                           Unit::CustomWhiteBalanceRed,
                                           Unit::CustomWhiteBalanceBlue,
                                           Unit::CustomWhiteBalanceGreen,
                                           Unit::AutoFocusSensitivity,
                                           Unit::DebugImageMode,
                                           Unit::ImagePixelRatio,
                                           Unit::ImagePan,
                                           Unit::ImageTilt,
                                           Unit::FocusStrategy,
                                           Unit::AutoExposureSensitivity,
                                           Unit::AutoGamma};
    unsigned int id = 0x08000000;
    for (Unit::ExtensionUnitId const one : order) {
        EXPECT_EQ(id, one);
        ++id;
    }
    EXPECT_EQ(id, 0x0800001Du);
}

} // namespace
