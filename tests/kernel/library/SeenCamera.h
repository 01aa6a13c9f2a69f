// SPDX-License-Identifier: MIT
#pragma once

#include <nlohmann/json.hpp>

#include <string>

namespace KernelTest
{

/// What the library makes of the camera at a node.
nlohmann::json describeCamera(std::string const& node);

} // namespace KernelTest
