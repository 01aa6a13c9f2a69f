// SPDX-License-Identifier: MIT
#include "Selection.h"

#include "CurrentSelection.h"
#include "Failure.h"
#include "FakeCamera.h"

#include <gmock/gmock.h>

namespace
{

using Iacq::WantedSelection;
using testing::HasSubstr;

class SelectionTest : public testing::Test
{
protected:
    SelectionTest()
    {
        std::vector<FakePeriod> const slow = {{1, 30}, {1, 15}};
        m_camera.formats = {
            {"YUYV", {{640, 480, slow}, {320, 240, slow}}},
            {"MJPG", {{320, 240, slow}, {1280, 720, {{1, 60}, {1001, 30000}, {1, 30}}}}},
            {"GREY", {{160, 120, {}}}},
        };
        m_camera.setFormat = 0;
        m_camera.setSize = 0;
        m_camera.setInterval = 1;
    }

    std::vector<int> set() const
    {
        return {m_camera.setFormat, m_camera.setSize, m_camera.setInterval};
    }

    std::string refusal(WantedSelection const& wanted)
    {
        try {
            Iacq::select(m_camera, wanted);
        } catch (Iacq::Failure const& failure) {
            return std::to_string(failure.status()) + ": " + failure.what();
        }
        return "none";
    }

    FakeCamera m_camera;
};

using Positions = std::vector<int>;

TEST_F(SelectionTest, IsLeftAloneWhenNothingIsWanted)
{
    Iacq::select(m_camera, {});
    EXPECT_EQ(m_camera.timesSet, 0);
}

TEST_F(SelectionTest, KeepsWhatIsSetWhereItGoesWithWhatIsWanted)
{
    Iacq::select(m_camera, {"", "320x240", "", ""});
    EXPECT_EQ(set(), (Positions{0, 1, 1}));
    Iacq::select(m_camera, {"MJPG", "", "", ""});
    EXPECT_EQ(set(), (Positions{1, 0, 1}));
    Iacq::select(m_camera, {"", "", "1/30", ""});
    EXPECT_EQ(set(), (Positions{1, 0, 0}));
}

TEST_F(SelectionTest, TakesTheFirstThatGoesWithWhatIsWanted)
{
    Iacq::select(m_camera, {"", "1280x720", "", ""});
    EXPECT_EQ(set(), (Positions{1, 1, 0}));
    m_camera.setFormat = 0;
    m_camera.setSize = 1;
    Iacq::select(m_camera, {"", "", "1/60", ""});
    EXPECT_EQ(set(), (Positions{1, 1, 0}));
    Iacq::select(m_camera, {"GREY", "", "", ""});
    EXPECT_EQ(set(), (Positions{2, 0, 0}));
}

TEST_F(SelectionTest, ComparesIntervalsAsFractions)
{
    Iacq::select(m_camera, {"", "", "2/60", ""});
    EXPECT_EQ(set(), (Positions{0, 0, 0}));
}

TEST_F(SelectionTest, FindsAnIntervalByFramesASecond)
{
    Iacq::select(m_camera, {"", "", "", "30"});
    EXPECT_EQ(set(), (Positions{0, 0, 0}));
    Iacq::select(m_camera, {"", "", "", "29.97"});
    EXPECT_EQ(set(), (Positions{1, 1, 1}));
    Iacq::select(m_camera, {"", "", "", "30"});
    EXPECT_EQ(set(), (Positions{1, 1, 2}));
}

TEST_F(SelectionTest, TakesTheNearestFrameRateWithinItsTolerance)
{
    // 30; 29.97 rounded down to units of 100 ns, and exactly; 23.976; 59.94; 119.88; 8.333
    m_camera.formats = {{"YUYV",
                         {{640,
                           480,
                           {{1, 30},
                            {333666, 10000000},
                            {1001, 30000},
                            {1001, 24000},
                            {1001, 60000},
                            {1001, 120000},
                            {3, 25}}}}}};
    struct Case
    {
        char const* wanted;
        int found;
    };
    for (auto const& [wanted, found] :
         {Case{"30", 0}, Case{"29.97", 2}, Case{"29.97003", 2}, Case{"29.9701", 1},
          Case{"29.98", 1}, Case{"23.976", 3}, Case{"23.98", 3}, Case{"59.94", 4}, Case{"119.9", 5},
          Case{"8.33", 6}}) {
        m_camera.setInterval = -1;
        EXPECT_EQ(refusal({"", "", "", wanted}), "none") << wanted;
        EXPECT_EQ(m_camera.setInterval, found) << wanted;
    }
    for (char const* const absent : {"24", "60", "120", "29.95", "8.3"}) {
        EXPECT_EQ(refusal({"", "", "", absent}),
                  std::string("2: the camera has no frame rate ") + absent +
                      "; it has 30 29.97 23.976 59.94 119.88 8.333 frames a second");
    }
}

TEST_F(SelectionTest, StartsWithTheFirstWhenTheDeviceIsSetToNoneOfTheList)
{
    m_camera.setFormat = -1;
    EXPECT_TRUE(Iacq::currentSelection(m_camera).size->isInvalid());
    Iacq::select(m_camera, {});
    EXPECT_EQ(set(), (Positions{0, 0, 0}));
}

TEST_F(SelectionTest, SaysWhatThereIsInstead)
{
    EXPECT_EQ(refusal({"ABCD", "", "", ""}),
              "2: the camera has no format 'ABCD'; it has YUYV MJPG GREY");
    EXPECT_EQ(refusal({"YUYV", "1280x720", "", ""}),
              "2: the format YUYV has no size 1280x720; it has 640x480 320x240");
    EXPECT_EQ(refusal({"", "1x1", "", ""}),
              "2: the camera has no size 1x1; it has 640x480 320x240 1280x720 160x120");
    EXPECT_EQ(refusal({"", "640x480", "1/60", ""}),
              "2: the size 640x480 has no interval 1/60; it has 1/30 1/15");
    EXPECT_EQ(refusal({"YUYV", "", "", "60"}),
              "2: the format YUYV has no frame rate 60; it has 30 15 frames a second");
    EXPECT_EQ(refusal({"GREY", "", "", "30"}),
              "2: the format GREY has no frame rate 30; it has no list of them");
    EXPECT_EQ(refusal({"GREY", "", "1/30", ""}),
              "2: the format GREY has no interval 1/30; it has no list of them");
    EXPECT_EQ(m_camera.timesSet, 0);
}

TEST_F(SelectionTest, RefusesWhatIsMisspelt)
{
    EXPECT_THAT(refusal({"", "640*480", "", ""}), HasSubstr("2: '640*480' is no size"));
    EXPECT_THAT(refusal({"", "", "30", ""}), HasSubstr("2: '30' is no interval"));
    EXPECT_THAT(refusal({"", "", "", "fast"}), HasSubstr("2: 'fast' is no number"));
}

TEST_F(SelectionTest, TellsOfADriverThatRefuses)
{
    m_camera.refusing = true;
    EXPECT_EQ(refusal({"MJPG", "", "", ""}), "1: the camera refused the format MJPG 320x240");
}

TEST_F(SelectionTest, KeepsWhatIsSetOnACameraWithARangeOfSizes)
{
    m_camera.formats = {{"YUYV", {}}};
    Iacq::select(m_camera, {"YUYV", "", "", ""});
    EXPECT_EQ(m_camera.timesSet, 0);
    EXPECT_EQ(refusal({"", "640x480", "", ""}),
              "2: the camera has no size 640x480; it has no list of them");
    m_camera.setFormat = -1;
    EXPECT_EQ(refusal({}), "none");
    EXPECT_EQ(refusal({"YUYV", "", "", ""}),
              "2: the format YUYV has no size that can be chosen; it has no list of them");
}

} // namespace
