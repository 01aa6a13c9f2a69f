// SPDX-License-Identifier: MIT
#pragma once

#include "Shell.h"

#include <gtest/gtest.h>

#include <string>

namespace KernelTest
{

/// Takes vivid's first device away from its driver ("unbind"), as a pulled plug does, or gives it
/// back ("bind").
inline void bindVivid(std::string const& action)
{
    CommandResult const result =
        runShell("echo vivid.0 > /sys/bus/platform/drivers/vivid/" + action);
    ASSERT_EQ(result.status, 0) << result.output;
}

} // namespace KernelTest
