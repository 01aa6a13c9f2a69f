// SPDX-License-Identifier: MIT
#include "ControlSetting.h"

#include "Failure.h"
#include "FakeControls.h"

#include <gmock/gmock.h>

namespace
{

using namespace ImageAcquisition;
using testing::ElementsAre;
using testing::IsEmpty;

class SeveralAssignmentsTest : public testing::Test
{
protected:
    SeveralAssignmentsTest()
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

TEST_F(SeveralAssignmentsTest, AreWrittenInTheirOrder)
{
    EXPECT_EQ(outcome({"number=1", "button", "menu=On", "number=2", "text=abc"}), "set");
    EXPECT_THAT(m_number.written, ElementsAre(1, 2));
    EXPECT_THAT(m_menu.written, ElementsAre(3));
    EXPECT_EQ(writes(), 5u);
}

TEST_F(SeveralAssignmentsTest, AreAllLeftAloneWhenOneIsRefused)
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

TEST_F(SeveralAssignmentsTest, HaveAllTheirRefusalsTold)
{
    m_text.readOnly = true;
    EXPECT_EQ(outcome({"number=1", "number=999", "absent=1", "text=abc", "menu=Other"}),
              "2: the camera has no control 'absent'; Number was not set: 999 is outside 0..100; "
              "Text was not set: read-only; Menu was not set: no such item: 'Other'");
    EXPECT_EQ(writes(), 0u);
}

TEST_F(SeveralAssignmentsTest, AreJudgedByTheStateOfTheirControls)
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

TEST_F(SeveralAssignmentsTest, MayActivateTheirSuccessors)
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

TEST_F(SeveralAssignmentsTest, StopAtWhatOnlyTheDriverRefuses)
{
    m_switch.refusing = true;
    EXPECT_EQ(outcome({"number=1", "switch=on", "menu=On"}),
              "1: Switch was not set: refused by the driver");
    EXPECT_THAT(m_number.written, ElementsAre(1));
    EXPECT_THAT(m_menu.written, IsEmpty());
}

} // namespace
