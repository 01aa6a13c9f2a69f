// SPDX-License-Identifier: MIT
// What a client can rely on in the types themselves.
#include <Session.h>

#include <gtest/gtest.h>

#include <type_traits>

namespace
{

namespace ia = ImageAcquisition::Session;

template <typename T>
constexpr bool isMoveOnly =
    std::is_nothrow_move_constructible_v<T>&& std::is_nothrow_move_assignable_v<T> &&
    !std::is_copy_constructible_v<T> && !std::is_copy_assignable_v<T>;

TEST(HeaderTest, MakesOwnersMovableOnly)
{
    EXPECT_TRUE(isMoveOnly<ia::Camera>);
    EXPECT_TRUE(isMoveOnly<ia::Stream>);
    EXPECT_TRUE(isMoveOnly<ia::Frame>);
    EXPECT_TRUE(isMoveOnly<ia::Events>);
}

TEST(HeaderTest, LetsAControlBeAssignedValuesOnly)
{
    EXPECT_TRUE((std::is_assignable_v<ia::Control, int>));
    EXPECT_TRUE((std::is_assignable_v<ia::Control, unsigned char>));
    EXPECT_TRUE((std::is_assignable_v<ia::Control, bool>));
    EXPECT_TRUE((std::is_assignable_v<ia::Control, char const*>));
    EXPECT_TRUE((std::is_assignable_v<ia::Control, std::string>));
    EXPECT_FALSE((std::is_assignable_v<ia::Control, ia::Control>));
    EXPECT_FALSE((std::is_assignable_v<ia::Control, double>));
    EXPECT_FALSE((std::is_assignable_v<ia::Control, void*>));
}

TEST(HeaderTest, MakesOptionsOfADelivery)
{
    EXPECT_TRUE((std::is_convertible_v<ia::Delivery, ia::StreamOptions>));
    EXPECT_EQ(ia::StreamOptions(ia::newest).delivery, ia::Delivery::NewestOnly);
    EXPECT_EQ(ia::StreamOptions().delivery, ia::Delivery::EveryFrame);
}

} // namespace
