// SPDX-License-Identifier: MIT
#include "Tool.h"

#include <cstdlib>
#include <stdexcept>

namespace KernelTest
{

std::string toolPath()
{
    char const* const build = std::getenv("KERNEL_TEST_BUILD");
    if (build == nullptr) {
        throw std::runtime_error("KERNEL_TEST_BUILD is not set");
    }
    return std::string(build) + "/tools/iacq/iacq";
}

CommandResult runTool(std::string const& arguments)
{
    return runShell(toolPath() + " " + arguments);
}

nlohmann::json readTool(std::string const& arguments)
{
    // Its warnings are no part of the text.
    CommandResult const result = runTool(arguments + " 2> /dev/null");
    if (result.status != 0) {
        throw std::runtime_error("iacq " + arguments + " failed: " + runTool(arguments).output);
    }
    return nlohmann::json::parse(result.output);
}

} // namespace KernelTest
