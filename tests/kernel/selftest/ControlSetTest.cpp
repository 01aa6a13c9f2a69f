// SPDX-License-Identifier: MIT
#include "ControlSet.h"
#include "CameraModel.h"

#include <gtest/gtest.h>

using namespace UsbCamera;

namespace
{

class ControlSetTest : public testing::Test
{
protected:
    UnitReply ask(std::uint8_t code, std::uint8_t unit, std::uint8_t selector, Bytes data = {})
    {
        return m_controls.execute({code, unit, selector, data.size(), data});
    }

    Faults m_faults;
    ControlSet m_controls{parseModel("vendor-new"), m_faults};
};

TEST_F(ControlSetTest, ReadsBackWhatWasWritten)
{
    EXPECT_FALSE(ask(setCur, extensionUnit, 20, {1, 0, 2, 0, 3, 0, 4, 0}).isRefused());
    EXPECT_EQ(ask(getCur, extensionUnit, 20).data, (Bytes{1, 0, 2, 0, 3, 0, 4, 0}));
}

TEST_F(ControlSetTest, TellsTheLengthOfEveryVendorControl)
{
    std::map<int, int> const lengths{{1, 1},  {2, 2},  {3, 4},  {4, 2},  {5, 4},  {6, 1},  {7, 4},
                                     {8, 1},  {9, 6},  {10, 6}, {11, 1}, {12, 1}, {13, 1}, {14, 4},
                                     {15, 1}, {16, 1}, {17, 1}, {18, 1}, {20, 8}, {24, 1}, {25, 1}};
    for (auto const& [selector, length] : lengths) {
        UnitReply const reply = ask(getLen, extensionUnit, static_cast<std::uint8_t>(selector));
        EXPECT_EQ(reply.data, (Bytes{static_cast<std::uint8_t>(length), 0})) << selector;
    }
    EXPECT_EQ(ask(getLen, extensionUnit, 19).error, UvcError::InvalidControl);
}

TEST_F(ControlSetTest, PacksNegativeRangesInTwosComplement)
{
    EXPECT_EQ(ask(getMin, extensionUnit, 4).data, (Bytes{0xd8, 0xff}));
    EXPECT_EQ(ask(getMin, processingUnit, 2).data, (Bytes{0xc0, 0xff}));
}

TEST_F(ControlSetTest, RefusesValuesOutsideTheRangeOfAnyField)
{
    EXPECT_EQ(ask(setCur, extensionUnit, 9, {0, 0, 0, 4, 1, 0}).error, UvcError::OutOfRange);
    EXPECT_EQ(ask(setCur, processingUnit, 2, {0xbf, 0xff}).error, UvcError::OutOfRange);
    EXPECT_FALSE(ask(setCur, processingUnit, 2, {0xc0, 0xff}).isRefused());
}

TEST_F(ControlSetTest, RefusesToWriteWhatCanOnlyBeRead)
{
    EXPECT_EQ(ask(setCur, extensionUnit, 4, {1, 0}).error, UvcError::InvalidRequest);
}

TEST_F(ControlSetTest, TellsWhyItRefusedTheLastRequest)
{
    ask(setCur, extensionUnit, 1, {9});
    EXPECT_EQ(ask(getCur, 0, 2).data, (Bytes{4}));
    ask(getCur, extensionUnit, 1);
    EXPECT_EQ(ask(getCur, 0, 2).data, (Bytes{0}));
}

TEST_F(ControlSetTest, StallsAsOftenAsOrderedAndOnlyWhereOrdered)
{
    StallFault stall;
    stall.unit = extensionUnit;
    stall.request = getCur;
    stall.remaining = 2;
    stall.error = UvcError::WrongState;
    m_faults.stalls.push_back(stall);
    EXPECT_FALSE(ask(getCur, processingUnit, 2).isRefused());
    EXPECT_FALSE(ask(getLen, extensionUnit, 1).isRefused());
    EXPECT_EQ(ask(getCur, extensionUnit, 1).error, UvcError::WrongState);
    EXPECT_EQ(ask(getCur, extensionUnit, 2).error, UvcError::WrongState);
    EXPECT_FALSE(ask(getCur, extensionUnit, 2).isRefused());
}

TEST_F(ControlSetTest, AnswersAbsurdLengthsWhenOrdered)
{
    m_faults.lengths[{extensionUnit, 1}] = 5000;
    EXPECT_EQ(ask(getLen, extensionUnit, 1).data, (Bytes{0x88, 0x13}));
    EXPECT_EQ(ask(getCur, extensionUnit, 1).data.size(), 1U);
}

TEST_F(ControlSetTest, HasNoVendorControlsWithoutAnExtensionUnit)
{
    ControlSet plain{parseModel("vendor-old,extension-unit=no"), m_faults};
    EXPECT_EQ(plain.execute({getLen, extensionUnit, 1, 2, {}}).error, UvcError::InvalidControl);
}

} // namespace
