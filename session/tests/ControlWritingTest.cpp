// SPDX-License-Identifier: MIT
// What is made of a value for each type of control, on controls of any range.
#include "ControlWriting.h"

#include "FakeControls.h"

#include <gmock/gmock.h>

#include <limits>

namespace
{

using namespace ImageAcquisition;
using testing::ElementsAre;
using testing::IsEmpty;

std::string outcome(ICameraControl& control, std::string const& value)
{
    Session::Write const write = Session::writeValue(control, value);
    Session::Refusal const refusal = write.refusal.empty() ? write.carryOut() : write.refusal;
    return refusal.empty() ? "set" : refusal;
}

TEST(ControlWritingTest, SendsTheNumberThatIsMeant)
{
    FakeNumber<int> control;
    control.lowest = -100;
    EXPECT_EQ(outcome(control, "-7"), "set");
    EXPECT_EQ(outcome(control, "0x10"), "set");
    EXPECT_THAT(control.written, ElementsAre(-7, 16));
}

template <typename T>
class ControlWritingTest : public testing::Test
{
};

using Numbers = testing::Types<int, long long, unsigned char, unsigned short, unsigned int>;
TYPED_TEST_SUITE(ControlWritingTest, Numbers);

TYPED_TEST(ControlWritingTest, ReachesBothEndsAndGoesNoFurther)
{
    using Limits = std::numeric_limits<TypeParam>;
    FakeNumber<TypeParam> control;
    control.lowest = Limits::min();
    control.highest = Limits::max();
    EXPECT_EQ(outcome(control, std::to_string(Limits::min())), "set");
    EXPECT_EQ(outcome(control, std::to_string(Limits::max())), "set");
    EXPECT_THAT(control.written, ElementsAre(Limits::min(), Limits::max()));
    control.highest = 100;
    EXPECT_EQ(outcome(control, "101"), "101 is outside " + std::to_string(Limits::min()) + "..100");
    EXPECT_EQ(outcome(control, "99999999999999999999"), "'99999999999999999999' is no number");
    EXPECT_EQ(control.written.size(), 2u);
}

TEST(ControlWritingTest, DoesNotWrapANumberThatIsTooWide)
{
    FakeNumber<unsigned char> control;
    EXPECT_EQ(outcome(control, "261"), "261 is outside 0..100");
    EXPECT_EQ(outcome(control, "-1"), "-1 is outside 0..100");
    EXPECT_THAT(control.written, IsEmpty());
}

TEST(ControlWritingTest, SwitchesBooleans)
{
    FakeBoolean control;
    EXPECT_EQ(outcome(control, "on"), "set");
    EXPECT_EQ(outcome(control, "0"), "set");
    EXPECT_EQ(outcome(control, "2"), "'2' is neither on nor off");
    EXPECT_THAT(control.written, ElementsAre(true, false));
}

TEST(ControlWritingTest, SetsAllBitsOfAMask)
{
    FakeBitMask control;
    EXPECT_EQ(outcome(control, "0xffffffff"), "set");
    EXPECT_EQ(outcome(control, "0x100000000"), "'0x100000000' is no mask of 32 bits");
    EXPECT_THAT(control.written, ElementsAre(0xffffffffu));
}

TEST(ControlWritingTest, PressesButtonsAndGivesThemNoValue)
{
    FakeButton control;
    EXPECT_EQ(Session::press(control).carryOut(), "");
    EXPECT_EQ(outcome(control, "1"), "it is a button: give its name alone");
    EXPECT_EQ(control.written.size(), 1u);
}

TEST(ControlWritingTest, WritesTextsAsTheyAre)
{
    FakeString control;
    EXPECT_EQ(outcome(control, "a = b"), "set");
    EXPECT_THAT(control.written, ElementsAre("a = b"));
    control.refusing = true;
    EXPECT_EQ(outcome(control, ""), "its length 0 is outside 2..8");
    EXPECT_EQ(outcome(control, "fits"), "refused by the driver");
}

TEST(ControlWritingTest, TakesAMenusLabelBeforeItsPosition)
{
    FakeMenu control;
    for (char const* const text : {"On", "on", "OFF", "2", "3"}) {
        EXPECT_EQ(outcome(control, text), "set") << text;
    }
    EXPECT_THAT(control.written, ElementsAre(3, 1, 0, 2, 3));
    EXPECT_EQ(outcome(control, "4"), "no such item: '4'");
    EXPECT_EQ(outcome(control, "-1"), "no such item: '-1'");
    EXPECT_EQ(control.written.size(), 5u);
}

TEST(ControlWritingTest, TakesPositionsOfAMenuOfNumbers)
{
    FakeNumberMenu control;
    EXPECT_EQ(outcome(control, "2"), "set");
    EXPECT_EQ(outcome(control, "two"), "'two' is no position");
    control.refusing = true;
    EXPECT_EQ(outcome(control, "9"), "no such item, or refused by the driver");
    EXPECT_THAT(control.written, ElementsAre(2, 9));
}

TEST(ControlWritingTest, IsForbiddenByTheStateWhateverTheValue)
{
    using Fake = FakeControl<ICameraControlBoolean>;
    for (auto const& [flag, reason] : {std::pair{&Fake::readOnly, "read-only"},
                                       {&Fake::disabled, "disabled"},
                                       {&Fake::grabbed, "grabbed by another program"}}) {
        FakeBoolean control;
        control.*flag = true;
        EXPECT_EQ(Session::refusalByState(control), reason);
        EXPECT_EQ(Session::refusalByNature(control), reason);
    }
    FakeBoolean control;
    control.inactive = true;
    EXPECT_EQ(Session::refusalByState(control), "inactive");
    EXPECT_EQ(Session::refusalByNature(control), "");
}

/// As one behind the serial link, which does not look at the range.
class FakeSerialNumber final : public WritableControl<ICameraControlNumeric<int>, int>
{
public:
    int maximum() const override { return 100; }
    int minimum() const override { return 100; }
    int step() const override { return 1; }
    int value() const override { return 0; }
    bool setValue(int value) override { return write(value); }
};

TEST(ControlWritingTest, SendsWhatIsOutsideARangeOfOneValue)
{
    FakeSerialNumber control;
    EXPECT_EQ(outcome(control, "7"), "set");
    EXPECT_THAT(control.written, ElementsAre(7));
}

} // namespace
