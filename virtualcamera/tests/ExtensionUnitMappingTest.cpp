// SPDX-License-Identifier: MIT
#include "Client.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace
{

using namespace VirtualCamera;

constexpr Guid unit{0x01};
constexpr std::uint32_t firstId = V4L2_CID_PRIVATE_BASE;

SelectorScript selector(std::uint8_t number, std::uint16_t size)
{
    SelectorScript script;
    script.selector = number;
    script.size = size;
    return script;
}

uvc_xu_control_mapping mapping(std::uint32_t id, std::uint8_t selector, unsigned size,
                               unsigned offset = 0)
{
    uvc_xu_control_mapping mapping{};
    mapping.id = id;
    std::strcpy(reinterpret_cast<char*>(mapping.name), "Mapped");
    std::copy(unit.begin(), unit.end(), mapping.entity);
    mapping.selector = selector;
    mapping.size = static_cast<__u8>(size);
    mapping.offset = static_cast<__u8>(offset);
    mapping.v4l2_type = V4L2_CTRL_TYPE_INTEGER;
    mapping.data_type = UVC_CTRL_DATA_TYPE_UNSIGNED;
    return mapping;
}

class ExtensionUnitMappingTest : public testing::Test
{
protected:
    int map(uvc_xu_control_mapping mapping) { return m_client.call(UVCIOC_CTRL_MAP, mapping); }
    int transfer(unsigned long request, std::uint32_t id, std::int32_t& value)
    {
        v4l2_ext_control control{};
        control.id = id;
        control.value = value;
        v4l2_ext_controls controls{};
        controls.count = 1;
        controls.controls = &control;
        int const error = m_client.call(request, controls);
        value = control.value;
        return error;
    }
    std::int32_t value(std::uint32_t id)
    {
        std::int32_t value = 0;
        EXPECT_EQ(transfer(VIDIOC_G_EXT_CTRLS, id, value), 0);
        return value;
    }
    int set(std::uint32_t id, std::int32_t value)
    {
        return transfer(VIDIOC_S_EXT_CTRLS, id, value);
    }

    InstalledCamera m_camera =
        aCamera()
            .withExtensionUnit(unit, {selector(1, 1), selector(20, 8), selector(3, 4)})
            .install();
    Client m_client;
};

TEST_F(ExtensionUnitMappingTest, RefusesMappingsLikeTheDriver)
{
    EXPECT_EQ(map(mapping(firstId, 1, 8)), 0);
    EXPECT_EQ(map(mapping(firstId, 1, 8)), EEXIST);
    EXPECT_EQ(map(mapping(firstId + 1, 2, 8)), ENOENT);
    EXPECT_EQ(map(mapping(firstId + 1, 1, 9)), EINVAL);
    EXPECT_EQ(map(mapping(firstId + 1, 1, 8, 1)), EINVAL);
    EXPECT_EQ(map(mapping(firstId + 1, 20, 33)), EINVAL);
    uvc_xu_control_mapping foreign = mapping(firstId + 1, 1, 8);
    foreign.entity[15] = 1;
    EXPECT_EQ(map(foreign), ENOENT);
    uvc_xu_control_mapping unsupported = mapping(firstId + 1, 1, 8);
    unsupported.v4l2_type = V4L2_CTRL_TYPE_STRING;
    EXPECT_EQ(map(unsupported), ENOTTY);
    uvc_xu_control_mapping menu = mapping(firstId + 1, 1, 8);
    menu.v4l2_type = V4L2_CTRL_TYPE_MENU;
    EXPECT_EQ(map(menu), EINVAL);
}

TEST_F(ExtensionUnitMappingTest, LetsFieldsShareTheBytesOfASelector)
{
    ASSERT_EQ(map(mapping(firstId, 20, 16, 0)), 0);
    ASSERT_EQ(map(mapping(firstId + 1, 20, 16, 32)), 0);
    EXPECT_EQ(set(firstId, 0x1234), 0);
    EXPECT_EQ(set(firstId + 1, 0x0102), 0);
    EXPECT_EQ(m_camera.selectorBytes(20),
              (std::vector<std::uint8_t>{0x34, 0x12, 0, 0, 0x02, 0x01, 0, 0}));
    m_camera.setSelectorBytes(20, {1, 0, 0, 0, 2, 0, 0, 0});
    EXPECT_EQ(value(firstId), 1);
    EXPECT_EQ(value(firstId + 1), 2);
}

TEST_F(ExtensionUnitMappingTest, ListsAMenuDenselyAndSendsItsValues)
{
    uvc_menu_info items[2] = {{0, "Off"}, {3, "Continuous"}};
    uvc_xu_control_mapping menu = mapping(firstId, 1, 8);
    menu.v4l2_type = V4L2_CTRL_TYPE_MENU;
    menu.data_type = UVC_CTRL_DATA_TYPE_ENUM;
    menu.menu_info = items;
    menu.menu_count = 2;
    ASSERT_EQ(map(menu), 0);
    v4l2_queryctrl answer{};
    answer.id = firstId;
    ASSERT_EQ(m_client.call(VIDIOC_QUERYCTRL, answer), 0);
    EXPECT_EQ(answer.minimum, 0);
    EXPECT_EQ(answer.maximum, 1);
    v4l2_querymenu item{};
    item.id = firstId;
    item.index = 1;
    ASSERT_EQ(m_client.call(VIDIOC_QUERYMENU, item), 0);
    EXPECT_STREQ(reinterpret_cast<char const*>(item.name), "Continuous");
    EXPECT_EQ(set(firstId, 1), 0);
    EXPECT_EQ(m_camera.selectorBytes(1).front(), 3);
    EXPECT_EQ(value(firstId), 1);
    EXPECT_EQ(set(firstId, 2), ERANGE);
}

TEST_F(ExtensionUnitMappingTest, ReadsFieldsAsTheirDataTypeSays)
{
    ASSERT_EQ(map(mapping(firstId, 20, 16, 0)), 0);
    uvc_xu_control_mapping isSigned = mapping(firstId + 1, 20, 16, 16);
    isSigned.data_type = UVC_CTRL_DATA_TYPE_SIGNED;
    ASSERT_EQ(map(isSigned), 0);
    ASSERT_EQ(map(mapping(firstId + 2, 3, 32)), 0);
    m_camera.setSelectorBytes(20, {0xd8, 0xff, 0xd8, 0xff});
    m_camera.setSelectorBytes(3, {0xff, 0xff, 0xff, 0xff});
    EXPECT_EQ(value(firstId), 65496);
    EXPECT_EQ(value(firstId + 1), -40);
    EXPECT_EQ(value(firstId + 2), -1);
}

TEST_F(ExtensionUnitMappingTest, HidesMappedControlsFromPlainCalls)
{
    ASSERT_EQ(map(mapping(firstId, 1, 8)), 0);
    v4l2_control control{firstId, 0};
    EXPECT_EQ(m_client.call(VIDIOC_G_CTRL, control), EINVAL);
    EXPECT_EQ(m_client.call(VIDIOC_S_CTRL, control), EINVAL);
}

TEST_F(ExtensionUnitMappingTest, KeepsEachMappingForInspection)
{
    uvc_menu_info items[1] = {{7, "Seven"}};
    uvc_xu_control_mapping menu = mapping(firstId, 1, 8);
    menu.v4l2_type = V4L2_CTRL_TYPE_MENU;
    menu.menu_info = items;
    menu.menu_count = 1;
    map(menu);
    map(mapping(firstId, 1, 8));
    std::vector<ControlMapping> const kept = m_camera.mappings();
    ASSERT_EQ(kept.size(), 2u);
    EXPECT_EQ(kept[0].mapping.menu_count, 1u);
    EXPECT_EQ(kept[0].menu.front().value, 7u);
    EXPECT_STREQ(reinterpret_cast<char const*>(kept[0].menu.front().name), "Seven");
    EXPECT_EQ(kept[0].error, 0);
    EXPECT_EQ(kept[1].error, EEXIST);
}

TEST_F(ExtensionUnitMappingTest, IsRefusedByACameraWithoutTheUnitAndByAnotherDriver)
{
    auto const plain = aCamera("/dev/video1").install();
    auto const other = aCamera("/dev/video2").withDriver("vivid").install();
    uvc_xu_control_mapping wanted = mapping(firstId, 1, 8);
    EXPECT_EQ(Client("/dev/video1").call(UVCIOC_CTRL_MAP, wanted), ENOENT);
    EXPECT_EQ(Client("/dev/video2").call(UVCIOC_CTRL_MAP, wanted), ENOTTY);
}

} // namespace
