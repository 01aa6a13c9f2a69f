// SPDX-License-Identifier: MIT
#pragma once

#include "Shell.h"

#include <gtest/gtest.h>

#include <fstream>

namespace KernelTest
{

/// The driver throws damaged frames away unless it was told not to when the camera was plugged in.
class DriversHabit
{
public:
    explicit DriversHabit(bool keepsDamaged) { set(keepsDamaged); }
    ~DriversHabit() { set(false); }
    DriversHabit(DriversHabit const&) = delete;
    DriversHabit& operator=(DriversHabit const&) = delete;

private:
    static void set(bool keepsDamaged)
    {
        std::ofstream("/sys/module/uvcvideo/parameters/nodrop") << (keepsDamaged ? "1" : "0");
        EXPECT_EQ(readFile("/sys/module/uvcvideo/parameters/nodrop"), keepsDamaged ? "1" : "0");
    }
};

} // namespace KernelTest
