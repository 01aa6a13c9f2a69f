// SPDX-License-Identifier: MIT
#include "control/CameraControlString.h"
#include "CameraWithControls.h"

#include <gtest/gtest.h>
#include <linux/videodev2.h>

#include <cerrno>
#include <climits>
#include <cstring>

using namespace ImageAcquisition;
using namespace VirtualCamera;

namespace
{

constexpr unsigned int id = V4L2_CID_USER_BASE + 0x1000;

ControlScript text()
{
    return stringControl(id, "Text").range(0, 31).currently("abc");
}

class CameraControlStringTest : public testing::Test
{
protected:
    ICameraControlString& control() const { return m_opened.as<ICameraControlString>(id); }

    CameraWithControls m_opened{{text().namingExactSize()}};
};

TEST_F(CameraControlStringTest, LengthsAreTheDriversEvenInTheWrongOrder)
{
    EXPECT_EQ(control().minLength(), 0);
    EXPECT_EQ(control().maxLength(), 31);
    CameraWithControls const odd(aCamera("/dev/video1").withControl(text().range(8, 4, 3)));
    EXPECT_EQ(odd.as<ICameraControlString>(id).minLength(), 8);
    EXPECT_EQ(odd.as<ICameraControlString>(id).maxLength(), 4);
    EXPECT_EQ(dynamic_cast<CameraControlString&>(odd.control(id)).step(), 3);
}

TEST_F(CameraControlStringTest, SizeIsWhatTheDriverNames)
{
    EXPECT_EQ(control().stringSize(), 4u);
    CallRecord const call = m_opened.onlyCall();
    EXPECT_EQ(CallId(VIDIOC_G_EXT_CTRLS), call.call);
    EXPECT_EQ(call.error, ENOSPC);
    EXPECT_EQ(call.controlClass, 0x00980000u);
    ASSERT_EQ(call.controls.size(), 1u);
    EXPECT_EQ(id, call.controls[0].id);
    EXPECT_EQ(call.controls[0].size, 0u);
    EXPECT_EQ(call.controls[0].value, 0); // A buffer of nothing, at address nothing.
}

TEST_F(CameraControlStringTest, KernelNamesTheSizeOfTheLongestText)
{
    CameraWithControls const kernel(aCamera("/dev/video1").withControl(text()));
    EXPECT_EQ(kernel.as<ICameraControlString>(id).stringSize(), 32u);
}

TEST_F(CameraControlStringTest, SizeIsZeroWhenTheDriverNamesNone)
{
    m_opened.node.fail(VIDIOC_G_EXT_CTRLS, EIO);
    EXPECT_EQ(control().stringSize(), 0u);
}

TEST_F(CameraControlStringTest, ReadsIntoABufferOfTheNamedSize)
{
    char buffer[8];
    std::memset(buffer, '#', sizeof buffer);
    EXPECT_TRUE(control().getValue(buffer, 4));
    EXPECT_STREQ(buffer, "abc");
    EXPECT_EQ(buffer[4], '#');
    CallRecord const call = m_opened.onlyCall();
    EXPECT_EQ(CallId(VIDIOC_G_EXT_CTRLS), call.call);
    EXPECT_EQ(call.controlClass, 0x00980000u);
    ASSERT_EQ(call.controls.size(), 1u);
    EXPECT_EQ(call.controls[0].size, 4u);
}

TEST_F(CameraControlStringTest, BufferThatIsTooSmallIsRefused)
{
    char buffer[4];
    for (int const size : {0, 1, 2, 3}) {
        EXPECT_FALSE(control().getValue(buffer, size)) << size;
    }
}

TEST_F(CameraControlStringTest, NegativeSizeAndNullBufferAreRefusedWithoutAsking)
{
    char buffer[8];
    EXPECT_FALSE(control().getValue(buffer, -1));
    EXPECT_FALSE(control().getValue(buffer, INT_MIN));
    EXPECT_FALSE(control().getValue(nullptr, 8));
    EXPECT_FALSE(control().getValue(nullptr, 0));
    EXPECT_EQ(m_opened.node.countOf(Call::Ioctl), 0u);
}

TEST_F(CameraControlStringTest, WriteOnlyIsRefusedWithoutAsking)
{
    CameraWithControls const silent(
        aCamera("/dev/video1").withControl(text().withFlags(V4L2_CTRL_FLAG_WRITE_ONLY)));
    char buffer[32];
    EXPECT_FALSE(silent.as<ICameraControlString>(id).getValue(buffer, 32));
    EXPECT_EQ(silent.node.countOf(Call::Ioctl), 0u);
}

TEST_F(CameraControlStringTest, WritesTheTextAndItsZeroWithoutNamingAClass)
{
    EXPECT_TRUE(control().setValue("hello"));
    CallRecord const call = m_opened.onlyCall();
    EXPECT_EQ(CallId(VIDIOC_S_EXT_CTRLS), call.call);
    EXPECT_EQ(call.controlClass, 0u);
    ASSERT_EQ(call.controls.size(), 1u);
    EXPECT_EQ(id, call.controls[0].id);
    EXPECT_EQ(call.controls[0].size, 6u);
    EXPECT_EQ(call.controls[0].text, "hello");
    EXPECT_EQ(m_opened.node.controlText(id), "hello");
}

TEST_F(CameraControlStringTest, EmptyTextIsSentAsItsZero)
{
    EXPECT_TRUE(control().setValue(""));
    EXPECT_EQ(m_opened.onlyCall().controls.at(0).size, 1u);
    EXPECT_EQ(m_opened.node.controlText(id), "");
}

TEST_F(CameraControlStringTest, TextThatIsTooLongIsSentAndRefused)
{
    std::string const longText(40, 'x');
    EXPECT_FALSE(control().setValue(longText.c_str()));
    CallRecord const call = m_opened.onlyCall();
    EXPECT_EQ(call.error, ERANGE);
    EXPECT_EQ(call.controls.at(0).size, 41u);
    EXPECT_EQ(call.controls.at(0).text, longText);
    EXPECT_EQ(m_opened.node.controlText(id), "abc");
}

TEST_F(CameraControlStringTest, TextThatIsTooShortIsSentAndRefused)
{
    CameraWithControls const strict(aCamera("/dev/video1").withControl(text().range(2, 4)));
    EXPECT_FALSE(strict.as<ICameraControlString>(id).setValue("x"));
    EXPECT_EQ(strict.node.countOf(VIDIOC_S_EXT_CTRLS), 1u);
}

TEST_F(CameraControlStringTest, NullTextIsRefusedWithoutAsking)
{
    EXPECT_FALSE(control().setValue(nullptr));
    EXPECT_EQ(m_opened.node.countOf(Call::Ioctl), 0u);
}

TEST_F(CameraControlStringTest, ClientsTextIsNotTouchedByTheDriver)
{
    char const original[] = "untouched";
    char handedOver[sizeof original];
    std::memcpy(handedOver, original, sizeof original);
    control().setValue(handedOver);
    EXPECT_STREQ(original, handedOver);
}

TEST_F(CameraControlStringTest, RefusedTransfersAreFalseAndSilent)
{
    m_opened.node.fail(VIDIOC_S_EXT_CTRLS, EIO);
    m_opened.node.fail(VIDIOC_G_EXT_CTRLS, EIO);
    char buffer[32];
    testing::internal::CaptureStderr();
    EXPECT_FALSE(control().setValue("x"));
    EXPECT_FALSE(control().getValue(buffer, 32));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(CameraControlStringTest, PresentTextIsAlwaysTheDrivers)
{
    char buffer[32];
    m_opened.node.setControlText(id, "one");
    EXPECT_TRUE(control().getValue(buffer, 32));
    EXPECT_STREQ(buffer, "one");
    m_opened.node.setControlText(id, "another");
    EXPECT_EQ(control().stringSize(), 8u);
    EXPECT_TRUE(control().getValue(buffer, 32));
    EXPECT_STREQ(buffer, "another");
}

} // namespace
