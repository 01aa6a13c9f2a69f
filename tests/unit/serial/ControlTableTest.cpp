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

TEST(ControlTableTest, HoldsTheThirtyNineRowsInOrder)
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

TEST(ControlTableTest, MakesAControlOfTheRowsTypeForEachRow)
{
    OpenedCamera camera;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        SCOPED_TRACE(rows[i].name);
        auto const control = camera.createControl(ZorvaneCamera::_controlMap[i]);
        ASSERT_NE(control, nullptr);
        EXPECT_STREQ(control->name(), rows[i].name);
        EXPECT_EQ(static_cast<unsigned int>(rows[i].selector), control->id());
        EXPECT_EQ(control->type(), rows[i].type);
        EXPECT_EQ(static_cast<unsigned int>(rows[i].family), control->family());
        ICameraControl const* const base = control.get();
        EXPECT_EQ(dynamic_cast<ICameraControlBoolean const*>(base) != nullptr, rows[i].type == 2);
        EXPECT_EQ(dynamic_cast<ICameraControlNumeric<int> const*>(base) != nullptr,
                  rows[i].type == 4);
        EXPECT_EQ(dynamic_cast<ICameraControlStringMenu const*>(base) != nullptr,
                  rows[i].type == 11);
    }
}

TEST(ControlTableTest, MakesNoControlOfATypeWithoutAClass)
{
    OpenedCamera camera;
    for (int const type : {-1, 0, 1, 3, 5, 6, 7, 8, 9, 10, 12}) {
        ZorvaneCamera::ControlStruct const row{"Name", 1, 3, type, 1, true, 0, 1};
        EXPECT_EQ(camera.createControl(row), nullptr) << type;
    }
}

TEST(ControlTableTest, HoldsThreeMenusWithTheirValues)
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
    EXPECT_EQ(actual, expected);
    EXPECT_EQ(ZorvaneCamera::_stringMenuSettings.size(), 3U);
}

TEST(ControlTableTest, KeysItsMenusByTheVeryPointersOfItsRows)
{
    for (ZorvaneCamera::ControlStruct const& row : ZorvaneCamera::_controlMap) {
        EXPECT_EQ(ZorvaneCamera::_stringMenuSettings.count(row.name) == 1,
                  row.type == ICameraControl::StringMenu)
            << row.name;
    }
    EXPECT_EQ(ZorvaneCamera::menuSettings(ZorvaneCamera::_lightModeControl).size(), 2U);
}

TEST(ControlTableTest, FindsNoMenuForAnotherPointerToAnEqualText)
{
    char const ownName[] = "Lighting Mode";
    ASSERT_STREQ(ZorvaneCamera::_lightModeControl, ownName);
    EXPECT_TRUE(ZorvaneCamera::menuSettings(ownName).empty());

    OpenedCamera camera;
    ZorvaneCamera::ControlStruct const row{ownName, 1, 3, 11, 32, false, 0, 0};
    auto const control = camera.createControl(row);
    auto const* const menu =
        dynamic_cast<ICameraControlStringMenu const*>(static_cast<ICameraControl*>(control.get()));
    ASSERT_NE(menu, nullptr);
    EXPECT_EQ(menu->count(), 0);
}

TEST(ControlTableTest, LetsNamedGettersFindTheControlOfTheirRow)
{
    UnlinkedCamera const camera;
    ASSERT_EQ(camera.controlNumber(), 39);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        SCOPED_TRACE(rows[i].name);
        ICameraControl* const control = camera.control(static_cast<int>(i));
        EXPECT_EQ(camera.control(rows[i].name), control);
        if (rows[i].getter != nullptr) {
            EXPECT_EQ((camera.*rows[i].getter)(), control);
        }
    }
}

TEST(ControlTableTest, CoversEveryNamedGetterOfTheInterface)
{
    std::size_t withGetter = 0;
    for (SerialRow const& row : rows) {
        withGetter += row.getter != nullptr ? 1 : 0;
    }
    EXPECT_EQ(withGetter, 35U);
}

TEST(ControlTableTest, LetsNamedGettersGiveTheInvalidControlForVendorControlsOfAnotherRecord)
{
    UnlinkedCamera const camera(false);
    for (SerialRow const& row : rows) {
        SCOPED_TRACE(row.name);
        if (row.getter != nullptr) {
            ICameraControl* const expected =
                row.vendorOnly ? camera.invalidControl() : camera.control(row.name);
            EXPECT_EQ((camera.*row.getter)(), expected);
        }
        EXPECT_NE(camera.invalidControl(), camera.control(row.name));
    }
}

TEST(ControlTableTest, LetsNamedGettersGiveTheInvalidControlForRowsThatWereNotMade)
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
    EXPECT_EQ(camera.invalidControl()->type(), ICameraControl::Invalid);
}

TEST(ControlTableTest, BelongsToACameraThatIsAQtObjectOfItsOwnClass)
{
    OpenedCamera camera;
    EXPECT_STREQ(ZorvaneCamera::staticMetaObject.className(), "ImageAcquisition::ZorvaneCamera");
    EXPECT_TRUE(camera.inherits("ImageAcquisition::ZorvaneCamera"));
    EXPECT_EQ(camera.parent(), nullptr);
    EXPECT_EQ(camera.serialPort().parent(), &camera);
}

TEST(ControlTableTest, MapsNoControlsOfTheExtensionUnitIntoTheDriver)
{
    OpenedCamera const camera;
    EXPECT_EQ(camera.createExtensionUnit(), nullptr);
}

} // namespace
