// SPDX-License-Identifier: MIT
#include "DriverComparison.h"
#include "OrdinaryCamera.h"
#include "Tool.h"

#include <linux/videodev2.h>

#include <algorithm>

using namespace ImageAcquisition;
using namespace KernelTest;

using UvcControlTest = FreshOrdinaryCamera;

TEST_F(UvcControlTest, AreThoseThatV4l2CtlLists)
{
    std::vector<ListedControl> const listed = plainControls(m_node);
    ASSERT_GT(listed.size(), 15U);
    EXPECT_EQ(m_camera->controlNumber(), static_cast<int>(listed.size()));
    for (ListedControl const& one : listed) {
        expectListedControl(*m_camera, one);
    }
}

TEST_F(UvcControlTest, HaveTheirGetters)
{
    std::pair<ICameraControl*, unsigned> const standard[] = {
        {m_camera->brightnessControl(), V4L2_CID_BRIGHTNESS},
        {m_camera->contrastControl(), V4L2_CID_CONTRAST},
        {m_camera->saturationControl(), V4L2_CID_SATURATION},
        {m_camera->hueControl(), V4L2_CID_HUE},
        {m_camera->autoHueControl(), V4L2_CID_HUE_AUTO},
        {m_camera->autoWhiteBalanceControl(), V4L2_CID_AUTO_WHITE_BALANCE},
        {m_camera->whiteBalanceTempControl(), V4L2_CID_WHITE_BALANCE_TEMPERATURE},
        {m_camera->gammaControl(), V4L2_CID_GAMMA},
        {m_camera->gainControl(), V4L2_CID_GAIN},
        {m_camera->sharpnessControl(), V4L2_CID_SHARPNESS},
        {m_camera->autoExposureControl(), V4L2_CID_EXPOSURE_AUTO},
        {m_camera->exposureAbsoluteControl(), V4L2_CID_EXPOSURE_ABSOLUTE},
        {m_camera->focusControl(), V4L2_CID_FOCUS_ABSOLUTE},
        {m_camera->autoFocusControl(), V4L2_CID_FOCUS_AUTO},
    };
    for (auto const& [control, id] : standard) {
        EXPECT_EQ(control->id(), id);
    }
    EXPECT_EQ(m_camera->lightModeControl(), m_camera->invalidControl());
    EXPECT_EQ(m_camera->autoGammaControl(), m_camera->invalidControl());
}

TEST_F(UvcControlTest, AreShownByTheToolAsV4l2CtlListsThem)
{
    std::vector<ListedControl> const listed = plainControls(m_node);
    nlohmann::json const shown = readTool("show 0 --json").at("controls");
    ASSERT_EQ(shown.size(), listed.size());
    for (nlohmann::json const& control : shown) {
        auto const found = std::find_if(listed.begin(), listed.end(), [&control](auto const& one) {
            return one.id == control.at("id");
        });
        ASSERT_NE(found, listed.end()) << control;
        EXPECT_EQ(control.at("shortName"), found->name);
        EXPECT_EQ(control.at("flags"), nlohmann::json(found->flags)) << control;
        if (found->type == "int") {
            EXPECT_EQ(control.at("minimum"), found->number("min"));
            EXPECT_EQ(control.at("maximum"), found->number("max"));
            EXPECT_EQ(control.at("step"), found->number("step"));
            EXPECT_EQ(control.at("value"), found->number("value"));
        } else if (found->type == "bool") {
            EXPECT_EQ(control.at("value"), found->number("value") == 1);
            EXPECT_EQ(control.at("default"), found->number("default") == 1);
        } else {
            EXPECT_EQ(control.at("items").size(), found->items.size());
            EXPECT_EQ(control.at("value").at("label"),
                      found->items.at(static_cast<unsigned>(found->number("value"))));
        }
    }
}
