// SPDX-License-Identifier: MIT
#include "CameraWithControls.h"

#include <gtest/gtest.h>
#include <linux/videodev2.h>

using namespace ImageAcquisition;
using namespace VirtualCamera;

namespace
{

ControlScript integer(unsigned int id, char const* name)
{
    return integerControl(id, name).range(0, 9);
}

std::vector<std::string> namesOf(Camera const& camera)
{
    std::vector<std::string> names;
    for (int position = 0; position < camera.controlNumber(); ++position) {
        names.emplace_back(camera.control(position)->name());
    }
    return names;
}

/// Claims to have more or fewer controls than it has.
class Miscounting : public Camera
{
public:
    using Camera::Camera;
    int controlNumber() const override { return claimed; }
    int claimed = 0;
};

TEST(ControlLookupTest, FirstOfSeveralEqualNamesIsFound)
{
    CameraWithControls const opened({integer(V4L2_CID_GAIN, "Same"), integer(V4L2_CID_HUE, "Same"),
                                     integer(V4L2_CID_GAMMA, "Early")});
    EXPECT_EQ(opened.camera.control(1), opened.camera.control("Same"));
}

TEST(ControlLookupTest, PositionIsHeldAgainstTheVirtualCount)
{
    InstalledCamera const node =
        CameraWithControls::builderOf({integer(V4L2_CID_GAIN, "A"), integer(V4L2_CID_HUE, "B")})
            .install();
    DeviceStub const record{};
    Miscounting camera(&record);
    ASSERT_TRUE(camera.init());
    camera.claimed = 1;
    EXPECT_STREQ(camera.control(0)->name(), "A");
    EXPECT_EQ(camera.invalidControl(), camera.control(1));
}

TEST(ControlLookupTest, ClassHeadingsAreLeftOut)
{
    CameraBuilder builder = CameraWithControls::builderOf(
        {integer(V4L2_CID_GAIN, "Gain"), integer(V4L2_CID_EXPOSURE_ABSOLUTE, "Exposure")});
    CameraWithControls const opened(builder.withClassHeadings());
    EXPECT_EQ(namesOf(opened.camera), (std::vector<std::string>{"Exposure", "Gain"}));
}

TEST(ControlLookupTest, LookupsAskTheDriverNothing)
{
    CameraWithControls const opened({integer(V4L2_CID_GAIN, "Gain")});
    opened.camera.control("Gain");
    opened.camera.control(0);
    opened.camera.gainControl();
    EXPECT_EQ(opened.node.countOf(Call::Ioctl), 0u);
}

} // namespace
