// SPDX-License-Identifier: MIT
#include "LinkedCamera.h"
#include "SerialRows.h"

#include "serial/ZorvaneCameraControlBoolean.h"
#include "serial/ZorvaneCameraControlNumeric.h"

#include <gtest/gtest.h>

#include <typeinfo>

namespace
{

using namespace ImageAcquisition;
SerialRows const& rows = serialRows();

/// A camera with all of its controls that never asked for anything: there is no link.
class UnlinkedCamera : public OpenedCamera
{
public:
    explicit UnlinkedCamera(bool ofTheVendor = true) : OpenedCamera(withoutNode(ofTheVendor))
    {
        Camera::init();
        for (ControlStruct const& row : _controlMap) {
            appendControl(createControl(row));
        }
    }

private:
    static DeviceStub withoutNode(bool ofTheVendor)
    {
        DeviceStub record = vendorRecord(ofTheVendor);
        record.node = "/dev/video63";
        return record;
    }
};

TEST(ControlTable, HoldsTheThirtyNineRowsInOrder)
{
    ASSERT_EQ(rows.size(), ZorvaneCamera::_controlMap.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        ZorvaneCamera::ControlStruct const& row = ZorvaneCamera::_controlMap[i];
        SCOPED_TRACE(rows[i].name);
        EXPECT_STREQ(rows[i].name, row.name);
        EXPECT_EQ(rows[i].selector, row.cid);
        EXPECT_EQ(rows[i].unit, row.unit);
        EXPECT_EQ(rows[i].type, row.type);
        EXPECT_EQ(rows[i].family, row.family);
        EXPECT_EQ(rows[i].offset >= 0, row.shared);
        if (row.shared) {
            EXPECT_EQ(rows[i].offset, row.offset);
            EXPECT_EQ(rows[i].length, row.length);
        }
    }
}

TEST(ControlTable, MakesAControlOfTheRowsTypeForEachRow)
{
    OpenedCamera camera;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        SCOPED_TRACE(rows[i].name);
        auto const control = camera.createControl(ZorvaneCamera::_controlMap[i]);
        ASSERT_NE(nullptr, control);
        EXPECT_STREQ(rows[i].name, control->name());
        EXPECT_EQ(static_cast<unsigned int>(rows[i].selector), control->id());
        EXPECT_EQ(rows[i].type, control->type());
        EXPECT_EQ(static_cast<unsigned int>(rows[i].family), control->family());
        ICameraControl const* const base = control.get();
        EXPECT_EQ(rows[i].type == 2, dynamic_cast<ICameraControlBoolean const*>(base) != nullptr);
        EXPECT_EQ(rows[i].type == 4,
                  dynamic_cast<ICameraControlNumeric<int> const*>(base) != nullptr);
        EXPECT_EQ(rows[i].type == 11,
                  dynamic_cast<ICameraControlStringMenu const*>(base) != nullptr);
    }
}

TEST(ControlTable, MakesNoControlOfATypeWithoutAClass)
{
    OpenedCamera camera;
    for (int const type : {-1, 0, 1, 3, 5, 6, 7, 8, 9, 10, 12}) {
        ZorvaneCamera::ControlStruct const row{"Name", 1, 3, type, 1, true, 0, 1};
        EXPECT_EQ(nullptr, camera.createControl(row)) << type;
    }
}

TEST(MenuTable, HoldsThreeMenusWithTheirValues)
{
    using Items = std::vector<std::pair<int, std::string>>;
    std::map<std::string, Items> const expected = {
        {"Auto Exposure", {{2, "Auto"}, {1, "Manual"}}},
        {"Focus Strategy", {{0, "Smart Scan All"}, {1, "Bisection"}, {2, "Smart Scan Refocus"}}},
        {"Lighting Mode", {{0, "Off"}, {3, "Continuous"}}}};
    std::map<std::string, Items> actual;
    for (auto const& [name, settings] : ZorvaneCamera::_stringMenuSettings) {
        for (auto const& setting : settings) {
            actual[name].emplace_back(setting.value, setting.label);
        }
    }
    EXPECT_EQ(expected, actual);
    EXPECT_EQ(3U, ZorvaneCamera::_stringMenuSettings.size());
}

TEST(MenuTable, IsKeyedByTheVeryPointersOfTheControlTable)
{
    for (ZorvaneCamera::ControlStruct const& row : ZorvaneCamera::_controlMap) {
        EXPECT_EQ(row.type == ICameraControl::StringMenu,
                  ZorvaneCamera::_stringMenuSettings.count(row.name) == 1)
            << row.name;
    }
    EXPECT_EQ(2U, ZorvaneCamera::menuSettings(ZorvaneCamera::_lightModeControl).size());
}

TEST(MenuTable, FindsNoMenuForAnotherPointerToAnEqualText)
{
    char const ownName[] = "Lighting Mode";
    ASSERT_STREQ(ZorvaneCamera::_lightModeControl, ownName);
    EXPECT_TRUE(ZorvaneCamera::menuSettings(ownName).empty());

    OpenedCamera camera;
    ZorvaneCamera::ControlStruct const row{ownName, 1, 3, 11, 32, false, 0, 0};
    auto const control = camera.createControl(row);
    auto const* const menu =
        dynamic_cast<ICameraControlStringMenu const*>(static_cast<ICameraControl*>(control.get()));
    ASSERT_NE(nullptr, menu);
    EXPECT_EQ(0, menu->count());
}

TEST(NamedGetters, FindTheControlOfTheirRow)
{
    UnlinkedCamera const camera;
    ASSERT_EQ(39, camera.controlNumber());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        SCOPED_TRACE(rows[i].name);
        ICameraControl* const control = camera.control(static_cast<int>(i));
        EXPECT_EQ(control, camera.control(rows[i].name));
        if (rows[i].getter != nullptr) {
            EXPECT_EQ(control, (camera.*rows[i].getter)());
        }
    }
}

TEST(NamedGetters, CoverEveryGetterOfTheInterface)
{
    std::size_t withGetter = 0;
    for (SerialRow const& row : rows) {
        withGetter += row.getter != nullptr ? 1 : 0;
    }
    EXPECT_EQ(35U, withGetter);
}

TEST(NamedGetters, GiveTheInvalidControlForVendorControlsOfAnotherRecord)
{
    UnlinkedCamera const camera(false);
    for (SerialRow const& row : rows) {
        SCOPED_TRACE(row.name);
        if (row.getter != nullptr) {
            ICameraControl* const expected =
                row.vendorOnly ? camera.invalidControl() : camera.control(row.name);
            EXPECT_EQ(expected, (camera.*row.getter)());
        }
        EXPECT_NE(camera.invalidControl(), camera.control(row.name));
    }
}

TEST(NamedGetters, GiveTheInvalidControlForRowsThatWereNotMade)
{
    DeviceStub record = vendorRecord();
    record.node = "/dev/video63";
    OpenedCamera camera(record);
    camera.Camera::init();
    for (SerialRow const& row : rows) {
        if (row.getter != nullptr) {
            EXPECT_EQ(camera.invalidControl(), (camera.*row.getter)()) << row.name;
        }
    }
    EXPECT_EQ(ICameraControl::Invalid, camera.invalidControl()->type());
}

TEST(ZorvaneCamera, IsAQtObjectOfItsOwnClass)
{
    OpenedCamera camera;
    EXPECT_STREQ("ImageAcquisition::ZorvaneCamera", ZorvaneCamera::staticMetaObject.className());
    EXPECT_TRUE(camera.inherits("ImageAcquisition::ZorvaneCamera"));
    EXPECT_EQ(nullptr, camera.parent());
    EXPECT_EQ(&camera, camera.serialPort().parent());
}

TEST(ZorvaneCamera, MapsNoControlsOfTheExtensionUnitIntoTheDriver)
{
    OpenedCamera const camera;
    EXPECT_EQ(nullptr, camera.createExtensionUnit());
}

} // namespace
