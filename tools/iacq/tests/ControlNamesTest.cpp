// SPDX-License-Identifier: MIT
#include "ControlSetting.h"

#include "Failure.h"
#include "FakeControls.h"

#include <gmock/gmock.h>

namespace
{

using namespace ImageAcquisition;

class ControlNamesTest : public testing::Test
{
protected:
    ControlNamesTest()
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

TEST_F(ControlNamesTest, AreTakenWholeOrInTheirShortForm)
{
    EXPECT_EQ(&Iacq::findControl(m_camera, "Gain, Red"), &m_controls[1]);
    EXPECT_EQ(&Iacq::findControl(m_camera, "gain"), &m_controls[0]);
    EXPECT_THROW(Iacq::findControl(m_camera, "GAIN"), Iacq::Failure);
    EXPECT_THROW(Iacq::findControl(m_camera, ""), Iacq::Failure);
}

TEST_F(ControlNamesTest, ThatRepeatMeanTheFirst)
{
    EXPECT_EQ(&Iacq::findControl(m_camera, "Pan"), &m_controls[5]);
    EXPECT_EQ(&Iacq::findControl(m_camera, "pan"), &m_controls[5]);
}

TEST_F(ControlNamesTest, ThatAreUnclearInTheirShortFormAreRefused)
{
    try {
        Iacq::findControl(m_camera, "gain_red");
        FAIL();
    } catch (Iacq::Failure const& failure) {
        EXPECT_STREQ(failure.what(),
                     "'gain_red' may be 'Gain, Red' or 'Gain (Red)'; give the full name");
    }
}

TEST_F(ControlNamesTest, EndAtTheEqualsSignThatMakesOne)
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

} // namespace
