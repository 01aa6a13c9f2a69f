// SPDX-License-Identifier: MIT
#include "CameraWithControls.h"
#include "ICameraControlBitMask.h"
#include "ICameraControlBoolean.h"
#include "ICameraControlButton.h"
#include "ICameraControlInt64Menu.h"
#include "ICameraControlNumeric.h"
#include "ICameraControlString.h"
#include "ICameraControlStringMenu.h"
#include "control/CameraControlBoolean.h"

#include <gtest/gtest.h>
#include <linux/videodev2.h>

#include <ostream>

using namespace ImageAcquisition;
using namespace VirtualCamera;

namespace
{

constexpr unsigned int id = V4L2_CID_BRIGHTNESS;

/// A control of one type, and a value that its driver accepts.
struct Kind
{
    char const* name;
    ControlScript script;
    bool (*set)(ICameraControl&);
};

// For the names under which the tests are listed.
void PrintTo(Kind const& kind, std::ostream* output)
{
    *output << kind.name;
}

template <typename T>
bool setNumber(ICameraControl& control)
{
    return dynamic_cast<ICameraControlNumeric<T>&>(control).setValue(0);
}

bool setPosition(ICameraControl& control)
{
    return dynamic_cast<ICameraControlBaseMenu&>(control).setCurrentIndex(0);
}

Kind const kinds[] = {
    {"Int32", integerControl(id, "C").range(0, 9), setNumber<int>},
    {"Int64", integer64Control(id, "C").range(0, 9), setNumber<long long>},
    {"UInt8", unsigned8Control(id, "C"), setNumber<unsigned char>},
    {"UInt16", unsigned16Control(id, "C"), setNumber<unsigned short>},
    {"Boolean", booleanControl(id, "C"),
     [](ICameraControl& control) {
         return dynamic_cast<ICameraControlBoolean&>(control).setValue(true);
     }},
    {"Button", buttonControl(id, "C"),
     [](ICameraControl& control) {
         return dynamic_cast<ICameraControlButton&>(control).clicked();
     }},
    {"BitMask", bitMaskControl(id, "C").range(0, 15),
     [](ICameraControl& control) {
         return dynamic_cast<ICameraControlBitMask&>(control).setValue(1);
     }},
    {"StringMenu", menuControl(id, "C").withItem("Zero"), setPosition},
    {"Int64Menu", integerMenuControl(id, "C").withItem(0, std::int64_t{5}), setPosition},
    {"String", stringControl(id, "C").range(0, 9),
     [](ICameraControl& control) {
         return dynamic_cast<ICameraControlString&>(control).setValue("x");
     }},
};

class WriteGuardTest : public testing::TestWithParam<Kind>
{
protected:
    CameraWithControls withFlags(unsigned int flags) const
    {
        ControlScript script = GetParam().script;
        return CameraWithControls({script.withFlags(flags)});
    }
};

/// Notes which flags it is asked for.
class Observed : public CameraControlBoolean
{
public:
    using CameraControlBoolean::CameraControlBoolean;
    bool isReadOnly() const override { return asked("read-only"); }
    bool isDisabled() const override { return asked("disabled"); }
    bool isInactive() const override { return asked("inactive"); }
    bool isGrabbed() const override { return asked("grabbed"); }

    std::string refusing;
    mutable std::vector<std::string> questions;

private:
    bool asked(char const* question) const
    {
        questions.emplace_back(question);
        return refusing == question;
    }
};

TEST_P(WriteGuardTest, EachOfFourFlagsRefusesWritesWithoutAsking)
{
    for (unsigned int const flag : {V4L2_CTRL_FLAG_READ_ONLY, V4L2_CTRL_FLAG_DISABLED,
                                    V4L2_CTRL_FLAG_INACTIVE, V4L2_CTRL_FLAG_GRABBED}) {
        CameraWithControls const opened = withFlags(flag);
        EXPECT_FALSE(GetParam().set(opened.control(id))) << flag;
        EXPECT_EQ(opened.node.countOf(Call::Ioctl), 0u) << flag;
    }
}

TEST_P(WriteGuardTest, NoOtherFlagRefusesWrites)
{
    for (unsigned int const flag :
         {0, V4L2_CTRL_FLAG_UPDATE, V4L2_CTRL_FLAG_SLIDER, V4L2_CTRL_FLAG_WRITE_ONLY,
          V4L2_CTRL_FLAG_VOLATILE, V4L2_CTRL_FLAG_EXECUTE_ON_WRITE}) {
        CameraWithControls const opened = withFlags(flag);
        EXPECT_TRUE(GetParam().set(opened.control(id))) << flag;
        EXPECT_EQ(opened.node.controlWrites(id), 1u) << flag;
        EXPECT_EQ(opened.node.countOf(Call::Ioctl), 1u) << flag;
    }
}

TEST_P(WriteGuardTest, GoesByTheFlagsThatWereAskedForLast)
{
    CameraWithControls opened = withFlags(0);
    ICameraControl& control = opened.control(id);
    opened.node.setControlFlags(id, V4L2_CTRL_FLAG_INACTIVE);
    EXPECT_FALSE(GetParam().set(control)); // Refused by the driver, to which it was sent.
    EXPECT_EQ(opened.node.controlWrites(id), 1u);

    control.updateState();
    EXPECT_FALSE(GetParam().set(control));
    EXPECT_EQ(opened.node.controlWrites(id), 1u);

    opened.node.setControlFlags(id, 0);
    EXPECT_FALSE(GetParam().set(control));
    control.updateState();
    EXPECT_TRUE(GetParam().set(control));
    EXPECT_EQ(opened.node.controlWrites(id), 2u);
}

INSTANTIATE_TEST_SUITE_P(EveryType, WriteGuardTest, testing::ValuesIn(kinds),
                         [](auto const& tested) { return std::string(tested.param.name); });

TEST(WriteGuardTest, FlagsAreTestedInTheirOrderUntilOneRefuses)
{
    CameraWithControls opened({booleanControl(id, "C")});
    Observed control(opened.camera, id, "C");
    std::vector<std::string> const order = {"read-only", "disabled", "inactive", "grabbed"};
    EXPECT_TRUE(control.setValue(true));
    EXPECT_EQ(order, control.questions);
    for (std::size_t refusing = 0; refusing < order.size(); ++refusing) {
        control.questions.clear();
        control.refusing = order[refusing];
        EXPECT_FALSE(control.setValue(true));
        EXPECT_EQ(control.questions.size(), refusing + 1);
    }
}

} // namespace
