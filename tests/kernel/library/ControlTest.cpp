// SPDX-License-Identifier: MIT
#include "DriverComparison.h"
#include "OrdinaryCamera.h"
#include "Tool.h"

#include <linux/videodev2.h>

#include <algorithm>

using namespace ImageAcquisition;
using namespace KernelTest;

using Controls = FreshOrdinaryCamera;

TEST_F(Controls, AreThoseThatV4l2CtlLists)
{
    std::vector<ListedControl> const listed = plainControls(node);
    ASSERT_GT(listed.size(), 15U);
    EXPECT_EQ(camera->controlNumber(), static_cast<int>(listed.size()));
    for (ListedControl const& one : listed) {
        expectListedControl(*camera, one);
    }
}

TEST_F(Controls, HaveTheirGetters)
{
    std::pair<ICameraControl*, unsigned> const standard[] = {
        {camera->brightnessControl(), V4L2_CID_BRIGHTNESS},
        {camera->contrastControl(), V4L2_CID_CONTRAST},
        {camera->saturationControl(), V4L2_CID_SATURATION},
        {camera->hueControl(), V4L2_CID_HUE},
        {camera->autoHueControl(), V4L2_CID_HUE_AUTO},
        {camera->autoWhiteBalanceControl(), V4L2_CID_AUTO_WHITE_BALANCE},
        {camera->whiteBalanceTempControl(), V4L2_CID_WHITE_BALANCE_TEMPERATURE},
        {camera->gammaControl(), V4L2_CID_GAMMA},
        {camera->gainControl(), V4L2_CID_GAIN},
        {camera->sharpnessControl(), V4L2_CID_SHARPNESS},
        {camera->autoExposureControl(), V4L2_CID_EXPOSURE_AUTO},
        {camera->exposureAbsoluteControl(), V4L2_CID_EXPOSURE_ABSOLUTE},
        {camera->focusControl(), V4L2_CID_FOCUS_ABSOLUTE},
        {camera->autoFocusControl(), V4L2_CID_FOCUS_AUTO},
    };
    for (auto const& [control, id] : standard) {
        EXPECT_EQ(control->id(), id);
    }
    EXPECT_EQ(camera->lightModeControl(), camera->invalidControl());
    EXPECT_EQ(camera->autoGammaControl(), camera->invalidControl());
}

TEST_F(Controls, AreShownByTheToolAsV4l2CtlListsThem)
{
    std::vector<ListedControl> const listed = plainControls(node);
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
