// SPDX-License-Identifier: MIT
#pragma once

#include "ShellCommand.h"

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace KernelTest
{

/// Runs a line in the shell.
CommandResult runShell(std::string const& line);

/// The parts of a text between line ends.
std::vector<std::string> splitLines(std::string const& text);

/// A whole file without the line end behind it; empty when it can't be read.
std::string readFile(std::string const& path);

/// Seconds of the clock that the kernel and the emulated cameras stamp with.
double monotonicSeconds();

/// Tries until the condition holds; false when the time ran out first.
bool waitFor(std::function<bool()> const& condition,
             std::chrono::milliseconds limit = std::chrono::seconds(30));

} // namespace KernelTest
