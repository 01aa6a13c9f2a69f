// SPDX-License-Identifier: MIT
#include "DriverComparison.h"
#include "VividControls.h"

#include <ICameraControlStringMenu.h>

#include <cstring>

using namespace ImageAcquisition;
using namespace KernelTest;

using VividControlSetTest = VividControls;

TEST_F(VividControlSetTest, HasEveryPlainControlAsListed)
{
    std::vector<ListedControl> const listed = plainControls(firstNode);
    ASSERT_GT(listed.size(), 50U);
    EXPECT_EQ(m_camera->controlNumber(), static_cast<int>(listed.size()));
    for (ListedControl const& one : listed) {
        expectListedControl(*m_camera, one);
    }
}

TEST_F(VividControlSetTest, HasMenusWithHoles)
{
    unsigned holes = 0;
    for (ListedControl const& one : plainControls(firstNode)) {
        auto const* const menu =
            dynamic_cast<ICameraControlStringMenu const*>(controlById(*m_camera, one.id));
        if (menu != nullptr && one.number("max") - one.number("min") + 1 > menu->count()) {
            ++holes;
        }
    }
    EXPECT_GE(holes, 3U);
}

TEST_F(VividControlSetTest, HasAControlOfEachTypeThatVividOffers)
{
    std::set<ICameraControl::Type> types;
    for (int i = 0; i < m_camera->controlNumber(); ++i) {
        types.insert(m_camera->control(i)->type());
    }
    for (auto const& [print, type] : typesByPrint()) {
        EXPECT_EQ(types.count(type), 1U) << print;
    }
}

TEST_F(VividControlSetTest, IsSortedByName)
{
    for (int i = 1; i < m_camera->controlNumber(); ++i) {
        EXPECT_LE(std::strcmp(m_camera->control(i - 1)->name(), m_camera->control(i)->name()), 0)
            << m_camera->control(i)->name();
    }
}

TEST_F(VividControlSetTest, HasNoCompoundControl)
{
    unsigned compound = 0;
    for (ListedControl const& one : listControls(firstNode)) {
        if (one.isCompound()) {
            ++compound;
            EXPECT_EQ(controlById(*m_camera, one.id), m_camera->invalidControl()) << one.name;
        }
    }
    EXPECT_GE(compound, 6U);
    EXPECT_EQ(m_camera->control("U8 2x3x4x5 Array"), m_camera->invalidControl());
}

TEST_F(VividControlSetTest, AnswersByTheNamedGetters)
{
    EXPECT_STREQ(m_camera->brightnessControl()->name(), "Brightness");
    EXPECT_STREQ(m_camera->contrastControl()->name(), "Contrast");
    EXPECT_STREQ(m_camera->saturationControl()->name(), "Saturation");
    EXPECT_STREQ(m_camera->hueControl()->name(), "Hue");
    EXPECT_STREQ(m_camera->gainControl()->name(), "Gain");
    EXPECT_EQ(m_camera->focusControl(), m_camera->invalidControl());
    EXPECT_EQ(m_camera->lightModeControl(), m_camera->invalidControl());
}
