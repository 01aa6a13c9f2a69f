// SPDX-License-Identifier: MIT
#include "Client.h"

#include <gtest/gtest.h>

namespace
{

using namespace VirtualCamera;

constexpr std::uint32_t someId = V4L2_CID_USER_BASE | 0x1000;

class ControlTest : public testing::Test
{
protected:
    /// Installs a camera with one control and opens it.
    void offer(ControlScript const& control) { open(aCamera().withControl(control)); }
    void open(CameraBuilder const& builder)
    {
        m_camera.emplace(builder.install());
        m_client.emplace();
    }

    int query(std::uint32_t id, v4l2_queryctrl& answer)
    {
        answer = {};
        answer.id = id;
        return m_client->call(VIDIOC_QUERYCTRL, answer);
    }
    std::vector<std::uint32_t> listedIds()
    {
        std::vector<std::uint32_t> ids;
        v4l2_queryctrl answer{};
        std::uint32_t last = 0;
        while (ids.size() < 100 && query(last | V4L2_CTRL_FLAG_NEXT_CTRL, answer) == 0) {
            ids.push_back(last = answer.id);
        }
        return ids;
    }
    int get(std::int32_t& value, std::uint32_t id = someId)
    {
        v4l2_control control{id, 0};
        int const error = m_client->call(VIDIOC_G_CTRL, control);
        value = control.value;
        return error;
    }
    int set(std::int32_t value, std::uint32_t id = someId)
    {
        v4l2_control control{id, value};
        return m_client->call(VIDIOC_S_CTRL, control);
    }
    int transfer(unsigned long request, v4l2_ext_control& control, std::uint32_t which = 0)
    {
        v4l2_ext_controls controls{};
        controls.which = which;
        controls.count = 1;
        controls.controls = &control;
        return m_client->call(request, controls);
    }

    std::optional<InstalledCamera> m_camera;
    std::optional<Client> m_client;
};

TEST_F(ControlTest, ListsControlsInTheOrderOfTheirIds)
{
    open(aCamera()
             .withControl(integerControl(V4L2_CID_FOCUS_ABSOLUTE, "Focus"))
             .withControl(integerControl(V4L2_CID_GAIN, "Gain"))
             .withControl(integerControl(V4L2_CID_PRIVATE_BASE, "Private"))
             .withControl(integerControl(V4L2_CID_BRIGHTNESS, "Brightness"))
             .withClassHeadings());
    EXPECT_EQ(listedIds(),
              (std::vector<std::uint32_t>{V4L2_CID_USER_CLASS, V4L2_CID_BRIGHTNESS, V4L2_CID_GAIN,
                                          V4L2_CID_CAMERA_CLASS, V4L2_CID_FOCUS_ABSOLUTE,
                                          V4L2_CID_PRIVATE_BASE}));
}

TEST_F(ControlTest, CanBeADriverWithoutNextControl)
{
    open(aCamera().withControl(integerControl(someId, "Some")).withoutNextControl());
    EXPECT_TRUE(listedIds().empty());
    v4l2_queryctrl answer{};
    EXPECT_EQ(query(someId, answer), 0);
}

TEST_F(ControlTest, CanGetStuckInItsEnumeration)
{
    open(aCamera()
             .withControl(integerControl(someId, "Some"))
             .withControl(integerControl(someId + 1, "Other"))
             .withStuckControlEnumerationAt(someId));
    v4l2_queryctrl answer{};
    EXPECT_EQ(query(someId | V4L2_CTRL_FLAG_NEXT_CTRL, answer), 0);
    EXPECT_EQ(answer.id, someId);
}

TEST_F(ControlTest, DescribesAControl)
{
    offer(integerControl(someId, "A name that is longer than thirty-one characters")
              .range(-5, 70, 3)
              .byDefault(4)
              .withFlags(V4L2_CTRL_FLAG_SLIDER));
    v4l2_queryctrl answer{};
    ASSERT_EQ(query(someId, answer), 0);
    EXPECT_STREQ(reinterpret_cast<char const*>(answer.name), "A name that is longer than thir");
    EXPECT_EQ(answer.minimum, -5);
    EXPECT_EQ(answer.maximum, 70);
    EXPECT_EQ(answer.step, 3);
    EXPECT_EQ(answer.default_value, 4);
    EXPECT_EQ(answer.flags, static_cast<unsigned>(V4L2_CTRL_FLAG_SLIDER));
    EXPECT_EQ(query(someId + 1, answer), EINVAL);
}

TEST_F(ControlTest, ClampsIntegersToRangeAndStep)
{
    offer(integerControl(someId, "Integer").range(-10, 21, 10).byDefault(0));
    std::int32_t value = 0;
    EXPECT_EQ(set(1000), 0);
    EXPECT_EQ(get(value), 0);
    EXPECT_EQ(value, 20);
    EXPECT_EQ(set(-1000), 0);
    EXPECT_EQ(get(value), 0);
    EXPECT_EQ(value, -10);
    EXPECT_EQ(set(4), 0);
    EXPECT_EQ(get(value), 0);
    EXPECT_EQ(value, 0);
    EXPECT_EQ(m_camera->controlWrites(someId), 3u);
    EXPECT_EQ(m_camera->lastControlValueSent(), 4);
}

TEST_F(ControlTest, TakesAnyNonZeroAsTrue)
{
    offer(booleanControl(someId, "Boolean"));
    std::int32_t value = 0;
    EXPECT_EQ(set(7), 0);
    EXPECT_EQ(get(value), 0);
    EXPECT_EQ(value, 1);
}

TEST_F(ControlTest, RefusesHolesAndIndicesOutsideAMenu)
{
    offer(menuControl(someId, "Menu").withItem(0, "Off").withItem(3, "Continuous"));
    v4l2_querymenu item{};
    item.id = someId;
    item.index = 3;
    EXPECT_EQ(m_client->call(VIDIOC_QUERYMENU, item), 0);
    EXPECT_STREQ(reinterpret_cast<char const*>(item.name), "Continuous");
    item.index = 1;
    EXPECT_EQ(m_client->call(VIDIOC_QUERYMENU, item), EINVAL);
    item.index = 4;
    EXPECT_EQ(m_client->call(VIDIOC_QUERYMENU, item), EINVAL);
    EXPECT_EQ(set(3), 0);
    EXPECT_EQ(set(2), EINVAL);
    EXPECT_EQ(set(4), ERANGE);
    EXPECT_EQ(set(-1), ERANGE);
    EXPECT_EQ(m_camera->controlValue(someId), 3);
}

TEST_F(ControlTest, GivesIntegerMenusTheirValues)
{
    offer(integerMenuControl(someId, "Integer Menu")
              .withItem(0, std::int64_t{5})
              .withItem(2, std::int64_t{1} << 40));
    v4l2_querymenu item{};
    item.id = someId;
    item.index = 2;
    EXPECT_EQ(m_client->call(VIDIOC_QUERYMENU, item), 0);
    EXPECT_EQ(static_cast<std::int64_t>(item.value), std::int64_t{1} << 40);
    EXPECT_EQ(set(2), 0);
    EXPECT_EQ(set(1), EINVAL);
}

TEST_F(ControlTest, LetsAButtonBePressedButNotRead)
{
    offer(buttonControl(someId, "Button"));
    std::int32_t value = 0;
    EXPECT_EQ(get(value), EACCES);
    EXPECT_EQ(set(1), 0);
    EXPECT_EQ(set(1), 0);
    EXPECT_EQ(m_camera->controlWrites(someId), 2u);
}

TEST_F(ControlTest, CutsABitMaskToItsValidBits)
{
    offer(bitMaskControl(someId, "Bitmask").range(0, 0x80000005LL, 0));
    EXPECT_EQ(set(-1), 0);
    EXPECT_EQ(m_camera->controlValue(someId), 0x80000005LL);
    std::int32_t value = 0;
    EXPECT_EQ(get(value), 0);
    EXPECT_EQ(static_cast<std::uint32_t>(value), 0x80000005u);
}

TEST_F(ControlTest, TransfersInteger64ByExtendedCallsOnly)
{
    offer(integer64Control(someId, "Integer 64").range(-(1LL << 40), 1LL << 40).byDefault(1));
    std::int32_t value = 0;
    EXPECT_EQ(get(value), EINVAL);
    EXPECT_EQ(set(1), EINVAL);
    v4l2_ext_control control{};
    control.id = someId;
    control.value64 = 1LL << 50;
    EXPECT_EQ(transfer(VIDIOC_S_EXT_CTRLS, control), 0);
    EXPECT_EQ(transfer(VIDIOC_G_EXT_CTRLS, control, V4L2_CTRL_CLASS_USER), 0);
    EXPECT_EQ(control.value64, 1LL << 40);
}

TEST_F(ControlTest, ShowsTheRangeOfInteger64OnlyWhenAsked)
{
    v4l2_queryctrl answer{};
    offer(integer64Control(someId, "Integer 64").range(-3, 3).byDefault(1));
    ASSERT_EQ(query(someId, answer), 0);
    EXPECT_EQ(answer.minimum, 0);
    EXPECT_EQ(answer.maximum, 0);
    v4l2_query_ext_ctrl extended{};
    extended.id = someId;
    ASSERT_EQ(m_client->call(VIDIOC_QUERY_EXT_CTRL, extended), 0);
    EXPECT_EQ(extended.minimum, -3);
    EXPECT_EQ(extended.maximum, 3);
    offer(integer64Control(someId, "Integer 64").range(-3, 3).showingRange());
    ASSERT_EQ(query(someId, answer), 0);
    EXPECT_EQ(answer.minimum, -3);
}

TEST_F(ControlTest, TransfersUnsignedScalarsByExtendedCallsOnly)
{
    offer(unsigned16Control(someId, "Unsigned 16").range(10, 60000).byDefault(20));
    std::int32_t value = 0;
    EXPECT_EQ(get(value), EINVAL);
    v4l2_queryctrl answer{};
    ASSERT_EQ(query(someId, answer), 0);
    EXPECT_EQ(answer.maximum, 60000);
    v4l2_ext_control control{};
    control.id = someId;
    control.value64 = 50000;
    EXPECT_EQ(transfer(VIDIOC_S_EXT_CTRLS, control), 0);
    control.value64 = 0;
    EXPECT_EQ(transfer(VIDIOC_G_EXT_CTRLS, control, V4L2_CTRL_CLASS_USER), 0);
    EXPECT_EQ(control.value64, 50000);
    std::uint16_t payload = 0;
    control.size = sizeof payload;
    control.p_u16 = &payload;
    EXPECT_EQ(transfer(VIDIOC_G_EXT_CTRLS, control), 0);
    EXPECT_EQ(payload, 50000);
    control.size = 1;
    EXPECT_EQ(transfer(VIDIOC_G_EXT_CTRLS, control), ENOSPC);
    EXPECT_EQ(control.size, 2u);
}

TEST_F(ControlTest, KeepsUnsigned32BeyondTheSign)
{
    offer(unsigned32Control(someId, "Unsigned 32"));
    v4l2_ext_control control{};
    control.id = someId;
    control.value64 = 0xfffffff0LL;
    EXPECT_EQ(transfer(VIDIOC_S_EXT_CTRLS, control), 0);
    EXPECT_EQ(m_camera->controlValue(someId), 0xfffffff0LL);
}

TEST_F(ControlTest, NamesTheSizeThatAStringNeeds)
{
    offer(stringControl(someId, "String").range(0, 31).currently("abc"));
    v4l2_ext_control control{};
    control.id = someId;
    EXPECT_EQ(transfer(VIDIOC_G_EXT_CTRLS, control, V4L2_CTRL_CLASS_USER), ENOSPC);
    EXPECT_EQ(control.size, 32u);
    offer(stringControl(someId, "String").range(0, 31).currently("abc").namingExactSize());
    control.size = 0;
    EXPECT_EQ(transfer(VIDIOC_G_EXT_CTRLS, control, V4L2_CTRL_CLASS_USER), ENOSPC);
    EXPECT_EQ(control.size, 4u);
    char text[8] = "xxxxxxx";
    control.size = 2;
    control.string = text;
    EXPECT_EQ(transfer(VIDIOC_G_EXT_CTRLS, control), ENOSPC);
    control.size = 4;
    EXPECT_EQ(transfer(VIDIOC_G_EXT_CTRLS, control), 0);
    EXPECT_STREQ(text, "abc");
    EXPECT_EQ(text[4], 'x');
}

TEST_F(ControlTest, BoundsTheLengthOfStrings)
{
    offer(stringControl(someId, "String").range(2, 6, 2).currently("ab"));
    auto const set = [this](std::string text) {
        v4l2_ext_control control{};
        control.id = someId;
        control.size = static_cast<__u32>(text.size() + 1);
        control.string = text.data();
        return transfer(VIDIOC_S_EXT_CTRLS, control);
    };
    EXPECT_EQ(set("abcd"), 0);
    EXPECT_EQ(m_camera->controlText(someId), "abcd");
    EXPECT_EQ(set(""), ERANGE);
    EXPECT_EQ(set("abc"), ERANGE);
    EXPECT_EQ(set("abcdefgh"), ERANGE);
    EXPECT_EQ(m_camera->controlText(someId), "abcd");
    EXPECT_EQ(m_camera->calls(VIDIOC_S_EXT_CTRLS).back().controls.front().text, "abcdefgh");
}

TEST_F(ControlTest, RefusesByFlags)
{
    offer(integerControl(someId, "Integer").range(0, 9).currently(4));
    std::int32_t value = 0;
    auto const flagged = [this](std::uint32_t flags) { m_camera->setControlFlags(someId, flags); };
    flagged(V4L2_CTRL_FLAG_READ_ONLY);
    EXPECT_EQ(set(1), EACCES);
    EXPECT_EQ(get(value), 0);
    flagged(V4L2_CTRL_FLAG_INACTIVE);
    EXPECT_EQ(set(1), EACCES);
    EXPECT_EQ(get(value), 0);
    flagged(V4L2_CTRL_FLAG_GRABBED);
    EXPECT_EQ(set(1), EBUSY);
    flagged(V4L2_CTRL_FLAG_WRITE_ONLY);
    EXPECT_EQ(get(value), EACCES);
    EXPECT_EQ(set(1), 0);
    flagged(V4L2_CTRL_FLAG_DISABLED);
    EXPECT_EQ(get(value), EINVAL);
    EXPECT_EQ(set(1), EINVAL);
    v4l2_queryctrl answer{};
    EXPECT_EQ(query(someId, answer), 0);
    EXPECT_EQ(answer.flags, static_cast<unsigned>(V4L2_CTRL_FLAG_DISABLED));
}

TEST_F(ControlTest, RefusesToReadAClassHeading)
{
    offer(classHeading(V4L2_CID_USER_CLASS, "User Controls"));
    std::int32_t value = 0;
    EXPECT_EQ(get(value, V4L2_CID_USER_CLASS), EACCES);
    EXPECT_EQ(set(0, V4L2_CID_USER_CLASS), EACCES);
}

TEST_F(ControlTest, FollowsItsMaster)
{
    open(aCamera()
             .withControl(booleanControl(V4L2_CID_FOCUS_AUTO, "Auto").byDefault(1))
             .withControl(integerControl(someId, "Focus")
                              .range(0, 9)
                              .activeOnlyWhen(V4L2_CID_FOCUS_AUTO, 0)));
    EXPECT_EQ(set(5), EACCES);
    EXPECT_EQ(m_camera->controlFlags(someId), static_cast<unsigned>(V4L2_CTRL_FLAG_INACTIVE));
    EXPECT_EQ(set(0, V4L2_CID_FOCUS_AUTO), 0);
    EXPECT_EQ(m_camera->controlFlags(someId), 0u);
    EXPECT_EQ(set(5), 0);
}

TEST_F(ControlTest, RefusesAsScripted)
{
    offer(integerControl(someId, "Integer").range(0, 9).refusingReads(EIO).refusingWrites(EILSEQ));
    std::int32_t value = 0;
    EXPECT_EQ(get(value), EIO);
    EXPECT_EQ(set(1), EILSEQ);
}

TEST_F(ControlTest, HidesPrivateControlsFromPlainCallsAsKernelsDo)
{
    constexpr std::uint32_t id = V4L2_CID_PRIVATE_BASE + 5;
    std::int32_t value = 0;
    v4l2_ext_control control{};
    control.id = id;
    open(aCamera().withControl(integerControl(id, "Private").range(0, 9).currently(3)));
    EXPECT_EQ(get(value, id), EINVAL);
    EXPECT_EQ(set(1, id), EINVAL);
    EXPECT_EQ(transfer(VIDIOC_G_EXT_CTRLS, control), 0);
    EXPECT_EQ(control.value, 3);
    EXPECT_EQ(transfer(VIDIOC_G_EXT_CTRLS, control, V4L2_CID_PRIVATE_BASE), 0);
    open(aCamera()
             .withControl(integerControl(id, "Private").range(0, 9).currently(3))
             .withPlainPrivateControls());
    EXPECT_EQ(get(value, id), 0);
    EXPECT_EQ(value, 3);
}

TEST_F(ControlTest, ChecksTheClassOfExtendedTransfers)
{
    offer(integerControl(someId, "Integer").range(0, 9).currently(4).byDefault(2));
    v4l2_ext_control control{};
    control.id = someId;
    EXPECT_EQ(transfer(VIDIOC_G_EXT_CTRLS, control, V4L2_CTRL_CLASS_CAMERA), EINVAL);
    EXPECT_EQ(transfer(VIDIOC_G_EXT_CTRLS, control, V4L2_CTRL_WHICH_DEF_VAL), 0);
    EXPECT_EQ(control.value, 2);
    EXPECT_EQ(transfer(VIDIOC_S_EXT_CTRLS, control, V4L2_CTRL_WHICH_DEF_VAL), EINVAL);
    control.value = 100;
    EXPECT_EQ(transfer(VIDIOC_TRY_EXT_CTRLS, control), 0);
    EXPECT_EQ(control.value, 9);
    EXPECT_EQ(m_camera->controlValue(someId), 4);
}

TEST_F(ControlTest, SetsAllOrNothing)
{
    open(aCamera()
             .withControl(integerControl(someId, "First").range(0, 9))
             .withControl(integerControl(someId + 1, "Second").range(0, 9).readOnly()));
    v4l2_ext_control both[2]{};
    both[0].id = someId;
    both[0].value = 5;
    both[1].id = someId + 1;
    v4l2_ext_controls controls{};
    controls.count = 2;
    controls.controls = both;
    EXPECT_EQ(m_client->call(VIDIOC_S_EXT_CTRLS, controls), EACCES);
    EXPECT_EQ(controls.error_idx, 2u);
    EXPECT_EQ(m_camera->controlValue(someId), 0);
    EXPECT_EQ(m_client->call(VIDIOC_TRY_EXT_CTRLS, controls), EACCES);
    EXPECT_EQ(controls.error_idx, 1u);
}

} // namespace
