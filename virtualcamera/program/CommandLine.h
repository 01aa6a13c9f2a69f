// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace VirtualCamera
{

/// A command line that makes no sense; the text ends with what would.
class UsageError : public std::runtime_error
{
public:
    explicit UsageError(std::string const& complaint);
};

/// What with-virtual-camera is to do.
struct CommandLine
{
    std::vector<std::string> models;
    std::string configuration;
    bool modelsListed = false;
    int plugAfter = -1;
    int unplugAfter = -1;
    std::vector<std::string> command; ///< The program and its arguments.
};

/// Nothing when help or the version was asked for, and has been printed. Throws `UsageError`.
std::optional<CommandLine> parseCommandLine(int count, char const* const* arguments);

} // namespace VirtualCamera
