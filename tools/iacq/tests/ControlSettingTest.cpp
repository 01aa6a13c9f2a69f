// SPDX-License-Identifier: MIT
#include "ControlSetting.h"

#include "Failure.h"
#include "FakeCamera.h"

#include <ICameraControlBitMask.h>
#include <ICameraControlBoolean.h>
#include <ICameraControlButton.h>
#include <ICameraControlInt64Menu.h>
#include <ICameraControlNumeric.h>
#include <ICameraControlString.h>
#include <ICameraControlStringMenu.h>

#include <gmock/gmock.h>

#include <limits>

namespace
{

using namespace ImageAcquisition;
using testing::ElementsAre;
using testing::IsEmpty;

/// What all of them do with a write: note it, and take it unless they refuse.
template <typename Interface, typename Value>
class WritableControl : public FakeControl<Interface>
{
public:
    bool write(Value const& value)
    {
        written.push_back(value);
        return !refusing;
    }

    std::vector<Value> written;
    bool refusing = false;
};

template <typename T>
class FakeNumber final : public WritableControl<ICameraControlNumeric<T>, T>
{
public:
    T maximum() const override { return highest; }
    T minimum() const override { return lowest; }
    T step() const override { return 1; }
    T value() const override { return 0; }
    // As the interface has it: the driver does not hear of what is out of range.
    bool setValue(T value) override
    {
        return value >= lowest && value <= highest && this->write(value);
    }

    T lowest = 0;
    T highest = 100;
};

class FakeBoolean final : public WritableControl<ICameraControlBoolean, bool>
{
public:
    bool value() const override { return false; }
    bool setValue(bool value) override { return write(value); }
    bool defaultValue() const override { return false; }
};

class FakeBitMask final : public WritableControl<ICameraControlBitMask, unsigned int>
{
public:
    unsigned int defaultValue() const override { return 0; }
    unsigned int value() const override { return 0; }
    bool setValue(unsigned int value) override { return write(value); }
};

class FakeButton final : public WritableControl<ICameraControlButton, bool>
{
public:
    bool clicked() override { return write(true); }
};

class FakeString final : public WritableControl<ICameraControlString, std::string>
{
public:
    unsigned int stringSize() const override { return 9; }
    bool getValue(char*, int) const override { return false; }
    bool setValue(char const* value) override { return write(value); }
    int minLength() const override { return 2; }
    int maxLength() const override { return 8; }
};

class FakeMenu final : public WritableControl<ICameraControlStringMenu, int>
{
public:
    int defaultIndex() const override { return 0; }
    int currentIndex() const override { return 0; }
    bool setCurrentIndex(int position) override { return write(position); }
    int count() const override { return static_cast<int>(labels.size()); }
    char const* currentString() const override { return string(0); }
    char const* defaultString() const override { return string(0); }
    char const* string(int position) const override
    {
        return labels.at(std::size_t(position)).c_str();
    }

    std::vector<std::string> labels{"Off", "on", "2", "On"};
};

class FakeNumberMenu final : public WritableControl<ICameraControlInt64Menu, int>
{
public:
    int defaultIndex() const override { return 0; }
    int currentIndex() const override { return 0; }
    bool setCurrentIndex(int position) override { return write(position); }
    int count() const override { return 0; }
    long long currentValue() const override { throw std::out_of_range("value"); }
    long long defaultValue() const override { throw std::out_of_range("value"); }
    long long value(int) const override { throw std::out_of_range("value"); }
};

std::string outcome(ICameraControl& control, std::optional<std::string> const& value)
{
    try {
        Iacq::apply({&control, value});
    } catch (Iacq::Failure const& failure) {
        EXPECT_EQ(failure.status(), Iacq::CameraFailed);
        std::string const text = failure.what();
        return text.substr(text.find(": ") + 2);
    }
    return "set";
}

TEST(ControlSetting, SendsTheNumberThatIsMeant)
{
    FakeNumber<int> control;
    control.lowest = -100;
    EXPECT_EQ(outcome(control, "-7"), "set");
    EXPECT_EQ(outcome(control, "0x10"), "set");
    EXPECT_THAT(control.written, ElementsAre(-7, 16));
}

template <typename T>
class NumberSetting : public testing::Test
{
};

using Numbers = testing::Types<int, long long, unsigned char, unsigned short, unsigned int>;
TYPED_TEST_SUITE(NumberSetting, Numbers);

TYPED_TEST(NumberSetting, ReachesBothEndsAndGoesNoFurther)
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

TEST(ControlSetting, DoesNotWrapANumberThatIsTooWide)
{
    FakeNumber<unsigned char> control;
    EXPECT_EQ(outcome(control, "261"), "261 is outside 0..100");
    EXPECT_EQ(outcome(control, "-1"), "-1 is outside 0..100");
    EXPECT_THAT(control.written, IsEmpty());
}

TEST(ControlSetting, SwitchesBooleans)
{
    FakeBoolean control;
    EXPECT_EQ(outcome(control, "on"), "set");
    EXPECT_EQ(outcome(control, "0"), "set");
    EXPECT_EQ(outcome(control, "2"), "'2' is neither on nor off");
    EXPECT_THAT(control.written, ElementsAre(true, false));
}

TEST(ControlSetting, SetsAllBitsOfAMask)
{
    FakeBitMask control;
    EXPECT_EQ(outcome(control, "0xffffffff"), "set");
    EXPECT_EQ(outcome(control, "0x100000000"), "'0x100000000' is no mask of 32 bits");
    EXPECT_THAT(control.written, ElementsAre(0xffffffffu));
}

TEST(ControlSetting, PressesAButtonByItsNameAlone)
{
    FakeButton control;
    EXPECT_EQ(outcome(control, std::nullopt), "set");
    EXPECT_EQ(outcome(control, "1"), "it is a button: give its name alone");
    EXPECT_EQ(control.written.size(), 1u);
}

TEST(ControlSetting, WritesTextsAsTheyAre)
{
    FakeString control;
    EXPECT_EQ(outcome(control, "a = b"), "set");
    EXPECT_THAT(control.written, ElementsAre("a = b"));
    control.refusing = true;
    EXPECT_EQ(outcome(control, ""), "its length 0 is outside 2..8");
    EXPECT_EQ(outcome(control, "fits"), "refused by the driver");
}

TEST(ControlSetting, TakesAMenusLabelBeforeItsPosition)
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

TEST(ControlSetting, TakesPositionsOfAMenuOfNumbers)
{
    FakeNumberMenu control;
    EXPECT_EQ(outcome(control, "2"), "set");
    EXPECT_EQ(outcome(control, "two"), "'two' is no position");
    control.refusing = true;
    EXPECT_EQ(outcome(control, "9"), "no such item, or refused by the driver");
    EXPECT_THAT(control.written, ElementsAre(2, 9));
}

TEST(ControlSetting, SendsNothingToAControlThatCannotBeWritten)
{
    struct Case
    {
        bool FakeControl<ICameraControlBoolean>::*flag;
        char const* reason;
    };
    using Fake = FakeControl<ICameraControlBoolean>;
    for (auto const& [flag, reason] :
         {Case{&Fake::readOnly, "read-only"}, Case{&Fake::disabled, "disabled"},
          Case{&Fake::inactive, "inactive"}, Case{&Fake::grabbed, "grabbed by another program"}}) {
        FakeBoolean control;
        control.*flag = true;
        EXPECT_EQ(outcome(control, "on"), reason);
        EXPECT_THAT(control.written, IsEmpty());
    }
}

TEST(ControlSetting, JudgesByTheStateAsItIsNow)
{
    FakeBoolean control;
    control.inactive = true;
    control.inactiveByNow = false;
    EXPECT_EQ(outcome(control, "on"), "set");
    control.inactiveByNow = true;
    EXPECT_EQ(outcome(control, "on"), "inactive");
}

TEST(ControlSetting, SaysWhichControlWasNotSet)
{
    FakeBoolean control;
    control.controlName = "Light";
    control.refusing = true;
    try {
        Iacq::apply({&control, "on"});
        FAIL();
    } catch (Iacq::Failure const& failure) {
        EXPECT_STREQ(failure.what(), "Light was not set: refused by the driver");
    }
}

class ControlNames : public testing::Test
{
protected:
    ControlNames()
    {
        char const* const names[] = {"Gain", "Gain, Red", "A=B", "A", "Gain (Red)", "Pan", "Pan"};
        for (std::size_t i = 0; i < std::size(names); ++i) {
            m_controls[i].controlName = names[i];
            m_camera.controls.push_back(&m_controls[i]);
        }
    }

    FakeBoolean m_controls[7];
    FakeCamera m_camera;
};

TEST_F(ControlNames, AreTakenWholeOrInTheirShortForm)
{
    EXPECT_EQ(&Iacq::findControl(m_camera, "Gain, Red"), &m_controls[1]);
    EXPECT_EQ(&Iacq::findControl(m_camera, "gain"), &m_controls[0]);
    EXPECT_THROW(Iacq::findControl(m_camera, "GAIN"), Iacq::Failure);
    EXPECT_THROW(Iacq::findControl(m_camera, ""), Iacq::Failure);
}

TEST_F(ControlNames, ThatRepeatMeanTheFirst)
{
    EXPECT_EQ(&Iacq::findControl(m_camera, "Pan"), &m_controls[5]);
    EXPECT_EQ(&Iacq::findControl(m_camera, "pan"), &m_controls[5]);
}

TEST_F(ControlNames, ThatAreUnclearInTheirShortFormAreRefused)
{
    try {
        Iacq::findControl(m_camera, "gain_red");
        FAIL();
    } catch (Iacq::Failure const& failure) {
        EXPECT_STREQ(failure.what(),
                     "'gain_red' may be 'Gain, Red' or 'Gain (Red)'; give the full name");
    }
}

TEST_F(ControlNames, EndAtTheEqualsSignThatMakesOne)
{
    Iacq::Assignment assignment = Iacq::parseAssignment(m_camera, "A=B=1");
    EXPECT_EQ(assignment.control, &m_controls[3]);
    EXPECT_EQ(assignment.value, "B=1");
    assignment = Iacq::parseAssignment(m_camera, "A=B");
    EXPECT_EQ(assignment.control, &m_controls[2]);
    EXPECT_EQ(assignment.value, std::nullopt);
    assignment = Iacq::parseAssignment(m_camera, "gain=");
    EXPECT_EQ(assignment.control, &m_controls[0]);
    EXPECT_EQ(assignment.value, "");
    EXPECT_THROW(Iacq::parseAssignment(m_camera, "absent=1"), Iacq::Failure);
}

class SeveralAssignments : public testing::Test
{
protected:
    SeveralAssignments()
    {
        m_number.controlName = "Number";
        m_switch.controlName = "Switch";
        m_menu.controlName = "Menu";
        m_text.controlName = "Text";
        m_button.controlName = "Button";
        m_camera.controls = {&m_number, &m_switch, &m_menu, &m_text, &m_button};
    }

    std::string outcome(std::vector<std::string> const& texts)
    {
        try {
            Iacq::applyAll(m_camera, texts);
        } catch (Iacq::Failure const& failure) {
            return std::to_string(failure.status()) + ": " + failure.what();
        }
        return "set";
    }

    std::size_t writes() const
    {
        return m_number.written.size() + m_switch.written.size() + m_menu.written.size() +
               m_text.written.size() + m_button.written.size();
    }

    FakeNumber<int> m_number;
    FakeBoolean m_switch;
    FakeMenu m_menu;
    FakeString m_text;
    FakeButton m_button;
    FakeCamera m_camera;
};

TEST_F(SeveralAssignments, AreWrittenInTheirOrder)
{
    EXPECT_EQ(outcome({"number=1", "button", "menu=On", "number=2", "text=abc"}), "set");
    EXPECT_THAT(m_number.written, ElementsAre(1, 2));
    EXPECT_THAT(m_menu.written, ElementsAre(3));
    EXPECT_EQ(writes(), 5u);
}

TEST_F(SeveralAssignments, AreAllLeftAloneWhenOneIsRefused)
{
    for (auto const& [refused, reason] :
         {std::pair{"number=999", "1: Number was not set: 999 is outside 0..100"},
          std::pair{"number=many", "1: Number was not set: 'many' is no number"},
          std::pair{"switch=maybe", "1: Switch was not set: 'maybe' is neither on nor off"},
          std::pair{"menu=Other", "1: Menu was not set: no such item: 'Other'"},
          std::pair{"text=x", "1: Text was not set: its length 1 is outside 2..8"},
          std::pair{"button=1", "1: Button was not set: it is a button: give its name alone"},
          std::pair{"menu", "1: Menu was not set: it needs a value: NAME=VALUE"},
          std::pair{"absent=1", "2: the camera has no control 'absent'"}}) {
        EXPECT_EQ(outcome({"number=1", "button", refused}), reason);
        EXPECT_EQ(writes(), 0u) << refused;
    }
}

TEST_F(SeveralAssignments, HaveAllTheirRefusalsTold)
{
    m_text.readOnly = true;
    EXPECT_EQ(outcome({"number=1", "number=999", "absent=1", "text=abc", "menu=Other"}),
              "2: the camera has no control 'absent'; Number was not set: 999 is outside 0..100; "
              "Text was not set: read-only; Menu was not set: no such item: 'Other'");
    EXPECT_EQ(writes(), 0u);
}

TEST_F(SeveralAssignments, AreJudgedByTheStateOfTheirControls)
{
    m_text.readOnly = true;
    EXPECT_EQ(outcome({"number=1", "text=abc"}), "1: Text was not set: read-only");
    m_text.readOnly = false;
    m_text.grabbed = true;
    EXPECT_EQ(outcome({"switch=on", "text=abc"}),
              "1: Text was not set: grabbed by another program");
    m_text.grabbed = false;
    m_text.disabled = true;
    EXPECT_EQ(outcome({"menu=On", "text=abc"}), "1: Text was not set: disabled");
    m_text.disabled = false;
    m_text.inactiveByNow = true;
    EXPECT_EQ(outcome({"number=1", "text=abc"}), "1: Text was not set: inactive");
    EXPECT_EQ(writes(), 0u);
}

TEST_F(SeveralAssignments, MayActivateTheirSuccessors)
{
    // Here nothing becomes active, so that the second is refused once it is its turn.
    m_number.inactive = true;
    EXPECT_EQ(outcome({"switch=off", "number=1"}), "1: Number was not set: inactive");
    EXPECT_THAT(m_switch.written, ElementsAre(false));
    EXPECT_EQ(outcome({"number=1", "menu=On"}), "1: Number was not set: inactive");
    EXPECT_THAT(m_menu.written, IsEmpty());
    EXPECT_EQ(outcome({"menu=On", "number=999"}), "1: Number was not set: 999 is outside 0..100");
    EXPECT_THAT(m_menu.written, IsEmpty());
}

TEST_F(SeveralAssignments, StopAtWhatOnlyTheDriverRefuses)
{
    m_switch.refusing = true;
    EXPECT_EQ(outcome({"number=1", "switch=on", "menu=On"}),
              "1: Switch was not set: refused by the driver");
    EXPECT_THAT(m_number.written, ElementsAre(1));
    EXPECT_THAT(m_menu.written, IsEmpty());
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

TEST(ControlSetting, SendsWhatIsOutsideARangeOfOneValue)
{
    FakeSerialNumber control;
    EXPECT_EQ(outcome(control, "7"), "set");
    EXPECT_THAT(control.written, ElementsAre(7));
}

} // namespace
