// SPDX-License-Identifier: MIT
// A driver that has ranges of sizes, and the frame rate of its standard: vivid as a television.
#include "ErrorOf.h"
#include "SessionCamera.h"
#include "V4l2Ctl.h"

#include <gmock/gmock.h>

using namespace KernelTest;
using testing::HasSubstr;

namespace
{

class SessionRangesTest : public testing::Test
{
protected:
    SessionRangesTest() { v4l2Ctl(m_node, "--set-input=1 --set-standard=ntsc"); }
    ~SessionRangesTest() override { v4l2Ctl(m_node, "--set-input=0"); }

    void expectSelected(char const* wish, char const* result, ia::Match match = ia::Match::Exact)
    {
        SCOPED_TRACE(wish);
        EXPECT_EQ(m_camera->select(wish, match).text(), result);
        EXPECT_EQ(selectedByV4l2Ctl(m_node), result);
    }

    void expectUnsupported(char const* wish, char const* part)
    {
        std::string const before = selectedByV4l2Ctl(m_node);
        auto const error = errorOf([&] { m_camera->select(wish); });
        ASSERT_TRUE(error) << wish;
        EXPECT_EQ(error->kind(), ia::ErrorKind::Unsupported);
        EXPECT_THAT(error->what(), HasSubstr(part));
        EXPECT_EQ(selectedByV4l2Ctl(m_node), before);
    }

    std::string const m_node = vividNode();
    std::optional<ia::Camera> m_camera;
};

TEST_F(SessionRangesTest, AreSelectedFrom)
{
    m_camera = openVivid(m_node);
    expectSelected("YUYV 500x300@29.97", "YUYV 500x300@29.97");
    expectSelected("322x242", "YUYV 322x242@29.97");
    expectSelected("GREY @30000/1001", "GREY 322x242@29.97");
    expectSelected("501x8", "GREY 500x16@29.97", ia::nearest);
    expectSelected("@60", "GREY 500x16@29.97", ia::nearest);
    expectUnsupported("501x300", "16x16..16384x8640 in steps of 2x2");
    expectUnsupported("@30", "29.97 frames a second");
    expectSelected("YUYV 322x242", "YUYV 322x242@29.97");
    ia::Frame const frame = m_camera->stream().next(20s);
    ASSERT_TRUE(frame);
    EXPECT_EQ(frame.bytes().size(), 322U * 242 * 2);
    EXPECT_FALSE(frame.isShort());
}

} // namespace
