// SPDX-License-Identifier: MIT
#include "CameraWithControls.h"
#include "ScriptedVendorCamera.h"
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
    EXPECT_NE(std::string::npos, end) << "no zero in the field";
    EXPECT_EQ(std::string::npos, whole.find_first_not_of('\0', end)) << "something after the zero";
    return whole.substr(0, end);
}

void expectMapping(ExpectedMapping const& expected, ControlMapping const& received)
{
    SCOPED_TRACE(expected.name);
    uvc_xu_control_mapping const& mapping = received.mapping;
    __u8 const guid[16] = {1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(expected.id, mapping.id);
    EXPECT_EQ(expected.name, fieldText(mapping.name));
    EXPECT_EQ(0, std::memcmp(guid, mapping.entity, sizeof guid));
    EXPECT_EQ(expected.selector, mapping.selector);
    EXPECT_EQ(expected.size, mapping.size);
    EXPECT_EQ(expected.offset, mapping.offset);
    EXPECT_EQ(expected.v4l2Type, mapping.v4l2_type);
    EXPECT_EQ(expected.dataType, mapping.data_type);
    for (__u32 const reserved : mapping.reserved) {
        EXPECT_EQ(0u, reserved);
    }
    EXPECT_EQ(expected.menu.size(), mapping.menu_count);
    ASSERT_EQ(expected.menu.size(), received.menu.size());
    for (std::size_t item = 0; item < expected.menu.size(); ++item) {
        EXPECT_EQ(expected.menu[item].value, received.menu[item].value);
        EXPECT_EQ(expected.menu[item].name, fieldText(received.menu[item].name));
    }
}

} // namespace

TEST(ExtensionUnitTest, DriverReceivesAllMappingsInOrderFieldByField)
{
    CameraWithControls const opened(aVendorCamera(), CameraWithControls::Maker::Vendor);
    std::vector<ControlMapping> const mappings = opened.node.mappings();
    std::vector<ExpectedMapping> const& table = expectedMappings();
    ASSERT_EQ(29u, table.size());
    ASSERT_EQ(table.size(), mappings.size());
    for (std::size_t row = 0; row < table.size(); ++row) {
        expectMapping(table[row], mappings[row]);
        EXPECT_EQ(0, mappings[row].error) << table[row].name;
    }
}

TEST(ExtensionUnitTest, MappingsWithoutMenuPointToNone)
{
    InstalledCamera const node = aVendorCamera().install();
    DeviceStub record;
    record.vendor = IMAGEACQUISITION_VENDOR_ID;
    record.product = IMAGEACQUISITION_PRODUCT_ID;
    Camera camera(&record);
    ASSERT_TRUE(camera.init());
    std::vector<CallRecord> const calls = node.calls(UVCIOC_CTRL_MAP);
    ASSERT_EQ(29u, calls.size());
    for (CallRecord const& call : calls) {
        auto const sent = call.argument<uvc_xu_control_mapping>();
        EXPECT_EQ(sent.menu_count != 0, sent.menu_info != nullptr) << sent.name;
        EXPECT_EQ(camera.fileDescriptor(), call.descriptor);
    }
}

TEST(ExtensionUnitTest, MappingsComeBeforeTheControlsAreListed)
{
    InstalledCamera const node = aVendorCamera().install();
    DeviceStub record;
    record.vendor = IMAGEACQUISITION_VENDOR_ID;
    record.product = IMAGEACQUISITION_PRODUCT_ID;
    Camera camera(&record);
    ASSERT_TRUE(camera.init());
    bool listed = false;
    for (CallRecord const& call : node.calls(Call::Ioctl)) {
        listed = listed || call.call == CallId(VIDIOC_QUERYCTRL);
        EXPECT_FALSE(listed && call.call == CallId(UVCIOC_CTRL_MAP));
    }
    EXPECT_TRUE(listed);
}

TEST(ExtensionUnitTest, CamerasOfOtherMakersGetNoMappings)
{
    CameraWithControls const opened(aVendorCamera());
    EXPECT_TRUE(opened.node.mappings().empty());
    EXPECT_EQ(0, opened.camera.controlNumber());
}

TEST(ExtensionUnitTest, SecondRoundIsRefusedByTheDriverAndSaysNothing)
{
    CameraWithControls const opened(aVendorCamera(), CameraWithControls::Maker::Vendor);
    testing::internal::CaptureStderr();
    Unit const second(opened.camera.fileDescriptor());
    EXPECT_EQ("", testing::internal::GetCapturedStderr());
    std::vector<ControlMapping> const mappings = opened.node.mappings();
    ASSERT_EQ(58u, mappings.size());
    for (std::size_t row = 29; row < mappings.size(); ++row) {
        EXPECT_EQ(EEXIST, mappings[row].error);
        expectMapping(expectedMappings()[row - 29], mappings[row]);
    }
}

TEST(ExtensionUnitTest, CameraOpenedAgainHasItsControlsStill)
{
    CameraWithControls const first(aVendorCamera(), CameraWithControls::Maker::Vendor);
    DeviceStub record;
    record.vendor = IMAGEACQUISITION_VENDOR_ID;
    record.product = IMAGEACQUISITION_PRODUCT_ID;
    Camera second(&record);
    ASSERT_TRUE(second.init());
    EXPECT_EQ(29, second.controlNumber());
    EXPECT_EQ(0x08000000u, second.lightModeControl()->id());
}

TEST(ExtensionUnitTest, RefusedMappingsLeaveAWorkingCamera)
{
    CameraBuilder builder = aCamera().withFormat("YUYV").withSize(640, 480).withInterval(1, 30);
    builder.withControl(integerControl(V4L2_CID_BRIGHTNESS, "Brightness").range(0, 9));
    CameraWithControls const opened(builder, CameraWithControls::Maker::Vendor);
    EXPECT_EQ(29u, opened.node.mappings().size());
    EXPECT_EQ(1, opened.camera.controlNumber());
    EXPECT_EQ(1, opened.camera.formatNumber());
    EXPECT_EQ(opened.camera.invalidControl(), opened.camera.lightModeControl());
}

TEST(ExtensionUnitTest, OneRefusedMappingDoesNotStopTheOthers)
{
    CameraBuilder builder = aVendorCamera();
    builder.failing(UVCIOC_CTRL_MAP, EIO, 1).failing(UVCIOC_CTRL_MAP, ENOENT, 12);
    CameraWithControls const opened(builder, CameraWithControls::Maker::Vendor);
    EXPECT_EQ(27, opened.camera.controlNumber());
    EXPECT_EQ(0xFFFFFFFFu, opened.camera.lightModeControl()->id());
    EXPECT_EQ(0xFFFFFFFFu, opened.camera.focusWindowY1Control()->id());
    EXPECT_EQ(0x0800001Cu, opened.camera.autoGammaControl()->id());
}

TEST(ExtensionUnitTest, InterruptedMappingIsRepeated)
{
    CameraBuilder builder = aVendorCamera();
    builder.failing(UVCIOC_CTRL_MAP, EINTR, 5);
    CameraWithControls const opened(builder, CameraWithControls::Maker::Vendor);
    EXPECT_EQ(29, opened.camera.controlNumber());
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
    EXPECT_EQ(0, unit.addControl(mapping));
    EXPECT_EQ(-1, unit.addControl(mapping));
}

TEST(ExtensionUnitTest, DescriptorStaysOpenWhenTheUnitIsGone)
{
    CameraWithControls const opened(aVendorCamera(), CameraWithControls::Maker::Vendor);
    {
        Unit unit(opened.camera.fileDescriptor());
        unit.cleanup();
        EXPECT_STREQ("ZorvaneExtensionUnit", unit.name());
    }
    EXPECT_EQ(1, opened.node.accounting().openDescriptors);
    EXPECT_EQ(0u, opened.node.countOf(Call::Close));
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
        EXPECT_EQ(Unit::AutoGammaSelector, selector);
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
    EXPECT_EQ(0x0800001Du, id);
}
