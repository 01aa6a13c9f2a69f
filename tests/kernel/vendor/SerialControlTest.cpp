// SPDX-License-Identifier: MIT
#include "FuserFolder.h"
#include "PrivateControls.h"
#include "SerialRows.h"
#include "Tool.h"

#include <ICameraControlBoolean.h>
#include <ICameraControlNumeric.h>
#include <ICameraControlStringMenu.h>

#include <gtest/gtest.h>

#include <map>

using namespace ImageAcquisition;
using namespace KernelTest;
using UsbCamera::readLittle;
using UsbCamera::toHex;

namespace
{

using Numeric = ICameraControlNumeric<int>;

/// What each position of a menu sends.
const std::vector<int>& menuValues(const SerialRow& row)
{
    static const std::map<std::string, std::vector<int>> values{
        {"Auto Exposure", {2, 1}}, {"Focus Strategy", {0, 1, 2}}, {"Lighting Mode", {0, 3}}};
    return values.at(row.name);
}

/// The camera opens in seconds, hence once for all tests, which leave it as they like.
class SerialControls : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        folder = std::make_unique<FuserFolder>();
        cameras = std::make_unique<EmulatedCameras>(EmulatedCameras::Texts{"vendor-new"});
        camera = openListed(cameras->videoNode());
    }
    static void TearDownTestSuite()
    {
        camera.reset();
        cameras.reset();
        folder.reset();
    }
    void SetUp() override { ASSERT_NE(camera, nullptr); }
    void TearDown() override { cameras->command("clear"); }

    static Bytes bytesOf(const SerialRow& row)
    {
        return cameraBytes(*cameras, static_cast<unsigned>(row.unit),
                           static_cast<unsigned>(row.selector));
    }
    /// The row's part of its control's bytes: where it begins, and how long it is.
    static std::pair<unsigned, unsigned> fieldOf(const SerialRow& row)
    {
        return row.offset < 0 ? std::pair{0U, static_cast<unsigned>(bytesOf(row).size())}
                              : std::pair{static_cast<unsigned>(row.offset),
                                          static_cast<unsigned>(row.length)};
    }

    static long long read(const SerialRow& row)
    {
        ICameraControl& control = controlOf(*camera, row.name);
        if (const auto* const menu = dynamic_cast<ICameraControlStringMenu*>(&control)) {
            return menuValues(row).at(static_cast<std::size_t>(menu->currentIndex()));
        }
        if (const auto* const boolean = dynamic_cast<ICameraControlBoolean*>(&control)) {
            return boolean->value() ? 1 : 0;
        }
        return dynamic_cast<Numeric&>(control).value();
    }

    /// Sets another value than the present one; the result is that value.
    static long long change(const SerialRow& row)
    {
        ICameraControl& control = controlOf(*camera, row.name);
        const long long present = read(row);
        if (auto* const menu = dynamic_cast<ICameraControlStringMenu*>(&control)) {
            const int position = menu->currentIndex() == 0 ? 1 : 0;
            EXPECT_TRUE(menu->setCurrentIndex(position));
            return menuValues(row).at(static_cast<std::size_t>(position));
        }
        if (auto* const boolean = dynamic_cast<ICameraControlBoolean*>(&control)) {
            EXPECT_TRUE(boolean->setValue(present == 0));
            return 1 - present;
        }
        auto& number = dynamic_cast<Numeric&>(control);
        const int value = present == number.minimum() ? number.maximum() : number.minimum();
        EXPECT_TRUE(number.setValue(value));
        return value;
    }

    static std::unique_ptr<FuserFolder> folder;
    static std::unique_ptr<EmulatedCameras> cameras;
    static CameraPointer camera;
};

std::unique_ptr<FuserFolder> SerialControls::folder;
std::unique_ptr<EmulatedCameras> SerialControls::cameras;
CameraPointer SerialControls::camera;

} // namespace

TEST_F(SerialControls, AreThoseOfTheTableInItsOrder)
{
    ASSERT_EQ(camera->controlNumber(), static_cast<int>(serialRows().size()));
    int position = 0;
    for (const SerialRow& row : serialRows()) {
        const ICameraControl& control = *camera->control(position++);
        EXPECT_STREQ(control.name(), row.name);
        EXPECT_EQ(control.id(), static_cast<unsigned>(row.selector));
        EXPECT_EQ(control.type(), row.type);
        EXPECT_EQ(control.family(), static_cast<unsigned>(row.family));
    }
}

TEST_F(SerialControls, AreReadFromTheCamera)
{
    cameras->mark();
    for (const SerialRow& row : serialRows()) {
        const auto [offset, length] = fieldOf(row);
        const auto number = static_cast<long long>(readLittle(bytesOf(row), offset, length));
        // A number of four bytes becomes an int, one of two or one is signed when it is no field.
        const long long mask = (1LL << (8 * length)) - 1;
        EXPECT_EQ(read(row) & mask, number) << row.name;
    }
    EXPECT_EQ(cameras->requests("GET_CUR").size(), serialRows().size());
}

TEST_F(SerialControls, AreWrittenToTheirOwnBytesOnly)
{
    for (const SerialRow& row : serialRows()) {
        if (controlOf(*camera, row.name).isReadOnly()) {
            continue;
        }
        SCOPED_TRACE(row.name);
        const Bytes before = bytesOf(row);
        const auto [offset, length] = fieldOf(row);
        cameras->mark();
        const long long value = change(row);
        const std::string wanted = toHex(withNumber(before, offset, length, value));
        const auto written = cameras->requests("SET_CUR");
        ASSERT_EQ(written.size(), 1U);
        EXPECT_EQ(written[0]["kind"], "serial");
        EXPECT_EQ(written[0]["unit"], row.unit);
        EXPECT_EQ(written[0]["selector"], row.selector);
        EXPECT_EQ(written[0]["data"], wanted);
        EXPECT_EQ(toHex(bytesOf(row)), wanted);
        const long long mask = (1LL << (8 * length)) - 1;
        EXPECT_EQ(read(row) & mask, value & mask);
    }
}

TEST_F(SerialControls, OfOneControlKeepWhatAnotherProgramWroteBesideThem)
{
    cameras->command("set 3 20 0100020003000400");
    auto& edge = dynamic_cast<Numeric&>(*camera->focusWindowX2Control());
    EXPECT_EQ(edge.value(), 2);
    cameras->command("set 3 20 0500060007000800");
    EXPECT_TRUE(edge.setValue(0x0123));
    EXPECT_EQ(cameras->command("get 3 20"), "0500230107000800");
}

TEST_F(SerialControls, ThatCanOnlyBeReadAreSentAndRefusedByTheCamera)
{
    for (const char* const name : {"Error Status", "Temperature (C)"}) {
        auto& control = dynamic_cast<Numeric&>(controlOf(*camera, name));
        EXPECT_TRUE(control.isReadOnly()) << name;
        cameras->mark();
        EXPECT_FALSE(control.setValue(1)) << name;
        const auto written = cameras->requests("SET_CUR");
        ASSERT_EQ(written.size(), 5U) << name;
        EXPECT_EQ(written[0]["refused"], true);
    }
    cameras->command("set 3 4 3000");
    EXPECT_EQ(dynamic_cast<Numeric&>(controlOf(*camera, "Temperature (C)")).value(), 0x30);
}

TEST_F(SerialControls, FailAfterFiveAttemptsOnASilentLine)
{
    auto& focus = dynamic_cast<Numeric&>(*camera->focusControl());
    auto& keepAlive = dynamic_cast<ICameraControlBoolean&>(*camera->keepAliveControl());
    EXPECT_TRUE(keepAlive.setValue(true));
    cameras->command("set 3 6 00");
    cameras->command("serial silent");
    cameras->mark();
    const double begin = monotonicSeconds();
    EXPECT_EQ(focus.value(), -1);
    const double took = monotonicSeconds() - begin;
    EXPECT_GE(took, 0.5);
    EXPECT_LT(took, 2);
    EXPECT_EQ(cameras->requests("GET_CUR").size(), 5U);
    // Of a switch the value last written stands in.
    EXPECT_TRUE(keepAlive.value());
    cameras->command("serial normal");
    EXPECT_FALSE(keepAlive.value());
    EXPECT_GE(focus.value(), 0);
}

TEST_F(SerialControls, TakeRepliesThatAreInTimeAndNoOthers)
{
    auto& focus = dynamic_cast<Numeric&>(*camera->focusControl());
    auto& light = dynamic_cast<Numeric&>(*camera->lightIntensityControl());
    ASSERT_TRUE(light.setValue(500));
    ASSERT_TRUE(focus.setValue(321));
    for (const auto& [mode, wanted] : {std::pair{"serial short 6", -1},
                                       {"serial slow 40", 321},
                                       {"serial split 20", 321},
                                       {"serial slow 900", -1},
                                       {"serial split 900", -1}}) {
        cameras->command(mode);
        EXPECT_EQ(focus.value(), wanted) << mode;
        cameras->command("serial normal");
        // What comes too late is not taken for the answer to the next question.
        EXPECT_TRUE(waitFor([] { return cameras->status()["serialPending"] == 0; }));
        EXPECT_EQ(light.value(), 500) << mode;
    }
}
