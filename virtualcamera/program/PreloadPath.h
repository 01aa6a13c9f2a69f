// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace VirtualCamera
{

/// The value of LD_PRELOAD that lets a program see the testbed and its cameras: umockdev's library
/// and the virtual camera's, found beside this program or where both are installed, then whatever
/// was preloaded before. Throws `std::runtime_error` when the library is missing.
std::string preloadPath();

/// Starts this program anew with umockdev's library preloaded, unless it is: whoever builds a
/// testbed has to see it. The result, in the program started anew, is `preloadPath` as it was in
/// the first.
std::string restartInTestbed(char** arguments);

} // namespace VirtualCamera
