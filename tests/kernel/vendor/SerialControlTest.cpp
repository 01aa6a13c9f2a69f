// SPDX-License-Identifier: MIT
#include "SerialControls.h"

#include <ICameraControlNumeric.h>

using namespace ImageAcquisition;
using namespace KernelTest;
using UsbCamera::readLittle;
using UsbCamera::toHex;

namespace
{

using Numeric = ICameraControlNumeric<int>;

/// On a busy machine an answer may be late, and the same packet is sent once more.
void expectSerial(std::vector<EmulatedCameras::Json> const& packets, SerialRow const& row)
{
    EXPECT_FALSE(packets.empty());
    for (EmulatedCameras::Json const& one : packets) {
        EXPECT_EQ(one["kind"], "serial");
        EXPECT_EQ(one["unit"], row.unit);
        EXPECT_EQ(one["selector"], row.selector);
    }
}

using SerialControlTest = SerialControls;

TEST_F(SerialControlTest, AreThoseOfTheTableInItsOrder)
{
    ASSERT_EQ(camera->controlNumber(), static_cast<int>(serialRows().size()));
    int position = 0;
    for (SerialRow const& row : serialRows()) {
        ICameraControl const& control = *camera->control(position++);
        EXPECT_STREQ(control.name(), row.name);
        EXPECT_EQ(control.id(), static_cast<unsigned>(row.selector));
        EXPECT_EQ(control.type(), row.type);
        EXPECT_EQ(control.family(), static_cast<unsigned>(row.family));
    }
}

TEST_F(SerialControlTest, AreReadFromTheCamera)
{
    for (SerialRow const& row : serialRows()) {
        SCOPED_TRACE(row.name);
        auto const [offset, length] = fieldOf(row);
        auto const number = static_cast<long long>(readLittle(bytesOf(row), offset, length));
        // A number of four bytes becomes an int, one of two or one is signed when it is no field.
        long long const mask = (1LL << (8 * length)) - 1;
        cameras->mark();
        EXPECT_EQ(read(row) & mask, number);
        expectSerial(cameras->requests("GET_CUR"), row);
    }
}

TEST_F(SerialControlTest, AreWrittenToTheirOwnBytesOnly)
{
    for (SerialRow const& row : serialRows()) {
        if (controlOf(*camera, row.name).isReadOnly()) {
            continue;
        }
        SCOPED_TRACE(row.name);
        Bytes const before = bytesOf(row);
        auto const [offset, length] = fieldOf(row);
        cameras->mark();
        long long const value = change(row);
        std::string const wanted = toHex(withNumber(before, offset, length, value));
        auto const written = cameras->requests("SET_CUR");
        expectSerial(written, row);
        for (EmulatedCameras::Json const& one : written) {
            EXPECT_EQ(one["data"], wanted);
        }
        EXPECT_EQ(toHex(bytesOf(row)), wanted);
        long long const mask = (1LL << (8 * length)) - 1;
        EXPECT_EQ(read(row) & mask, value & mask);
    }
}

TEST_F(SerialControlTest, OfOneControlKeepWhatAnotherProgramWroteBesideThem)
{
    cameras->command("set 3 20 0100020003000400");
    auto& edge = dynamic_cast<Numeric&>(*camera->focusWindowX2Control());
    EXPECT_EQ(edge.value(), 2);
    cameras->command("set 3 20 0500060007000800");
    EXPECT_TRUE(edge.setValue(0x0123));
    EXPECT_EQ(cameras->command("get 3 20"), "0500230107000800");
}

TEST_F(SerialControlTest, ThatCanOnlyBeReadAreSentAndRefusedByTheCamera)
{
    for (char const* const name : {"Error Status", "Temperature (C)"}) {
        auto& control = dynamic_cast<Numeric&>(controlOf(*camera, name));
        EXPECT_TRUE(control.isReadOnly()) << name;
        cameras->mark();
        EXPECT_FALSE(control.setValue(1)) << name;
        auto const written = cameras->requests("SET_CUR");
        ASSERT_EQ(written.size(), 5U) << name;
        EXPECT_EQ(written[0]["refused"], true);
    }
    cameras->command("set 3 4 3000");
    EXPECT_EQ(dynamic_cast<Numeric&>(controlOf(*camera, "Temperature (C)")).value(), 0x30);
}

} // namespace
