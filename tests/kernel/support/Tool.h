// SPDX-License-Identifier: MIT
#pragma once

#include "Shell.h"

#include <nlohmann/json.hpp>

namespace KernelTest
{

/// Path of iacq in the build tree.
std::string toolPath();

/// Runs iacq with arguments for the shell.
CommandResult runTool(std::string const& arguments);

/// What iacq prints as JSON; throws std::runtime_error when it fails.
nlohmann::json readTool(std::string const& arguments);

} // namespace KernelTest
