// SPDX-License-Identifier: MIT
#include "session/Error.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <type_traits>

namespace
{

using namespace ImageAcquisition::Session;

ErrorDetails busy()
{
    return {ErrorKind::Busy, "start streaming", "the camera is in use", "/dev/video0",
            EBUSY,           "held by 12 (cat)"};
}

TEST(ErrorTest, TellsEverythingInOneLine)
{
    EXPECT_STREQ(Error(busy()).what(), "start streaming: /dev/video0: the camera is in use: Device "
                                       "or resource busy (held by 12 (cat))");
}

TEST(ErrorTest, LeavesOutWhatDoesNotApply)
{
    EXPECT_STREQ(Error({ErrorKind::NotFound, "open 'x'", ""}).what(), "open 'x': not found");
    EXPECT_STREQ(Error({ErrorKind::NotFound, "", "there is no camera"}).what(),
                 "there is no camera");
}

TEST(ErrorTest, GivesItsPartsBack)
{
    Error const error(busy());
    EXPECT_EQ(error.kind(), ErrorKind::Busy);
    EXPECT_EQ(error.operation(), "start streaming");
    EXPECT_EQ(error.reason(), "the camera is in use");
    EXPECT_EQ(error.node(), "/dev/video0");
    EXPECT_EQ(error.systemError(), EBUSY);
    EXPECT_EQ(error.hint(), "held by 12 (cat)");
}

TEST(ErrorTest, IsCopiedWithoutThrowing)
{
    EXPECT_TRUE(std::is_nothrow_copy_constructible_v<Error>);
    EXPECT_TRUE(std::is_nothrow_copy_assignable_v<Error>);
}

TEST(ErrorTest, HasATextForEachKind)
{
    EXPECT_STREQ(toText(ErrorKind::NotFound), "not found");
    EXPECT_STREQ(toText(ErrorKind::NoPermission), "no permission");
    EXPECT_STREQ(toText(ErrorKind::BadRequest), "bad request");
    EXPECT_STREQ(toText(static_cast<ErrorKind>(99)), "unknown");
}

} // namespace
