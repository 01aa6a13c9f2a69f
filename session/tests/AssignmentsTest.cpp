// SPDX-License-Identifier: MIT
// Several controls that are set at once.
#include "ErrorOf.h"
#include "OpenedCamera.h"

#include <gmock/gmock.h>
#include <linux/videodev2.h>

#include <cerrno>

namespace
{

using namespace ImageAcquisition::Session;
using testing::HasSubstr;

constexpr unsigned int textId = V4L2_CID_USER_BASE + 0x1001;
constexpr unsigned int buttonId = V4L2_CID_USER_BASE + 0x1002;

class AssignmentsTest : public testing::Test
{
protected:
    static VirtualCamera::CameraBuilder cameraWithControls()
    {
        using namespace VirtualCamera;
        return aCamera()
            .withControl(integerControl(V4L2_CID_GAIN, "Gain").range(0, 100).byDefault(10))
            .withControl(menuControl(V4L2_CID_EXPOSURE_AUTO, "Auto Exposure")
                             .withItem(1, "Manual Mode")
                             .withItem(3, "Aperture Priority Mode")
                             .byDefault(3))
            .withControl(integerControl(V4L2_CID_EXPOSURE_ABSOLUTE, "Exposure Time, Absolute")
                             .range(1, 5000)
                             .byDefault(200)
                             .activeOnlyWhen(V4L2_CID_EXPOSURE_AUTO, 1))
            .withControl(integerControl(V4L2_CID_SHARPNESS, "Sharpness").range(0, 9).readOnly())
            .withControl(stringControl(textId, "Label").range(2, 4).currently("abc"))
            .withControl(buttonControl(buttonId, "Reset All"));
    }

    std::string refusalOf(std::vector<Assignment> const& assignments) const
    {
        auto const error = errorOf([&] { m_camera.set(assignments); });
        return error ? std::string(toText(error->kind())) + ": " + error->reason() : "none";
    }

    std::size_t writes() const
    {
        std::size_t count = 0;
        for (unsigned int const id : {unsigned{V4L2_CID_GAIN}, unsigned{V4L2_CID_EXPOSURE_AUTO},
                                      unsigned{V4L2_CID_EXPOSURE_ABSOLUTE},
                                      unsigned{V4L2_CID_SHARPNESS}, textId, buttonId}) {
            count += m_video.controlWrites(id);
        }
        return count;
    }

    OpenedCamera m_opened{cameraWithControls()};
    VirtualCamera::InstalledCamera& m_video = m_opened.video;
    Camera& m_camera = m_opened.camera;
};

TEST_F(AssignmentsTest, AreSetInTheirOrder)
{
    m_camera.set({{"gain", 1}, {"reset_all"}, {"Label", "wxyz"}, {"gain", "0x2"}});
    EXPECT_EQ(m_video.controlValue(V4L2_CID_GAIN), 2);
    EXPECT_EQ(m_video.controlText(textId), "wxyz");
    EXPECT_EQ(m_video.controlWrites(V4L2_CID_GAIN), 2u);
    EXPECT_EQ(m_video.controlWrites(buttonId), 1u);
}

TEST_F(AssignmentsTest, AreAllLeftAloneWhenOneIsRefused)
{
    for (auto const& [refused, reason] :
         {std::pair<Assignment, char const*>{{"gain", 101}, "refused: 101 is outside 0..100"},
          {{"gain", "many"}, "bad request: 'many' is no number"},
          {{"auto_exposure", "Other"}, "bad request: no such item: 'Other'"},
          {{"label", "x"}, "refused: its length 1 is outside 2..4"},
          {{"sharpness", 1}, "refused: read-only"},
          {{"reset_all", 1}, "bad request: it is a button: give its name alone"},
          {{"gain"}, "bad request: it needs a value: NAME=VALUE"},
          {{"absent", 1}, "not found: the camera has no such control"}}) {
        EXPECT_EQ(refusalOf({{"gain", 1}, {"reset_all"}, refused}), reason);
        EXPECT_EQ(writes(), 0u) << reason;
    }
}

TEST_F(AssignmentsTest, HaveAllTheirRefusalsTold)
{
    auto const error = errorOf([&] {
        m_camera.set({{"gain", 1}, {"gain", 999}, {"gian", 1}, {"sharpness", 3}, {"gain", {}}});
    });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->kind(), ErrorKind::NotFound);
    EXPECT_EQ(error->operation(), "set controls");
    EXPECT_EQ(error->node(), "/dev/video0");
    EXPECT_THAT(error->reason(), HasSubstr("set Gain to '999': 999 is outside 0..100; find control "
                                           "'gian': the camera has no such control (nearest: "
                                           "gain"));
    EXPECT_THAT(error->reason(), HasSubstr("); set Sharpness to '3': read-only; press Gain: it "
                                           "needs a value"));
    EXPECT_EQ(writes(), 0u);
}

TEST_F(AssignmentsTest, MayActivateTheirSuccessors)
{
    m_camera.set({{"auto_exposure", "Manual Mode"}, {"exposure", 300}});
    EXPECT_EQ(m_video.controlValue(V4L2_CID_EXPOSURE_ABSOLUTE), 300);
}

TEST_F(AssignmentsTest, DoNotActivateTheirPredecessors)
{
    EXPECT_EQ(refusalOf({{"exposure", 300}, {"auto_exposure", "Manual Mode"}}),
              "refused: inactive");
    EXPECT_EQ(refusalOf({{"gain", 1}, {"exposure", 300}}), "refused: inactive");
    EXPECT_EQ(refusalOf({{"auto_exposure", "Manual Mode"}, {"exposure", 5001}}),
              "refused: 5001 is outside 1..5000");
    EXPECT_EQ(writes(), 0u);
}

TEST_F(AssignmentsTest, EndAtOneThatStaysInactive)
{
    EXPECT_EQ(refusalOf({{"auto_exposure", "Aperture Priority Mode"}, {"exposure", 300}}),
              "refused: inactive");
    EXPECT_EQ(writes(), 1u);
}

TEST_F(AssignmentsTest, EndAtWhatOnlyTheDriverRefuses)
{
    m_video.fail(VIDIOC_S_CTRL, EIO, 2);
    EXPECT_EQ(refusalOf({{"gain", 1}, {"auto_exposure", 0}, {"label", "ab"}}),
              "refused: refused by the driver");
    EXPECT_EQ(m_video.controlValue(V4L2_CID_GAIN), 1);
    EXPECT_EQ(m_video.controlText(textId), "abc");
}

} // namespace
