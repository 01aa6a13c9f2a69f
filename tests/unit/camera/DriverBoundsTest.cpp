// SPDX-License-Identifier: MIT
// Drivers that never say that they have no more.
#include "camera/Camera.h"

#include "DeviceStub.h"
#include "SmallCamera.h"
#include "V4l2Hook.h"
#include "control/CameraControlStringMenu.h"

#include <gtest/gtest.h>

#include <linux/videodev2.h>

#include <cerrno>
#include <climits>
#include <cstdint>

namespace
{

using namespace ImageAcquisition;

constexpr unsigned int most = 4096;

class DriverBoundsTest : public testing::Test
{
protected:
    /// Opens the camera on a driver that answers so; returns how many calls that took.
    unsigned int callsToOpen(V4l2Hook::Ioctl const& answer)
    {
        unsigned int calls = 0;
        V4l2Hook const hook([&](int fd, unsigned long request, void* argument) {
            ++calls;
            return answer(fd, request, argument);
        });
        EXPECT_TRUE(m_camera.init());
        return calls;
    }

    /// Opens it on a driver that lists controls of a type with rising ids; 0 for ever.
    unsigned int callsToOpenWithControls(unsigned int count, v4l2_ctrl_type type,
                                         unsigned int headingsBefore = 0)
    {
        return callsToOpen([=](int fd, unsigned long request, void* argument) {
            if (request != VIDIOC_QUERYCTRL) {
                return V4l2Hook::realIoctl(fd, request, argument);
            }
            auto& query = *static_cast<v4l2_queryctrl*>(argument);
            unsigned int const number = (query.id & ~V4L2_CTRL_FLAG_NEXT_CTRL) + 1;
            if (count != 0 && number > count + headingsBefore) {
                errno = EINVAL;
                return -1;
            }
            query.id = number;
            query.type = V4L2_CTRL_TYPE_CTRL_CLASS;
            if (number > headingsBefore) {
                query.type = type;
            }
            return 0;
        });
    }

    /// The lowest and the highest number that a menu of these bounds asks the driver for.
    void expectAsked(int minimum, int maximum, std::int64_t first, std::int64_t last)
    {
        std::vector<std::int64_t> asked;
        V4l2Hook const hook([&](int, unsigned long, void* argument) {
            asked.push_back(static_cast<int>(static_cast<v4l2_querymenu*>(argument)->index));
            return 0;
        });
        CameraControlStringMenu menu(m_camera, V4L2_CID_EXPOSURE_AUTO, "Auto Exposure");
        v4l2_queryctrl record{};
        record.id = V4L2_CID_EXPOSURE_AUTO;
        record.minimum = minimum;
        record.maximum = maximum;
        menu.init(record);
        ASSERT_EQ(static_cast<std::int64_t>(asked.size()), last - first + 1);
        EXPECT_EQ(asked.front(), first);
        EXPECT_EQ(asked.back(), last);
        EXPECT_EQ(menu.count(), static_cast<int>(asked.size()));
    }

    VirtualCamera::InstalledCamera m_node = smallCamera().install();
    DeviceStub const m_device{};
    Camera m_camera{&m_device};
};

TEST_F(DriverBoundsTest, EndTheControlsOfADriverWhoseIdsRiseForEver)
{
    unsigned int const calls = callsToOpenWithControls(0, V4L2_CTRL_TYPE_BUTTON);
    EXPECT_EQ(m_camera.controlNumber(), static_cast<int>(most));
    EXPECT_LT(calls, most + 100);
}

TEST_F(DriverBoundsTest, EndTheClassHeadingsOfADriverWhoseIdsRiseForEver)
{
    unsigned int const calls = callsToOpenWithControls(0, V4L2_CTRL_TYPE_CTRL_CLASS);
    EXPECT_EQ(m_camera.controlNumber(), 0);
    EXPECT_LT(calls, most + 100);
}

TEST_F(DriverBoundsTest, KeepAsManyControlsWhateverHeadingsComeBefore)
{
    callsToOpenWithControls(most, V4L2_CTRL_TYPE_BUTTON, 20);
    EXPECT_EQ(m_camera.controlNumber(), static_cast<int>(most));
    EXPECT_EQ(m_camera.controlById(20 + most)->id(), 20 + most);
}

TEST_F(DriverBoundsTest, EndTheOpeningOfADriverThatAnswersZeroToEverything)
{
    unsigned int const calls = callsToOpen([](int, unsigned long, void*) { return 0; });
    EXPECT_LT(calls, 10000u);
}

TEST_F(DriverBoundsTest, EndTheOpeningOfADriverThatHasMoreOfEverything)
{
    unsigned int const calls = callsToOpen([](int, unsigned long request, void* argument) {
        switch (request) {
        case VIDIOC_ENUM_FRAMESIZES:
            static_cast<v4l2_frmsizeenum*>(argument)->type = V4L2_FRMSIZE_TYPE_DISCRETE;
            break;
        case VIDIOC_ENUM_FRAMEINTERVALS:
            static_cast<v4l2_frmivalenum*>(argument)->type = V4L2_FRMIVAL_TYPE_DISCRETE;
            break;
        case VIDIOC_QUERYCTRL: {
            auto& query = *static_cast<v4l2_queryctrl*>(argument);
            query.id = (query.id & ~V4L2_CTRL_FLAG_NEXT_CTRL) + 1;
            query.type = V4L2_CTRL_TYPE_INTEGER;
            break;
        }
        default:
            break;
        }
        return 0;
    });
    EXPECT_LT(calls, 80000u);
    EXPECT_EQ(m_camera.controlNumber(), static_cast<int>(most));
    EXPECT_LE(m_camera.formatNumber(), 65536);
}

TEST_F(DriverBoundsTest, EndTheOpeningOfADriverThatHasMenusOnly)
{
    unsigned int const calls = callsToOpen([](int, unsigned long request, void* argument) {
        if (request == VIDIOC_QUERYCTRL) {
            auto& query = *static_cast<v4l2_queryctrl*>(argument);
            query.id = (query.id & ~V4L2_CTRL_FLAG_NEXT_CTRL) + 1;
            query.type = V4L2_CTRL_TYPE_MENU;
            query.maximum = INT_MAX;
            return 0;
        }
        return request == VIDIOC_QUERYMENU ? 0 : -1;
    });
    EXPECT_LT(calls, 70000U);
    EXPECT_EQ(m_camera.controlNumber(), 16);
}

TEST_F(DriverBoundsTest, EndTheSearchForMenuItems)
{
    ASSERT_TRUE(m_camera.init());
    expectAsked(0, INT_MAX, 0, 4095);
    expectAsked(0, 4096, 0, 4095);
    expectAsked(INT_MIN, INT_MAX, INT_MIN, INT_MIN + 4095LL);
    expectAsked(-5, INT_MAX, -5, 4090);
}

TEST_F(DriverBoundsTest, LeaveMenusUpToTheLargestAlone)
{
    ASSERT_TRUE(m_camera.init());
    expectAsked(0, 4095, 0, 4095);
    expectAsked(-2048, 2047, -2048, 2047);
    expectAsked(INT_MAX - 1, INT_MAX, INT_MAX - 1, INT_MAX);
    expectAsked(3, 3, 3, 3);
}

} // namespace
