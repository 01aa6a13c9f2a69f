// SPDX-License-Identifier: MIT
#include "system/ZeroedBytes.h"

#include <gtest/gtest.h>

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <limits>
#include <new>
#include <vector>

namespace
{

using ImageAcquisition::ZeroedBytes;

std::size_t pageSize()
{
    return static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

/// How many pages of the memory the system has found room for.
long residentPages(ZeroedBytes& bytes)
{
    std::vector<unsigned char> resident(bytes.size() / pageSize());
    if (mincore(bytes.data(), bytes.size(), resident.data()) != 0) {
        return -1;
    }
    return std::count_if(resident.begin(), resident.end(),
                         [](unsigned char page) { return (page & 1) != 0; });
}

TEST(ZeroedBytesTest, AreZeroAndMayBeWritten)
{
    ZeroedBytes bytes(10000);
    EXPECT_EQ(bytes.size(), 10000u);
    EXPECT_EQ(std::count(bytes.data(), bytes.data() + bytes.size(), 0), 10000);
    bytes.data()[9999] = 7;
    EXPECT_EQ(static_cast<ZeroedBytes const&>(bytes).data()[9999], 7);
}

TEST(ZeroedBytesTest, MayBeNone)
{
    ZeroedBytes bytes(0);
    EXPECT_EQ(bytes.size(), 0u);
    EXPECT_NE(bytes.data(), nullptr);
}

TEST(ZeroedBytesTest, TakeRoomOnlyWhereTheyAreTouched)
{
    ZeroedBytes bytes(64 * pageSize());
    EXPECT_EQ(residentPages(bytes), 0);
    bytes.data()[10 * pageSize()] = 1;
    EXPECT_EQ(residentPages(bytes), 1);
}

TEST(ZeroedBytesTest, ThrowWhenThereIsNoRoomForThem)
{
    EXPECT_THROW(ZeroedBytes(std::numeric_limits<std::size_t>::max() / 2), std::bad_alloc);
}

} // namespace
